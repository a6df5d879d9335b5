#include "watch/tells/check.h"

#include "watch/tells/sleep_inhibitor.h"
#include "watch/tells/ways.h"

#include <QDateTime>
#include <QEventLoop>
#include <QSysInfo>

namespace
{
Event test_event()
{
    Event event;
    event.change = Change::Test;
    event.time = QDateTime::currentDateTimeUtc();
    event.host = QSysInfo::machineHostName();
    return event;
}

QString hours_text(const QuietHours& hours)
{
    if (!hours.from.isValid())
        return "Quiet hours: none.\n";
    return QString("Quiet hours: from %1 to %2 all but silent instruments, failing tests, programs "
                   "that are gone and the disk waits.\n")
        .arg(hours.from.toString("HH:mm"), hours.to.toString("HH:mm"));
}

QString remind_text(int minutes)
{
    if (minutes == 0)
        return "Reminders: none.\n";
    return QString("Reminders: every %1 minutes, while something lasts.\n").arg(minutes);
}

/** How a try went. */
struct Outcome
{
    QString line;
    bool good = true;
};

Outcome try_way(const Way& way)
{
    QEventLoop loop;
    Outcome outcome;
    way.send(test_event(), [&](Arrival arrival, const QString& reason) {
        outcome.good = arrival == Arrival::Arrived;
        outcome.line = QString("%1: %2\n")
                           .arg(way.name, outcome.good ? QString("sent.")
                                                       : QString("FAILED: %1.").arg(reason));
        loop.quit();
    });
    if (outcome.line.isEmpty())
        loop.exec();
    return outcome;
}

Outcome try_inhibitor()
{
    QEventLoop loop;
    SleepInhibitor inhibitor;
    Outcome outcome = {"sleep: can be kept off while a test runs.\n", true};
    QObject::connect(&inhibitor, &SleepInhibitor::sig_held, &loop, &QEventLoop::quit);
    QObject::connect(&inhibitor, &SleepInhibitor::sig_refused, &loop, [&](const QString& reason) {
        outcome = {QString("sleep: FAILED: cannot be kept off: %1\n").arg(reason), false};
        loop.quit();
    });
    inhibitor.set_needed(true);
    loop.exec();
    return outcome;
}
}  // namespace

QString plan_text(const TellSettings& settings, const QStringList& folders)
{
    QObject owner;
    QString text;
    for (const QString& folder : folders)
        text += QString("Follows: %1\n").arg(folder);
    for (const Way& way : ways_of(settings, &owner))
        text += QString("Tells by: %1\n").arg(way.name);
    return text + remind_text(settings.remind_minutes) + hours_text(settings.quiet_hours);
}

bool try_all(const TellSettings& settings, const std::function<void(const QString& line)>& tell)
{
    QObject owner;
    bool all_good = true;
    const auto note = [&](const Outcome& outcome) {
        tell(outcome.line);
        all_good = all_good && outcome.good;
    };
    for (const Way& way : ways_of(settings, &owner))
        note(try_way(way));
    if (settings.inhibits_sleep)
        note(try_inhibitor());
    return all_good;
}
