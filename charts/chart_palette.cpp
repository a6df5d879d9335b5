#include "charts/chart_palette.h"

#include <QStyle>
#include <QStyleFactory>

#include <memory>

QPalette chart_palette()
{
    // Built into the toolkit, and the same light colours whatever those of the desktop are.
    const std::unique_ptr<QStyle> style(QStyleFactory::create("Fusion"));
    QPalette palette = style->standardPalette();
    // A role counts as the widget's own only where it has been set: the others would be inherited.
    palette.resolve(~0U);
    return palette;
}
