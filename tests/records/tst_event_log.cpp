#include "records/charge_leg.h"
#include "records/event_log.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QBuffer>
#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

/** What the words of an event log tell of a test. */
class EventLogTest : public QObject
{
    Q_OBJECT

private slots:
    void changes_and_resets_are_read_and_telemetry_is_passed_over();
    void a_test_ends_as_its_last_change_says_data();
    void a_test_ends_as_its_last_change_says();
    void held_times_last_from_the_test_to_the_end_of_its_recovery();
    void two_writers_show_where_a_test_goes_on_beside_another_data();
    void two_writers_show_where_a_test_goes_on_beside_another();
    void two_instruments_that_take_turns_are_two_writers_data();
    void two_instruments_that_take_turns_are_two_writers();
    void no_whole_test_has_two_writers_data();
    void no_whole_test_has_two_writers();
    void charges_last_from_their_head_to_their_end_data();
    void charges_last_from_their_head_to_their_end();
    void the_event_log_stands_beside_its_log_data();
    void the_event_log_stands_beside_its_log();
    void a_pipe_beside_a_log_holds_nobody_up();
};

namespace
{
EventLog log_of(QByteArray text)
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly | QIODevice::Text);
    return read_event_log(buffer);
}

/** One change a second, "Charging/User clicked 'Start'." each. */
EventLog changes_of(const QStringList& changes)
{
    QString text;
    QDateTime time(QDate(2020, 4, 3), QTime(9, 0));
    for (const QString& change : changes) {
        time = time.addSecs(1);
        text += time.toString("yyyy-MM-dd hh:mm:ss") +
                QString(" Switching to phase %1 because %2\n")
                    .arg(change.section('/', 0, 0), change.section('/', 1));
    }
    return log_of(text.toUtf8());
}

const QStringList WHOLE_TEST = {
    "Charging/User clicked 'Start'.",
    "Charging/voltage has leveled off",
    "Full Charge Test/next_charge_test_timeout reached",
    "Ready for 0th Discharge/charging voltage drop < 0.1v, prompt_to_discharge = true",
    "Discharging/User clicked 'Start'.",
    "IR Test/amp_hours (0.500) >= next_ir_check_ah (0.5)",
    "Recovering from IR Test/Completed IR Test, IR = 14.000",
    "Discharging/Finished recovering from IR test",
    "IR Test/amp_hours (1.000) >= next_ir_check_ah (1)",
    "Charging (final)/voltage (18.9) < low_voltage_cutoff (19)",
    "Final Charge Test/next_charge_test_timeout reached",
    "Charging (final)/voltage (36) < final_voltage (37.5)",
    "Done/max charge time reached",
};
}  // namespace

void EventLogTest::changes_and_resets_are_read_and_telemetry_is_passed_over()
{
    const EventLog log = log_of("2020-04-03 09:15:02 Switching to phase Charging because User "
                                "clicked 'Start'.\n"
                                "2020-04-03 09:15:03 KEST\t24.10\t4.8\n"
                                "2020-04-03 09:16:00 Attempting to reset the Kestrometer as it may "
                                "be stuck in bootloader mode.\n"
                                "short\n2020-04-03 10:00:00 Switching to phase cut");
    QVERIFY(log.exists);
    QCOMPARE(log.changes.size(), 1);
    QCOMPARE(log.changes[0].phase, QString("Charging"));
    QCOMPARE(log.changes[0].reason, QString("User clicked 'Start'."));
    QCOMPARE(log.changes[0].time, QDateTime(QDate(2020, 4, 3), QTime(9, 15, 2)));
    QCOMPARE(log.resets, QList<QDateTime>{QDateTime(QDate(2020, 4, 3), QTime(9, 16))});
}

void EventLogTest::a_test_ends_as_its_last_change_says_data()
{
    QTest::addColumn<QStringList>("changes");
    QTest::addColumn<QString>("end");
    QTest::newRow("nothing") << QStringList() << QString();
    QTest::newRow("done") << WHOLE_TEST
                          << "Done on 2020-04-03 09:00:13 because max charge time reached";
    QTest::newRow("in the middle") << QStringList(WHOLE_TEST.mid(0, 5))
                                   << "Discharging on 2020-04-03 09:00:05 because User clicked "
                                      "'Start'.";
}

void EventLogTest::a_test_ends_as_its_last_change_says()
{
    QFETCH(QStringList, changes);
    const EventLog log = changes_of(changes);
    QTEST(log.end_text(), "end");
    const TestEnd end = changes.isEmpty()     ? TestEnd::Unknown
                        : changes.size() == 5 ? TestEnd::Unfinished
                                              : TestEnd::Done;
    QCOMPARE(log.end(), end);
}

void EventLogTest::held_times_last_from_the_test_to_the_end_of_its_recovery()
{
    const QList<HeldTime> times = changes_of(WHOLE_TEST).held_times();
    const QDate day(2020, 4, 3);
    QCOMPARE(times.size(), 2);
    QCOMPARE(times[0].begin, QDateTime(day, QTime(9, 0, 6)));
    QCOMPARE(times[0].end, QDateTime(day, QTime(9, 0, 8)));
    QCOMPARE(times[1].begin, QDateTime(day, QTime(9, 0, 9)));
    QCOMPARE(times[1].end, QDateTime(day, QTime(9, 0, 10)));
}

void EventLogTest::two_writers_show_where_a_test_goes_on_beside_another_data()
{
    QTest::addColumn<QStringList>("changes");
    QTest::addColumn<QString>("accused");
    const QString start = "Charging/User clicked 'Start'.";
    const QString discharge = "Discharging/max charge time reached, prompt_to_discharge = false";
    const QString level = "Charging/voltage has leveled off";
    const QString test = "IR Test/amp_hours (%1) >= next_ir_check_ah (0.5)";
    const QString done = "Recovering from IR Test/Completed IR Test, IR = 14.000";
    const QString recovered = "Discharging/Finished recovering from IR test";
    const QString cutoff = "Charging (final)/voltage (18.9) < low_voltage_cutoff (19)";
    QTest::newRow("a whole test") << WHOLE_TEST << QString();
    QTest::newRow("a charge test on the line that ends the charge")
        << QStringList{start, level, discharge, "Full Charge Test/next_charge_test_timeout reached",
                       "Discharging/charging voltage drop < 0.1v, prompt_to_discharge = false"}
        << QString();
    QTest::newRow("taken up again") << QStringList{start, discharge, start, discharge} << QString();
    QTest::newRow("more cycles") << QStringList(WHOLE_TEST +
                                                QStringList{"Charging/User clicked 'Skip'"})
                                 << QString();
    QTest::newRow("a line lost") << QStringList{start, discharge, test.arg("0.500"), recovered}
                                 << QString();
    QTest::newRow("a line lost behind a skip")
        << QStringList{start, discharge, "Charging/User clicked 'Skip'", test.arg("0.500"), done}
        << QString();
    QTest::newRow("words of another version")
        << QStringList{start, start, "Resting/x", "Discharging/x", "Discharging/x"} << QString();
    QTest::newRow("two discharges")
        << QStringList{start, start, discharge, discharge} << "Discharging";
    QTest::newRow("the first is tested while the second charges")
        << QStringList{start, discharge, start, test.arg("0.500")} << "IR Test";
    QTest::newRow("the first ends while the second charges")
        << QStringList{start, discharge, start, cutoff} << "Charging (final)";
    QTest::newRow("the second is behind in amp-hours")
        << QStringList{start,     discharge,         test.arg("0.500"),
                       done,      recovered,         start,
                       discharge, test.arg("0.500"), done,
                       recovered, test.arg("1.000"), done,
                       recovered, test.arg("0.900")}
        << "IR Test";
    QTest::newRow("a skip beside a charge")
        << QStringList{start, start, "Discharging/User clicked 'Skip'",
                       "Discharging/User clicked 'Skip'"}
        << "Discharging";
}

void EventLogTest::two_writers_show_where_a_test_goes_on_beside_another()
{
    QFETCH(QStringList, changes);
    QFETCH(QString, accused);
    const QString time = QString("2020-04-03 09:00:%1").arg(changes.size(), 2, 10, QChar('0'));
    QCOMPARE(changes_of(changes).two_writers,
             accused.isEmpty() ? QString()
                               : QString("'%1' at %2 belongs to a test that was under way when "
                                         "another was started")
                                     .arg(accused, time));
}

void EventLogTest::two_instruments_that_take_turns_are_two_writers_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<bool>("two");
    const QByteArray seven = "2020-04-03 09:15:03 KEST\t24.10\t4.8\t25.0\t0\tID=7\tC\n";
    const QByteArray nine = QByteArray(seven).replace("ID=7", "ID=9");
    const QByteArray start = "2020-04-03 09:15:02 Switching to phase Charging because User clicked "
                             "'Start'.\n";
    QTest::newRow("one") << seven.repeated(50) << false;
    QTest::newRow("exchanged") << seven.repeated(50) + nine.repeated(50) + seven.repeated(50)
                               << false;
    QTest::newRow("in turn") << (seven + nine).repeated(11) << true;
    QTest::newRow("another one at each start")
        << (start + seven + start + nine).repeated(50) << false;
    QTest::newRow("no number") << (seven + QByteArray(nine).replace("ID=9", "ID=x")).repeated(50)
                               << false;
    QTest::newRow("a field too few")
        << (seven + QByteArray(nine).replace("25.0\t", "")).repeated(50) << false;
}

void EventLogTest::two_instruments_that_take_turns_are_two_writers()
{
    QFETCH(QByteArray, lines);
    QFETCH(bool, two);
    QCOMPARE(log_of(lines).two_writers,
             two ? QString("instruments 7 and 9 take turns at 2020-04-03 09:15:03") : QString());
}

void EventLogTest::no_whole_test_has_two_writers_data()
{
    QTest::addColumn<QString>("path");
    for (const char* folder : {"whole", "courses"})
        for (const QString& name : QDir(test_data(folder)).entryList({"*.txt"}))
            QTest::addRow("%s", qPrintable(name)) << test_data(QString(folder) + '/' + name);
}

void EventLogTest::no_whole_test_has_two_writers()
{
    QFETCH(QString, path);
    const EventLog log = log_of(content_of(path));
    QVERIFY(!log.changes.isEmpty());
    QCOMPARE(log.two_writers, QString());
}

void EventLogTest::charges_last_from_their_head_to_their_end_data()
{
    QTest::addColumn<QStringList>("changes");
    QTest::addColumn<QString>("legs");
    const QString timed = "Discharging/max charge time reached, prompt_to_discharge = false";
    QTest::newRow("a whole test") << WHOLE_TEST << "0-3 9-12 by time";
    QTest::newRow("by time, and taken up again")
        << QStringList{WHOLE_TEST[0], WHOLE_TEST[1], timed, WHOLE_TEST[0]} << "0-2 by time 3-";
    QTest::newRow("taken up again in a charge")
        << QStringList{WHOLE_TEST[0], WHOLE_TEST[0], timed} << "0- 1-2 by time";
    QTest::newRow("a cycle added")
        << QStringList{WHOLE_TEST[0], timed, WHOLE_TEST[9], "Charging/user added a cycle", timed}
        << "0-1 by time 2- 3-4 by time";
}

void EventLogTest::charges_last_from_their_head_to_their_end()
{
    QFETCH(QStringList, changes);
    const QDateTime first(QDate(2020, 4, 3), QTime(9, 0, 1));
    QStringList texts;
    for (const ChargeLeg& leg : charge_legs(changes_of(changes).changes))
        texts << QString("%1-%2%3")
                     .arg(first.secsTo(leg.begin))
                     .arg(leg.end.isValid() ? QString::number(first.secsTo(leg.end)) : QString(),
                          leg.time_ended ? " by time" : "");
    QTEST(texts.join(' '), "legs");
}

void EventLogTest::the_event_log_stands_beside_its_log_data()
{
    QTest::addColumn<QString>("log");
    QTest::addColumn<QString>("events");
    QTest::newRow("usual") << "a/Pack A_1.csv"
                           << "a/Pack A_1.txt";
    QTest::newRow("several points") << "a.b/c.d.csv"
                                    << "a.b/c.d.txt";
    QTest::newRow("no point") << "log"
                              << "";
}

void EventLogTest::the_event_log_stands_beside_its_log()
{
    QFETCH(QString, log);
    QTEST(event_log_path(log), "events");
}

void EventLogTest::a_pipe_beside_a_log_holds_nobody_up()
{
    const QTemporaryDir folder;
    QCOMPARE(::mkfifo(qPrintable(folder.filePath("a.txt")), 0600), 0);
    QVERIFY(!event_log_beside(folder.filePath("a.csv")).exists);
}

KEST_GUILESS_TEST(EventLogTest)
#include "tst_event_log.moc"
