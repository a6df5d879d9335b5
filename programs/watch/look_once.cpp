#include "watch/look_once.h"

#include "programs/common/exit_code.h"
#include "programs/common/terminal.h"
#include "watch/status.h"
#include "watch/watch_settings.h"

#include <QJsonDocument>

int look_once(const WatchOptions& options)
{
    StartOfWatch start = start_of_watch(options);
    if (!start.missing.isEmpty())
        start.error = start.missing.join(' ');
    if (!start.error.isEmpty()) {
        tell(start.error);
        return EXIT_WRONG_ARGUMENTS;
    }
    // What another watch remembers is known here, too, and left as it is.
    start.settings.keeps_memory = false;
    Watch watch(start.settings);
    const Moment moment = present_moment();
    const Look look = watch.look(moment);
    const QString text =
        options.json
            ? QString::fromUtf8(
                  QJsonDocument(status_json(look, start.settings.folders, moment.time)).toJson())
            : status_text(look);
    return put(text) && !has_trouble(look) ? EXIT_GOOD : EXIT_SOMETHING_TO_TELL;
}
