#include "charts/chart_kinds.h"

#include <algorithm>
#include <iterator>

const ChartKind& chart_kind(char code)
{
    return *std::find_if(std::begin(CHART_KINDS), std::end(CHART_KINDS) - 1,
                         [code](const ChartKind& kind) { return kind.code == code; });
}

const ChartKind* chosen_chart_kind(const QString& choice)
{
    for (const ChartKind& kind : CHART_KINDS)
        if (kind.choice != nullptr && choice == kind.choice)
            return &kind;
    return nullptr;
}
