#include "support/test_program.h"
#include "watch/tells/memory.h"
#include "watch/tells/memory_file.h"

#include "watch/tells/event_json.h"

#include <QtTest>

/** What people are told over days, worked out from what holds at each look. */
class WatchMemoryTest : public QObject
{
    Q_OBJECT

private slots:
    void each_thing_is_told_once_again_and_when_it_is_over_data();
    void each_thing_is_told_once_again_and_when_it_is_over();
    void nothing_changes_where_nothing_happens();
    void numbers_count_up_over_restarts();
};

namespace
{
Condition condition_with(const QString& key)
{
    for (int i = 0; i <= int(Condition::WokeFromSleep); ++i)
        if (key == traits_of(Condition(i)).key)
            return Condition(i);
    qFatal("There is no condition %s.", qPrintable(key));
}

/** "21:30" of the first day, "2 07:00" of the second. */
QDateTime time_of(const QString& text)
{
    const QString day = text.contains(' ') ? text.section(' ', 0, 0) : "1";
    const QTime time = QTime::fromString(text.section(' ', -1), "HH:mm");
    return QDateTime(QDate(2026, 11, 20 + day.toInt()), time, Qt::UTC);
}

/** A life of the watch: each look is "TIME: CONDITION of LOG since TIME, ...". */
class Life
{
public:
    explicit Life(const TellRules& life_rules) : rules(life_rules)
    {
    }

    /** What is told then: "begins done of A, ..." */
    QString look(const QString& text)
    {
        // "2 07:00: done of A" has its first colon within the time.
        const QString time = text.section(": ", 0, 0);
        QList<Situation> situations;
        for (const QString& one : text.section(": ", 1).split(", ", Qt::SkipEmptyParts))
            situations << situation_of(one, time);
        QStringList told;
        for (const Event& event : take_look(memory, situations, time_of(time), rules, changed))
            told << words_of(event);
        reload();
        return told.join(", ");
    }

    Memory memory;
    TellRules rules;
    bool changed = false;

private:
    static Situation situation_of(const QString& text, const QString& now)
    {
        Situation situation;
        situation.condition = condition_with(text.section(" of ", 0, 0));
        situation.log = text.section(" of ", 1).section(" since ", 0, 0).toUtf8();
        situation.since = time_of(text.contains(" since ") ? text.section(" since ", 1) : now);
        return situation;
    }

    static QString words_of(const Event& event)
    {
        return change_key(event.change) +
               (event.change == Change::Over && event.first ? " untold " : " ") +
               traits_of(event.situation.condition).key + " of " + event.situation.log +
               (event.change == Change::Over ? event.time.toString("' at 'HH:mm") : QString());
    }

    /** Between two looks the watch may always be killed and start again. */
    void reload()
    {
        Memory read;
        if (!read_memory_document(memory_document(memory), read))
            qFatal("The memory cannot be read again.");
        memory = read;
    }
};

/** Looks and what they tell, in turn. */
using Story = QList<QPair<QString, QString>>;
}  // namespace
Q_DECLARE_METATYPE(Story)

void WatchMemoryTest::each_thing_is_told_once_again_and_when_it_is_over_data()
{
    QTest::addColumn<int>("remind");
    QTest::addColumn<QString>("quiet");
    QTest::addColumn<Story>("story");

    add_row("once, again each hour, and over", 60, "",
            Story{{"08:00: instrument-silent of A", "begins instrument-silent of A"},
                  {"08:59: instrument-silent of A", ""},
                  {"09:00: instrument-silent of A", "lasts instrument-silent of A"},
                  {"09:59: instrument-silent of A", ""},
                  {"10:00: instrument-silent of A", "lasts instrument-silent of A"},
                  {"10:01: ", "over instrument-silent of A at 10:01"},
                  {"10:02: ", ""},
                  {"10:03: instrument-silent of A", "begins instrument-silent of A"}});
    add_row(
        "never again", 0, "",
        Story{{"08:00: done of A", "begins done of A"}, {"2 08:00: done of A since 08:00", ""}});
    add_row("the course of a test is not told", 60, "",
            Story{{"08:00: charging of A", ""},
                  {"09:00: discharging of A, testing-resistance of B, testing-charge of C", ""},
                  {"12:00: ", ""}});
    add_row("several logs, several conditions", 60, "",
            Story{{"08:00: done of A, no-current of B", "begins done of A, begins no-current of B"},
                  {"08:10: done of A since 08:00, no-current of B, disk-low of /logs",
                   "begins disk-low of /logs"},
                  {"08:20: no-current of B, disk-low of /logs", "over done of A at 08:20"}});
    add_row("what happens once has no reminder and no end", 60, "",
            Story{{"08:00: ended of A", "begins ended of A"},
                  {"09:30: ended of A since 08:00", ""},
                  {"09:40: ", ""}});
    add_row(
        "what happens once happens again", 60, "",
        Story{{"08:00: woke-from-sleep of /logs", "begins woke-from-sleep of /logs"},
              {"09:00: woke-from-sleep of /logs since 09:00", "begins woke-from-sleep of /logs"}});
    add_row("a later wait is another one", 60, "",
            Story{{"08:00: waits-for-operator of A", "begins waits-for-operator of A"},
                  {"09:30: waits-for-operator of A since 09:20",
                   "over waits-for-operator of A at 09:30, begins waits-for-operator of A"}});
    add_row("a restart knows a time less well", 60, "",
            Story{{"08:01: done of A, ended of B", "begins done of A, begins ended of B"},
                  {"08:05: done of A since 08:00, ended of B since 08:02", ""}});
    add_row("the clock is set twice", 60, "",
            Story{{"08:01: clock-stepped of /l", "begins clock-stepped of /l"},
                  {"07:01: clock-stepped of /l since 08:01, clock-stepped of /l",
                   "begins clock-stepped of /l"},
                  {"07:02: clock-stepped of /l since 08:01, clock-stepped of /l since 07:01", ""}});
    add_row("a silence is one, whatever its beginning is thought to be", 60, "",
            Story{{"08:00: instrument-silent of A", "begins instrument-silent of A"},
                  {"08:30: instrument-silent of A since 08:29", ""}});
    add_row("quiet hours hold back", 60, "22-6",
            Story{{"21:59: waits-for-operator of A", "begins waits-for-operator of A"},
                  {"22:00: waits-for-operator of A since 21:59, done of B", ""},
                  {"23:30: waits-for-operator of A since 21:59, done of B since 22:00", ""},
                  {"2 05:59: waits-for-operator of A since 21:59, done of B since 22:00", ""},
                  {"2 06:00: waits-for-operator of A since 21:59, done of B since 22:00",
                   "lasts waits-for-operator of A, begins done of B"}});
    add_row("quiet hours do not hold back what must be told", 60, "22-6",
            Story{{"23:00: instrument-silent of A, no-current of B, step-does-not-end of C",
                   "begins instrument-silent of A, begins no-current of B, "
                   "begins step-does-not-end of C"},
                  {"23:10: resistance-tests-fail of A, program-gone of B, disk-low of /l, "
                   "disk-full of /m",
                   "over instrument-silent of A at 23:10, "
                   "over step-does-not-end of C at 23:10, begins resistance-tests-fail of A, "
                   "begins program-gone of B, begins disk-low of /l, begins disk-full of /m"}});
    add_row(
        "what came and went in quiet hours is told as one", 60, "22-6",
        Story{{"23:00: waits-for-operator of A, ended of B, clock-stepped of /l", ""},
              {"23:20: perhaps-ended of C", ""},
              {"23:40: ", ""},
              {"2 06:00: ", "over untold waits-for-operator of A at 23:20, begins ended of B, "
                            "begins clock-stepped of /l, over untold perhaps-ended of C at 23:40"},
              {"2 06:01: ", ""}});
    add_row("what was told before is over after quiet hours", 60, "22-6",
            Story{{"21:00: done of A", "begins done of A"},
                  {"22:30: ", ""},
                  {"2 07:00: ", "over done of A at 22:30"}});
    add_row("what holds again within quiet hours was never over", 60, "22-6",
            Story{{"21:00: perhaps-ended of A", "begins perhaps-ended of A"},
                  {"22:30: ", ""},
                  {"23:00: perhaps-ended of A", ""},
                  {"2 06:00: perhaps-ended of A", "lasts perhaps-ended of A"}});
    add_row(
        "at its first look, what has been told by others or forgotten", 60, "",
        Story{{"2 12:00: ended of A since 10:59, program-gone of B since 11:59, "
               "ended of C since 2 11:01, done of D since 12:00",
               "begins ended of C, begins done of D"},
              {"2 13:30: program-gone of B since 11:59, done of D since 12:00", "lasts done of D"},
              {"2 13:31: done of D since 12:00", ""}});
    add_row("at a later look nothing is too old", 60, "",
            Story{{"08:00: ", ""}, {"3 08:00: ended of A since 09:00", "begins ended of A"}});
    add_row("the end of a test speaks for all that was up with it", 60, "",
            Story{{"08:00: done of A, instrument-silent of B, waits-for-operator of C",
                   "begins done of A, begins instrument-silent of B, begins waits-for-operator of "
                   "C"},
                  {"08:10: ended of A, program-gone of B, perhaps-ended of C, disk-low of A",
                   "begins ended of A, begins program-gone of B, begins perhaps-ended of C, begins "
                   "disk-low of A"},
                  {"08:20: waits-for-operator of C",
                   "over program-gone of B at 08:20, over perhaps-ended of C at 08:20, over "
                   "disk-low of A at 08:20, begins waits-for-operator of C"}});
    add_row("in quiet hours, too", 60, "22-6",
            Story{{"21:00: waits-for-operator of A", "begins waits-for-operator of A"},
                  {"22:30: ", ""},
                  {"23:30: ended of A", ""},
                  {"2 06:00: ended of A since 23:30", "begins ended of A"}});
    add_row("one trouble speaks for a lesser one", 60, "",
            Story{{"08:00: no-current of A, step-does-not-end of B, disk-low of /l",
                   "begins no-current of A, begins step-does-not-end of B, begins disk-low of /l"},
                  {"08:10: instrument-silent of A, instrument-silent of B, disk-full of /l",
                   "begins instrument-silent of A, begins instrument-silent of B, begins "
                   "disk-full of /l"},
                  {"08:20: no-current of A, disk-low of /l",
                   "over instrument-silent of A at 08:20, over instrument-silent of B at 08:20, "
                   "over disk-full of /l at 08:20, begins no-current of A, begins disk-low of "
                   "/l"}});
    add_row("a clock that was put back silences nothing", 60, "",
            Story{{"2 08:00: disk-full of /l", "begins disk-full of /l"},
                  {"07:00: disk-full of /l", "lasts disk-full of /l"},
                  {"07:30: disk-full of /l", ""},
                  {"08:00: disk-full of /l", "lasts disk-full of /l"}});
}

void WatchMemoryTest::each_thing_is_told_once_again_and_when_it_is_over()
{
    QFETCH(int, remind);
    QFETCH(QString, quiet);
    QFETCH(Story, story);
    TellRules rules;
    rules.remind_minutes = remind;
    QVERIFY(quiet.isEmpty() || read_quiet_hours(quiet, rules.quiet_hours));
    Life life(rules);
    for (const auto& [look, told] : story)
        QCOMPARE(look + " | " + life.look(look), look + " | " + told);
}

void WatchMemoryTest::nothing_changes_where_nothing_happens()
{
    Life life{TellRules()};
    life.look("08:00: done of A, charging of B");
    QVERIFY(life.changed);
    life.look("08:01: done of A since 08:00, discharging of B");
    QVERIFY(!life.changed);
    life.look("08:02: discharging of B");
    QVERIFY(life.changed);
    QVERIFY(life.memory.noted.isEmpty());
}

void WatchMemoryTest::numbers_count_up_over_restarts()
{
    Life life{TellRules()};
    life.look("08:00: done of A, done of B");
    QCOMPARE(life.memory.last_number, 2LL);
    life.look("08:01: done of B since 08:00");
    QCOMPARE(life.memory.last_number, 3LL);
}

KEST_GUILESS_TEST(WatchMemoryTest)
#include "tst_watch_memory.moc"
