#include "log/options.h"
#include "log/run.h"
#include "programs/common/terminal.h"
#include "programs/common/unfinished_files.h"

#include <QCoreApplication>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("kest-log");
    QCoreApplication::setApplicationVersion(KEST_VERSION);
    const Options options = read_options(QCoreApplication::arguments());
    if (!options.error.isEmpty()) {
        tell(options.error + " See kest-log --help.");
        return EXIT_WRONG_ARGUMENTS;
    }
    if (!options.answer.isEmpty())
        return put(options.answer) ? EXIT_GOOD : EXIT_SOMETHING_TO_TELL;
    UnfinishedFiles::remove_at_signals();
    return run(options);
}
