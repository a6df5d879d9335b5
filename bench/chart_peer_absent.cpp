#include "chart_peers.h"

// Stands in for the libraries that this machine does not have.

#ifndef KEST_HAVE_QCUSTOMPLOT
std::function<void()> qcustomplot_painter(const Curves&, QSize)
{
    return {};
}
#endif

#ifndef KEST_HAVE_QWT
std::function<void()> qwt_painter(const Curves&, QSize)
{
    return {};
}
#endif
