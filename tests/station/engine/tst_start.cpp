#include "station/test_station.h"
#include "support/station_bench.h"
#include "support/test_program.h"
#include "support/test_road.h"

#include "device/kestrometer.h"

#include <QFile>
#include <QPushButton>
#include <QtTest>

/** The questions before a test starts, and what can hinder it. */
class StartTest : public QObject
{
    Q_OBJECT

private slots:
    void only_what_is_doubtful_is_asked_data();
    void only_what_is_doubtful_is_asked();
    void a_no_at_any_question_leaves_no_trace_data();
    void a_no_at_any_question_leaves_no_trace();
    void a_closed_box_is_a_no();
    void lines_are_shown_while_a_question_is_open();
    void a_log_that_cannot_be_made_starts_nothing();
    void a_cancelled_log_starts_nothing();
    void bad_names_never_get_to_start_data();
    void bad_names_never_get_to_start();
};

namespace
{
const QString SERIAL_NUMBER = "Warning: Serial number has not been edited. Continue anyway?";
const QString CUTOFF = "Low-voltage cutoff is < 1v. Continue anyway?";
const QString CHARGE_TIME = "Max charge time is < 1 minute. Continue anyway?";

/** As a profile leaves them: a serial number that nobody has typed. */
void take_names(StationBench& bench)
{
    bench.type_names("Pack A", "1042");
    bench.station->serial_number_edited = false;
}

QStringList asked(const StationBench& bench)
{
    QStringList texts;
    for (const SeenBox& box : bench.answers.seen)
        texts += box.text;
    return texts;
}

}  // namespace

void StartTest::only_what_is_doubtful_is_asked_data()
{
    QTest::addColumn<bool>("edited");
    QTest::addColumn<double>("cutoff");
    QTest::addColumn<int>("charge_time");
    QTest::addColumn<QStringList>("questions");
    QTest::newRow("nothing") << true << 19.0 << 21600 << QStringList();
    QTest::newRow("serial number") << false << 19.0 << 21600 << QStringList{SERIAL_NUMBER};
    QTest::newRow("cutoff of exactly a volt") << true << 1.0 << 21600 << QStringList();
    QTest::newRow("cutoff just below") << true << 0.999 << 21600 << QStringList{CUTOFF};
    QTest::newRow("exactly a minute") << true << 19.0 << 60 << QStringList();
    QTest::newRow("just below a minute") << true << 19.0 << 59 << QStringList{CHARGE_TIME};
    QTest::newRow("no time") << true << 19.0 << 0 << QStringList{CHARGE_TIME};
    add_row("three in a row", false, 0.0, 0, QStringList{SERIAL_NUMBER, CUTOFF, CHARGE_TIME});
}

void StartTest::only_what_is_doubtful_is_asked()
{
    QFETCH(bool, edited);
    QFETCH(double, cutoff);
    QFETCH(int, charge_time);
    QFETCH(QStringList, questions);
    StationBench bench;
    take_names(bench);
    bench.station->serial_number_edited = edited;
    bench.station->low_voltage_cutoff = cutoff;
    bench.station->max_charge_time = charge_time;
    for (int question = 0; question < questions.size(); ++question)
        bench.answers.click(QMessageBox::Yes);
    bench.press("pbStartSkip");
    QCOMPARE(asked(bench), questions);
    for (const SeenBox& box : bench.answers.seen) {
        QCOMPARE(box.caption, QString(box.text == SERIAL_NUMBER ? "Confirm" : "Warning"));
        QCOMPARE(box.icon, QMessageBox::Question);
        QCOMPARE(int(box.buttons), int(QMessageBox::Yes | QMessageBox::No));
        QCOMPARE(box.default_button, QMessageBox::No);
        QVERIFY(!box.has_parent);
    }
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    QCOMPARE(events(bench),
             QStringList{"Switching to phase Charging because User clicked 'Start'."});
}

void StartTest::a_no_at_any_question_leaves_no_trace_data()
{
    QTest::addColumn<int>("yes");
    QTest::addColumn<QStringList>("questions");
    QTest::newRow("at the first") << 0 << QStringList{SERIAL_NUMBER};
    QTest::newRow("at the second") << 1 << QStringList{SERIAL_NUMBER, CUTOFF};
    QTest::newRow("at the third") << 2 << QStringList{SERIAL_NUMBER, CUTOFF, CHARGE_TIME};
}

void StartTest::a_no_at_any_question_leaves_no_trace()
{
    QFETCH(int, yes);
    StationBench bench;
    take_names(bench);
    bench.station->low_voltage_cutoff = 0.0;
    bench.station->max_charge_time = 0;
    for (int question = 0; question < yes; ++question)
        bench.answers.click(QMessageBox::Yes);
    bench.answers.click(QMessageBox::No);
    bench.press("pbStartSkip");
    QTEST(asked(bench), "questions");
    QCOMPARE(bench.station->phase, PHASE_IDLE);
    QVERIFY(bench.station->data_log == nullptr && bench.station->text_log == nullptr);
    QVERIFY(!bench.station->serial_number_edited);
    QCOMPARE(bench.station->serial_number, QString("1042"));
    QCOMPARE(bench.files(), QStringList());
    QCOMPARE(bench.wire.commands(), QByteArray());
    QVERIFY(bench.widget<QPushButton>("pbStartSkip")->isEnabled());
    QVERIFY(bench.widget<QWidget>("leSerialNumber")->isEnabled());

    // Asked again from the first on, the next time.
    bench.answers.seen.clear();
    for (int question = 0; question < 3; ++question)
        bench.answers.click(QMessageBox::Yes);
    bench.press("pbStartSkip");
    QCOMPARE(asked(bench), (QStringList{SERIAL_NUMBER, CUTOFF, CHARGE_TIME}));
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
}

void StartTest::a_closed_box_is_a_no()
{
    StationBench bench;
    take_names(bench);
    bench.answers.handle([](QWidget* box) { QTest::keyClick(box, Qt::Key_Escape); });
    bench.press("pbStartSkip");
    QCOMPARE(asked(bench), QStringList{SERIAL_NUMBER});
    QCOMPARE(bench.station->phase, PHASE_IDLE);
    QCOMPARE(bench.files(), QStringList());
}

void StartTest::lines_are_shown_while_a_question_is_open()
{
    StationBench bench;
    take_names(bench);
    bench.answers.handle([&bench](QWidget* box) {
        bench.receive("41.27", "0.0", "O");
        QCOMPARE(bench.text("laVoltage"), QString("41.3 V"));
        static_cast<QMessageBox*>(box)->button(QMessageBox::Yes)->click();
    });
    bench.press("pbStartSkip");
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    QCOMPARE(last_rows(bench), QStringList());
}

void StartTest::a_log_that_cannot_be_made_starts_nothing()
{
    StationBench bench;
    bench.receive("41.50", "0.0", "O");
    bench.station->log_dir = bench.path("no such directory");
    bench.answers.click(QMessageBox::Ok);
    bench.answers.click(QMessageBox::Ok);
    bench.start();
    QCOMPARE(asked(bench), (QStringList{"Could not open log file with write permission.",
                                        "Unable to create log file."}));
    for (const SeenBox& box : bench.answers.seen)
        QCOMPARE(box.caption, QString("Error"));
    QCOMPARE(bench.station->phase, PHASE_IDLE);
    QVERIFY(bench.station->data_log == nullptr && bench.station->text_log == nullptr);
    QVERIFY(bench.widget<QWidget>("leSerialNumber")->isEnabled());
    bench.receive("41.50", "0.0", "O");
    QCOMPARE(bench.station->phase, PHASE_IDLE);
}

void StartTest::a_cancelled_log_starts_nothing()
{
    StationBench bench;
    QFile earlier(bench.path("Pack A_1042.csv"));
    QVERIFY(earlier.open(QIODevice::WriteOnly));
    earlier.write("of an earlier test");
    earlier.close();
    bench.answers.click(QMessageBox::NoButton);  // dismisses the choice
    bench.answers.click(QMessageBox::Ok);
    bench.start();
    QCOMPARE(asked(bench), QStringList{"Unable to create log file."});
    QCOMPARE(bench.station->phase, PHASE_IDLE);
    QVERIFY(bench.station->data_log == nullptr);
    QCOMPARE(bench.file("Pack A_1042.csv"), QByteArray("of an earlier test"));
    QVERIFY(bench.widget<QPushButton>("pbStartSkip")->isEnabled());
}

void StartTest::bad_names_never_get_to_start_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("serial_number");
    add_row("no name", "", "1042");
    add_row("no serial number", "Pack A", "");
    add_row("a slash", "Pack/A", "1042");
    add_row("a colon", "Pack A", "10:42");
    add_row("a dot at the end", "Pack A.", "1042");
}

void StartTest::bad_names_never_get_to_start()
{
    QFETCH(QString, name);
    QFETCH(QString, serial_number);
    StationBench bench;
    bench.start(name, serial_number);
    QVERIFY(!bench.widget<QPushButton>("pbStartSkip")->isEnabled());
    QCOMPARE(bench.station->phase, PHASE_IDLE);
    QCOMPARE(bench.files(), QStringList());
}

KEST_TEST(StartTest)
#include "tst_start.moc"
