#include "app/main_window.h"
#include "app/startup.h"
#include "app/termination_signals.h"

#include <QApplication>

#include <csignal>

int main(int argc, char** argv)
{
    // Whoever read standard output may go; the tests that are running go on.
    std::signal(SIGPIPE, SIG_IGN);
    QApplication application(argc, argv);
    close_on_termination_signals(application);
    test_library();
    MainWindow window(nullptr);
    window.show();
    return QApplication::exec();
}
