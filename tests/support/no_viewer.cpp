#include "support/no_viewer.h"

#include <QDesktopServices>
#include <QUrl>

NoViewer::NoViewer()
{
    QDesktopServices::setUrlHandler("file", this, "slot_open");
}

NoViewer::~NoViewer()
{
    QDesktopServices::unsetUrlHandler("file");
}

void NoViewer::slot_open(const QUrl&)
{
}
