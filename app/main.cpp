#include "app/main_window.h"
#include "app/startup.h"
#include "app/termination_signals.h"
#include "app/wayland_end.h"

#include <QApplication>

#include <csignal>

int main(int argc, char** argv)
{
    // Whoever read standard output may go; the tests that are running go on.
    std::signal(SIGPIPE, SIG_IGN);
    QApplication application(argc, argv);
    close_on_termination_signals(application);
    command_off_at_the_end_of_wayland();
    test_library();
    MainWindow window(nullptr);
    window.show();
    return QApplication::exec();
}
