#include "support/golden_file.h"
#include "support/test_program.h"
#include "watch/log_place.h"
#include "watch/status.h"

#include "common/settings_place.h"
#include "config/settings.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

/** What `kest-watch status` prints. */
class WatchStatusTest : public QObject
{
    Q_OBJECT

private slots:
    void a_look_is_a_line_a_test();
    void a_look_is_a_document();
    void trouble_is_told_by_the_exit_code_data();
    void trouble_is_told_by_the_exit_code();
    void a_hostile_name_moves_no_cursor();
    void the_folder_is_that_of_the_application();
    void the_program_prints_one_look();
    void the_program_refuses_what_is_no_folder();
};

namespace
{
const QDateTime NOON(QDate(2026, 3, 4), QTime(12, 0), Qt::UTC);

Situation found(const QByteArray& log, Condition condition)
{
    Situation situation;
    situation.log = log;
    situation.condition = condition;
    situation.since = NOON.addSecs(-90);
    return situation;
}

Situation discharging()
{
    Situation situation = found("/logs/a.csv", Condition::Discharging);
    TestFacts& facts = situation.facts;
    facts.battery = "Pack A";
    facts.serial_number = "1042";
    facts.phase = "Discharging";
    facts.reason = "User clicked 'Skip'";
    facts.cycle = 2;
    facts.volts = 24.1;
    facts.amps = 4.8;
    facts.amp_hours = 1.25;
    facts.milliohms = 152.5;
    facts.row_age = 61;
    facts.end_from = NOON.addSecs(3600);
    facts.end_to = NOON.addSecs(7200);
    facts.end_error = 0.04;
    return situation;
}

Look whole_look()
{
    Situation no_current = discharging();
    no_current.condition = Condition::NoCurrent;
    no_current.detail = "No row for 01m 01s.";
    Situation waiting = found("/logs/\xff.csv", Condition::WaitsForOperator);
    waiting.facts.battery = "Pack B";
    Situation put_away = found("/logs/b.csv", Condition::Ended);
    put_away.facts.battery = "Pack C";
    put_away.facts.phase = "Done";
    Situation low = found("/logs", Condition::DiskLow);
    low.detail = "120.0 MB are left.";
    Look look;
    look.situations = {discharging(), no_current, waiting, put_away, low};
    return look;
}

struct Run
{
    explicit Run(const QStringList& arguments)
    {
        QProcess process;
        process.start(KEST_WATCH, arguments);
        process.waitForFinished(120000);
        status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        output = process.readAllStandardOutput();
        complaints = process.readAllStandardError();
    }

    int status;
    QByteArray output;
    QByteArray complaints;
};
}  // namespace

Q_DECLARE_METATYPE(Condition)

void WatchStatusTest::a_look_is_a_line_a_test()
{
    QCOMPARE(status_text(Look()), QString("No test runs.\n"));
    QCOMPARE(difference_from_golden("watch/status.txt", status_text(whole_look()).toUtf8()),
             QString());
}

void WatchStatusTest::a_look_is_a_document()
{
    const QJsonDocument document(status_json(whole_look(), {"/logs"}, NOON));
    QCOMPARE(difference_from_golden("watch/status.json", document.toJson()), QString());
}

void WatchStatusTest::trouble_is_told_by_the_exit_code_data()
{
    QTest::addColumn<Condition>("condition");
    QTest::addColumn<bool>("trouble");
    for (int i = 0; i <= int(Condition::WokeFromSleep); ++i) {
        const auto condition = Condition(i);
        const bool good = condition <= Condition::Done || condition == Condition::Ended;
        QTest::newRow(traits_of(condition).key) << condition << !good;
    }
}

void WatchStatusTest::trouble_is_told_by_the_exit_code()
{
    QFETCH(Condition, condition);
    Look look;
    look.situations << discharging() << found("/logs", condition);
    QTEST(has_trouble(look), "trouble");
}

void WatchStatusTest::a_hostile_name_moves_no_cursor()
{
    Situation situation = discharging();
    situation.facts.battery = "a\x1b[2J\n\u2028\u202e" + QString(50, 'x');
    Look look;
    look.situations << situation;
    const QString text = status_text(look);
    QCOMPARE(text.count('\n'), 2);
    for (const QChar character : {QChar(0x1b), QChar(0x2028), QChar(0x202e)})
        QVERIFY(!text.contains(character));
    QVERIFY(text.contains(QString(32, 'x') + QChar(0x2026)));
    const QJsonObject test = status_json(look, {}, NOON)["tests"].toArray().first().toObject();
    QCOMPARE(test["battery"].toString(), situation.facts.battery);
}

void WatchStatusTest::the_folder_is_that_of_the_application()
{
    QCoreApplication::setApplicationName(APPLICATION_NAME);
    QCOMPARE(settings_folder_of(APPLICATION_NAME), Settings::get_settings_dir());
    QFile::remove(Settings::get_settings_filename());
    QCOMPARE(log_folder_of_application(), QString());
    QVERIFY(Settings::load());
    Settings::set_log_dir("/logs of mine");
    QVERIFY(Settings::save());
    QCOMPARE(log_folder_of_application(), QString("/logs of mine"));
    QFile::remove(Settings::get_settings_filename());
}

void WatchStatusTest::the_program_prints_one_look()
{
    const QTemporaryDir folder;
    const Run lines({"status", folder.path()});
    QCOMPARE(lines.complaints, QByteArray());
    QCOMPARE(lines.output, QByteArray("No test runs.\n"));
    QCOMPARE(lines.status, 0);
    const Run document({"status", "--json", folder.path()});
    const QJsonObject object = QJsonDocument::fromJson(document.output).object();
    QCOMPARE(object["version"].toInt(), 1);
    QCOMPARE(object["folders"].toArray().first().toString(), folder.path());
    QVERIFY(object["tests"].toArray().isEmpty());
}

void WatchStatusTest::the_program_refuses_what_is_no_folder()
{
    const Run run({"status", "/no/such/folder"});
    QCOMPARE(run.status, 2);
    QCOMPARE(run.complaints, QByteArray("kest-watch: There is no folder '/no/such/folder'.\n"));
    QCOMPARE(run.output, QByteArray());
}

KEST_GUILESS_TEST(WatchStatusTest)
#include "tst_watch_status.moc"
