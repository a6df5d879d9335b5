#include "chart_peers.h"

// Stands in for the libraries that this machine does not have.

#ifndef KEST_HAVE_QCUSTOMPLOT
Peer qcustomplot_peer(const Curves&, QSize)
{
    return {};
}
#endif

#ifndef KEST_HAVE_QWT
Peer qwt_peer(const Curves&, QSize)
{
    return {};
}
#endif
