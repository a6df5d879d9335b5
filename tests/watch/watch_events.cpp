#include "watch_events.h"

Situation situation_of(Condition condition)
{
    Situation situation;
    situation.log = "/logs/Pack A_1042.csv";
    situation.condition = condition;
    situation.since = QDateTime(QDate(2026, 11, 22), QTime(2, 14), Qt::UTC);
    situation.facts.battery = "Pack A";
    situation.facts.serial_number = "1042";
    situation.facts.phase = "Discharging";
    situation.facts.reason = "charge test passed";
    situation.facts.cycle = 2;
    situation.facts.volts = 24.315;
    situation.facts.amps = 4.8;
    situation.facts.amp_hours = 12.3456;
    situation.facts.milliohms = 41.6;
    situation.facts.row_age = 95;
    situation.facts.end_from = situation.since.addSecs(4 * 3600);
    situation.facts.end_to = situation.since.addSecs(5 * 3600);
    situation.facts.end_error = 0.043;
    return situation;
}

Event event_of_condition(Condition condition, Change change)
{
    Event event;
    event.number = 7;
    event.change = change;
    event.situation = situation_of(condition);
    event.time = event.situation.since.addSecs(3 * 3600 + 5 * 60);
    event.first = change == Change::Begins;
    event.host = "bench";
    return event;
}

QList<HostileName> hostile_names()
{
    return {
        {"markup", "<b>Pack</b> & <a href='x'>\"one\"</a>"},
        {"quotes and a shell", "$(touch harm) `touch harm`; 'a' \"b\" \\ | > harm"},
        {"lines", "Pack\r\nBcc: all@example.org\r\n\r\n.\r\nFrom here"},
        {"line separators", QString("Pack") + QChar(0x2028) + "A" + QChar(0x2029) + QChar(0x85)},
        {"controls", QString("Pack\t\x1b[31m") + QChar(0x07) + QChar(0x7F) + QChar(0x9B)},
        {"NUL", QString("Pack") + QChar(0) + "A"},
        {"half a character", QString("Pack") + QChar(0xD83D) + "A" + QChar(0xDE00)},
        {"beyond the first plane", QString::fromUtf8("Pack \xF0\x9F\x94\x8B =?UTF-8?B?QQ==?=")},
        {"long", QString("Akku-\u00e4\u00f6\u00fc ").repeated(512)},
        {"an option", "--help"},
    };
}

Event event_named(const QString& battery)
{
    Event event = event_of_condition(Condition::InstrumentSilent);
    event.situation.facts.battery = battery;
    event.situation.log = "/logs/not \xFF UTF-8\n.csv";
    return event;
}
