#include "records/event_log.h"
#include "support/test_program.h"

#include <QBuffer>
#include <QtTest>

/** What the words of an event log tell of a test. */
class EventLogTest : public QObject
{
    Q_OBJECT

private slots:
    void changes_and_resets_are_read_and_telemetry_is_passed_over();
    void a_test_ends_as_its_last_change_says_data();
    void a_test_ends_as_its_last_change_says();
    void held_times_last_from_the_test_to_the_end_of_its_recovery();
    void two_writers_show_in_changes_that_no_test_makes_data();
    void two_writers_show_in_changes_that_no_test_makes();
    void the_event_log_stands_beside_its_log_data();
    void the_event_log_stands_beside_its_log();
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

void EventLogTest::two_writers_show_in_changes_that_no_test_makes_data()
{
    QTest::addColumn<QStringList>("changes");
    QTest::addColumn<QString>("reason");
    const QString start = "Charging/User clicked 'Start'.";
    QTest::newRow("a whole test") << WHOLE_TEST << QString();
    QTest::newRow("a charge test on the line that ends the charge")
        << QStringList{start, "Discharging/max charge time reached, prompt_to_discharge = false",
                       "Full Charge Test/next_charge_test_timeout reached",
                       "Discharging/charging voltage drop < 0.1v, prompt_to_discharge = false"}
        << QString();
    QTest::newRow("taken up again")
        << QStringList{start, "Discharging/x", start, "Discharging/x"} << QString();
    QTest::newRow("more cycles") << QStringList(WHOLE_TEST +
                                                QStringList{"Charging/user added a cycle"})
                                 << QString();
    QTest::newRow("two at once") << QStringList{start, start, "Discharging/first",
                                                "Discharging/second"}
                                 << "second";
    QTest::newRow("a recovery without a test")
        << QStringList{start, "Discharging/x", "IR Test/x", "Discharging/of the other"}
        << "of the other";
}

void EventLogTest::two_writers_show_in_changes_that_no_test_makes()
{
    QFETCH(QStringList, changes);
    QFETCH(QString, reason);
    const EventLog log = changes_of(changes);
    const PhaseChange* const change = log.second_writer();
    QCOMPARE(change == nullptr ? QString() : change->reason, reason);
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

KEST_GUILESS_TEST(EventLogTest)
#include "tst_event_log.moc"
