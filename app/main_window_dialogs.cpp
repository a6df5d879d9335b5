#include "app/main_window.h"

#include "dialogs/about.h"
#include "dialogs/widget_font_debug_dialog.h"

#include <QTextBrowser>

void MainWindow::on_actionHelp_triggered()
{
    // Never deleted: the operator keeps it open beside the work, or closes it.
    auto* browser = new QTextBrowser;
    // Closing the main window ends the program, also with the manual still open.
    browser->setAttribute(Qt::WA_QuitOnClose, false);
    browser->setAccessibleName("Help");
    browser->setOpenExternalLinks(true);
    browser->setSource(QUrl("qrc:/help.html"));
    browser->setWindowTitle(browser->documentTitle());
    browser->setGeometry(geometry());
    browser->show();
}

void MainWindow::on_actionAbout_triggered()
{
    About dialog(this);
    dialog.exec();
}

void MainWindow::on_actionWidget_Font_Debug_Dialog_triggered()
{
    WidgetFontDebugDialog dialog(this);
    dialog.exec();
}
