#include "watch/tells/child_run.h"
#include "watch/tells/event_json.h"
#include "watch/tells/mail_text.h"
#include "watch/tells/ways.h"

#include <QProcess>
#include <QStandardPaths>

namespace
{
constexpr int MOST_MESSAGES = 500;
constexpr int TRY_LATER = 75;  // what a mail program says if it could not do it now

QString sendmail()
{
    const QString found = QStandardPaths::findExecutable("sendmail");
    return found.isEmpty()
               ? QStandardPaths::findExecutable("sendmail", {"/usr/sbin", "/usr/lib", "/usr/bin"})
               : found;
}

/** A command that went wrong may have done its work: it is not run again. */
void answer_for_command(const ChildEnd& end, const Answer& answer)
{
    const bool good = end.started && end.in_time && end.status == 0;
    answer(good ? Arrival::Arrived : Arrival::Refused, good ? QString() : end.sentence);
}

void answer_for_mail(const ChildEnd& end, const Answer& answer)
{
    if (end.started && end.in_time && end.status == 0)
        answer(Arrival::Arrived, {});
    else if (!end.started || !end.in_time || end.status < 0 || end.status == TRY_LATER)
        answer(Arrival::Later, "sendmail " + end.sentence);
    else
        answer(Arrival::Refused, "sendmail " + end.sentence);
}
}  // namespace

Way command_way(const QString& command, int seconds, QObject* owner)
{
    const QStringList words = QProcess::splitCommand(command);
    const auto send = [=](const Event& event, const Answer& answer) {
        ChildOrder order;
        order.program = words.value(0);
        order.arguments = words.mid(1);
        order.variables = event_environment(event);
        order.input = one_line_json(event_json(event)) + '\n';
        order.seconds = seconds;
        run_child(order, owner, [answer](const ChildEnd& end) { answer_for_command(end, answer); });
    };
    return {"command " + command, MOST_MESSAGES, send};
}

Way mail_way(const QString& address, QObject* owner, int seconds)
{
    const auto send = [=](const Event& event, const Answer& answer) {
        ChildOrder order;
        order.program = sendmail();
        if (order.program.isEmpty()) {
            answer(Arrival::Later, "there is no sendmail; install a mail program that brings it");
            return;
        }
        // -i: a line with a single dot does not end a mail.
        order.arguments = QStringList{"-i", "--", address};
        order.input = mail_of(event, address);
        order.seconds = seconds;
        run_child(order, owner, [answer](const ChildEnd& end) { answer_for_mail(end, answer); });
    };
    return {"mail " + address, MOST_MESSAGES, send};
}
