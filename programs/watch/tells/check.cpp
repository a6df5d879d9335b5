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

QString try_way(const Way& way, bool& all_good)
{
    QEventLoop loop;
    QString line = way.name + ": ";
    bool answered = false;
    way.send(test_event(), [&](Arrival arrival, const QString& reason) {
        const bool arrived = arrival == Arrival::Arrived;
        line += arrived ? "sent." : QString("FAILED: %1.").arg(reason);
        all_good = all_good && arrived;
        answered = true;
        loop.quit();
    });
    if (!answered)
        loop.exec();
    return line + '\n';
}

QString try_inhibitor(bool& all_good)
{
    QEventLoop loop;
    SleepInhibitor inhibitor;
    QString line;
    QObject::connect(&inhibitor, &SleepInhibitor::sig_held, &loop, [&] {
        line = "sleep: can be kept off while a test runs.\n";
        loop.quit();
    });
    QObject::connect(&inhibitor, &SleepInhibitor::sig_refused, &loop, [&](const QString& reason) {
        line = QString("sleep: FAILED: cannot be kept off: %1\n").arg(reason);
        all_good = false;
        loop.quit();
    });
    inhibitor.set_needed(true);
    if (line.isEmpty())
        loop.exec();
    return line;
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

QString try_all(const TellSettings& settings, bool& all_good)
{
    QObject owner;
    QString text;
    for (const Way& way : ways_of(settings, &owner))
        text += try_way(way, all_good);
    if (settings.inhibits_sleep)
        text += try_inhibitor(all_good);
    return text;
}
