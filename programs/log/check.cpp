#include "log/check.h"

#include "programs/common/terminal.h"
#include "log/log_json.h"
#include "log/place.h"
#include "records/log_check.h"

namespace
{
QString line_of(const LogFile& file, const QString& text, Colour colour)
{
    return shown(file.path) + ": " + coloured(shown(text), colour, stdout) + '\n';
}

QString verdict(const LogFile& file, const QString& not_writable)
{
    QString text;
    if (!file.accepted)
        text = line_of(file, "does not load: " + place_of(file.refusal), Colour::Red);
    else if (not_writable.isEmpty())
        text = line_of(file, "loads", Colour::Green);
    if (!not_writable.isEmpty())
        text += line_of(file, "the application could not open it: " + not_writable, Colour::Red);
    return text;
}

QString warning_text(const LogFile& file, const Warning& warning)
{
    const QString place = warning.line == 0 ? QString() : QString("line %1: ").arg(warning.line);
    return line_of(file, "warning: " + place + warning.text, Colour::Yellow);
}
}  // namespace

Outcome check_of(const QString& path)
{
    LogFile file;
    if (!check_log(path, file))
        return Outcome::failure(path, not_readable(path, file.refusal.reason));
    const QString not_writable = why_not_writable(path);
    Outcome outcome;
    outcome.text = verdict(file, not_writable);
    for (const Warning& warning : qAsConst(file.warnings))
        outcome.text += warning_text(file, warning);
    outcome.json = check_json(file, not_writable);
    if (!file.accepted || !not_writable.isEmpty() || !file.warnings.isEmpty())
        outcome.code = EXIT_SOMETHING_TO_TELL;
    return outcome;
}
