#include "programs/common/exit_code.h"
#include "programs/common/terminal.h"
#include "watch/follow.h"
#include "watch/watch_options.h"

#include <QCoreApplication>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("kest-watch");
    const WatchOptions options = read_watch_options(QCoreApplication::arguments());
    if (!options.error.isEmpty()) {
        tell(options.error + " See kest-watch --help.");
        return EXIT_WRONG_ARGUMENTS;
    }
    if (!options.answer.isEmpty())
        return put(options.answer) ? EXIT_GOOD : EXIT_SOMETHING_TO_TELL;
    return follow(options);
}
