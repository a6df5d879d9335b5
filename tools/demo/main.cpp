#include "demo/demo.h"
#include "demo/demo_console.h"
#include "demo/demo_options.h"

#include "app/termination_signals.h"
#include "app/wayland_end.h"
#include "common/console.h"

#include <QApplication>
#include <QDir>

#include <cstdio>

namespace
{
/** Before the window system is asked for: help needs no display. */
DemoStart read_command_line(int argc, char** argv, DemoOptions& options, QString& message)
{
    QCoreApplication application(argc, argv);
    return read_demo_options(QCoreApplication::arguments(), options, message);
}

int run_demo(int argc, char** argv, const DemoOptions& options)
{
    QApplication application(argc, argv);
    close_on_termination_signals(application);
    command_off_at_the_end_of_wayland();
    // Settings and logs of the demo stay apart from those of the real program.
    QApplication::setApplicationName("kest-demo");
    Demo demo(options);
    QString error;
    if (!demo.start(error)) {
        std::fprintf(stderr, "kest-demo: %s\n", qPrintable(error));
        return 1;
    }
    const DemoConsole console(QDir(demo.folder()).filePath("console.txt"));
    demo.tell = [&console](const QString& text) {
        console.tell(text);
    };
    return QApplication::exec();
}
}  // namespace

int main(int argc, char** argv)
{
    DemoOptions options;
    QString message;
    switch (read_command_line(argc, argv, options, message)) {
    case DemoStart::Help:
        print_to_console(message);
        return 0;
    case DemoStart::Refuse:
        std::fprintf(stderr, "kest-demo: %s\n", qPrintable(message));
        return 2;
    case DemoStart::Run:
        break;
    }
    return run_demo(argc, argv, options);
}
