#include "log/xlsx_export.h"

std::unique_ptr<Exporter> make_xlsx_export(OutputFile&, const QTimeZone&)
{
    return nullptr;
}
