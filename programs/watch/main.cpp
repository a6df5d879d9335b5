#include "programs/common/exit_code.h"
#include "programs/common/terminal.h"
#include "watch/conf_file.h"
#include "watch/follow.h"
#include "watch/look_once.h"
#include "watch/tells/bus_line.h"
#include "watch/tells/check.h"
#include "watch/watch_settings.h"

#include <QCoreApplication>

#include <unistd.h>

namespace
{
int check(const WatchOptions& options)
{
    bool said = put(plan_text(options.telling, start_of_watch(options).settings.folders));
    const bool all_good =
        try_all(options.telling, [&said](const QString& line) { said = put(line) && said; });
    return said && all_good ? EXIT_GOOD : EXIT_SOMETHING_TO_TELL;
}

int run(const WatchOptions& options)
{
    switch (options.command) {
    case WatchCommand::Check:
        return check(options);
    case WatchCommand::Status:
        return look_once(options);
    case WatchCommand::Follow:
        break;
    }
    return follow(options);
}
}  // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("kest-watch");
    // No plugins: those for networks ask the system's bus, and where it says nothing they wait for ever.
    QCoreApplication::setLibraryPaths({});
    const WatchOptions options = read_watch_options(QCoreApplication::arguments(), conf_path());
    if (!options.error.isEmpty()) {
        tell(options.error + " See kest-watch --help.");
        return EXIT_WRONG_ARGUMENTS;
    }
    if (!options.answer.isEmpty())
        return put(options.answer) ? EXIT_GOOD : EXIT_SOMETHING_TO_TELL;
    const int status = run(options);
    // Whoever waits for a bus that says nothing has nothing to lose.
    if (BusLine::any_is_stuck())
        ::_exit(status);
    return status;
}
