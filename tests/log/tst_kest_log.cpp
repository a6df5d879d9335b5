#include "program_run.h"
#include "support/ordinary_user.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QtTest>

#include <fcntl.h>
#include <sys/stat.h>

/** The program as people and scripts run it: info, check, repair, and the manner of all commands. */
class KestLogTest : public QObject
{
    Q_OBJECT

private slots:
    void wrong_arguments_are_told_data();
    void wrong_arguments_are_told();
    void help_and_manual_name_the_same_options();
    void the_manual_has_no_warnings();
    void check_tells_line_column_and_reason();
    void check_tells_apart_what_cannot_be_written();
    void info_of_several_logs_is_a_table_and_a_bad_file_among_them_is_told();
    void info_as_json_is_one_document_of_all();
    void repair_makes_a_copy_that_passes_and_leaves_the_log_alone();
    void repair_copies_nothing_that_needs_nothing();
    void repair_splits_an_older_head_from_current_sections();
    void repair_leaves_alone_what_two_stations_wrote();
    void a_target_that_exists_stays_without_force();
    void repair_takes_out_what_another_program_put_in_data();
    void repair_takes_out_what_another_program_put_in();
    void info_knows_what_no_older_log_tells();
    void two_logs_of_one_name_do_not_meet_in_a_folder();
};

namespace
{
QByteArray sample(const QString& name)
{
    return content_of(test_data("logs/" + name));
}

const QByteArray EVENTS = "2020-04-03 10:00:02 Switching to phase Charging because User clicked "
                          "'Start'.\n";
}  // namespace

void KestLogTest::wrong_arguments_are_told_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("none") << QStringList()
                          << "A command is missing: info, check, repair or export.";
    QTest::newRow("no such command")
        << QStringList{"mend", "a.csv"}
        << "There is no command 'mend'; info, check, repair and export are known.";
    QTest::newRow("no file") << QStringList{"info"} << "A file is missing.";
    QTest::newRow("no such option")
        << QStringList{"info", "--all", "a.csv"} << "Unknown option 'all'.";
    QTest::newRow("no format") << QStringList{"export", "a.csv"}
                               << "export needs --format csv, xlsx, bdf or json.";
    QTest::newRow("no such format")
        << QStringList{"export", "-f", "pdf", "a.csv"}
        << "There is no format 'pdf'; csv, xlsx, bdf and json are known.";
    QTest::newRow("a format of info")
        << QStringList{"info", "-f", "csv", "a.csv"} << "--format belongs to export.";
    QTest::newRow("json of export") << QStringList{"export", "-f", "csv", "--json", "a.csv"}
                                    << "--json is for info, check and repair; export has --format "
                                       "json.";
    QTest::newRow("a folder of check")
        << QStringList{"check", "-t", "x", "a.csv"} << "--to belongs to repair and export.";
    QTest::newRow("a zone of check")
        << QStringList{"check", "--zone", "UTC", "a.csv"} << "--zone belongs to export.";
    QTest::newRow("force of info")
        << QStringList{"info", "--force", "a.csv"} << "--force belongs to repair and export.";
    QTest::newRow("no such zone") << QStringList{"info", "--zone", "Moon", "a.csv"}
                                  << "There is no time zone 'Moon'.";
    QTest::newRow("no jobs") << QStringList{"info", "--jobs", "0", "a.csv"}
                             << "--jobs takes a number from 1 to 64.";
}

void KestLogTest::wrong_arguments_are_told()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, complaint);
    const Run run(kest_log(), arguments);
    QCOMPARE(run.complaints, "kest-log: " + complaint + " See kest-log --help.\n");
    QCOMPARE(run.output, QString());
    QCOMPARE(run.status, 2);
}

void KestLogTest::help_and_manual_name_the_same_options()
{
    const Run run(kest_log(), {"--help"});
    QCOMPARE(run.status, 0);
    const QString manual = content_of(source_file("docs/man/kest-log.1")).replace("\\-", "-");
    const QString completion = content_of(source_file("packaging/completion/kest-log"));
    static const QRegularExpression option("--[a-z]+");
    QRegularExpressionMatchIterator found = option.globalMatch(run.output);
    int options = 0;
    while (found.hasNext()) {
        const QString name = found.next().captured();
        if (name == "--help-all")
            continue;
        QVERIFY2(manual.contains(name), qPrintable(name));
        QVERIFY2(completion.contains(name), qPrintable(name));
        ++options;
    }
    QVERIFY(options >= 9);
    QRegularExpressionMatchIterator told = option.globalMatch(manual);
    while (told.hasNext())
        QVERIFY(run.output.contains(told.next().captured()));
}

void KestLogTest::the_manual_has_no_warnings()
{
    const Run run("man", {"--warnings", "-l", source_file("docs/man/kest-log.1")});
    QCOMPARE(run.complaints, QString());
    QVERIFY(run.output.contains("kest-log"));
}

void KestLogTest::check_tells_line_column_and_reason()
{
    const Place place;
    place.write("good.csv", sample("current_one_cycle.csv"));
    place.write("good.txt", EVENTS);
    place.write("bad.csv", sample("current_one_cycle.csv").replace("40.95", "4x.95"));
    place.write("bad.txt", EVENTS);
    const Run run = place.run({"check", "good.csv", "bad.csv"});
    QCOMPARE(run.output,
             QString("good.csv: loads\n"
                     "bad.csv: does not load: line 28, column 11: '4x.95' is no number\n"));
    QCOMPARE(run.complaints, QString());
    QCOMPARE(run.status, 1);
    QCOMPARE(place.run({"check", "good.csv"}).status, 0);
    const QJsonObject json = place.run({"check", "--json", "bad.csv"}).json();
    const QJsonObject refusal = json["files"].toArray()[0].toObject()["refusal"].toObject();
    QCOMPARE(refusal["line"].toInt(), 28);
    QCOMPARE(refusal["column"].toInt(), 11);
    QCOMPARE(refusal["reason"].toString(), QString("'4x.95' is no number"));
}

void KestLogTest::check_tells_apart_what_cannot_be_written()
{
    const OrdinaryUser user;
    const Place place;
    place.write("a.csv", sample("current_one_cycle.csv"));
    place.write("a.txt", EVENTS);
    QFile::setPermissions(place.path("a.csv"), QFile::ReadOwner);
    const Run run = place.run({"check", "a.csv"});
    QCOMPARE(run.output, QString("a.csv: the application could not open it: there is no permission "
                                 "to write it\n"));
    QCOMPARE(run.status, 1);
}

void KestLogTest::info_of_several_logs_is_a_table_and_a_bad_file_among_them_is_told()
{
    const Place place;
    place.write("a.csv", sample("current_one_cycle.csv"));
    place.write("c.csv", sample("older_two_cycles.csv"));
    const Run run = place.run({"info", "a.csv", "b.csv", "c.csv"});
    const QStringList lines = run.output.split('\n');
    QCOMPARE(lines.size(), 4);
    QVERIFY(lines[0].startsWith("file   battery"));
    QVERIFY(lines[1].startsWith("a.csv  Pack A "));
    QVERIFY(lines[2].startsWith("c.csv  Pack C "));
    QCOMPARE(run.complaints, QString("kest-log: b.csv cannot be read: No such file or directory. "
                                     "Name a data log, or a folder with such.\n"));
    QCOMPARE(run.status, 1);
}

void KestLogTest::info_as_json_is_one_document_of_all()
{
    const Place place;
    for (int i = 0; i < 30; ++i)
        place.write(QString("log%1.csv").arg(i, 2, 10, QChar('0')),
                    i == 7 ? QByteArray("no log\n") : sample("current_two_cycles.csv"));
    const Run run = place.run({"info", "--json", "--jobs", "4", "."});
    QCOMPARE(run.status, 1);
    const QJsonArray files = run.json()["files"].toArray();
    QCOMPARE(files.size(), 30);
    for (int i = 0; i < 30; ++i) {
        const QJsonObject file = files[i].toObject();
        QVERIFY(file["file"].toString().endsWith(QString("log%1.csv").arg(i, 2, 10, QChar('0'))));
        QCOMPARE(file["loads"].toBool(), i != 7);
        QCOMPARE(file["cycles"].toArray().size(), i == 7 ? 0 : 2);
    }
}

void KestLogTest::repair_makes_a_copy_that_passes_and_leaves_the_log_alone()
{
    const Place place;
    const QByteArray whole = sample("current_one_cycle.csv");
    const QByteArray torn = whole + "1.8,38.1";
    place.write("a.csv", torn);
    const struct timespec long_ago[2] = {{1000000000, 0}, {1000000000, 0}};
    QCOMPARE(::utimensat(AT_FDCWD, qPrintable(place.path("a.csv")), long_ago, 0), 0);
    const Run run = place.run({"repair", "a.csv"});
    QCOMPARE(run.output, QString("a.csv: mended in a.repaired.csv\n"
                                 "a.csv: left out line 42: the last line, which has no end\n"));
    QCOMPARE(run.status, 1);
    QCOMPARE(content_of(place.path("a.repaired.csv")), whole);
    struct stat status = {};
    QCOMPARE(::stat(qPrintable(place.path("a.csv")), &status), 0);
    QCOMPARE(qint64(status.st_mtim.tv_sec), qint64(1000000000));
    QCOMPARE(qint64(status.st_atim.tv_sec), qint64(1000000000));
    QCOMPARE(content_of(place.path("a.csv")), torn);
    QCOMPARE(place.names(), (QStringList{"a.csv", "a.repaired.csv"}));
}

void KestLogTest::repair_copies_nothing_that_needs_nothing()
{
    const Place place;
    place.write("a.csv", sample("current_one_cycle.csv"));
    const Run run = place.run({"repair", "a.csv"});
    QCOMPARE(run.output, QString("a.csv: needs nothing\n"));
    QCOMPARE(run.status, 0);
    QCOMPARE(place.names(), QStringList{"a.csv"});
}

void KestLogTest::repair_splits_an_older_head_from_current_sections()
{
    const Place place;
    const QByteArray older = sample("older_two_cycles.csv");
    const QByteArray taken_up = "Charge Number:               3\n"
                                "Timestamp:                   2020-04-03 09:15:02\n"
                                "Time (s),Voltage (V)\n0.9,41.52\n";
    place.write("a.csv", older + taken_up);
    const Run run = place.run({"repair", "--json", "a.csv"});
    QCOMPARE(run.status, 1);
    QCOMPARE(content_of(place.path("a.repaired.csv")), older);
    QCOMPARE(content_of(place.path("a.repaired-2.csv")),
             "Kestrometer Log\nBattery Name:  Pack C\nSerial Number: 0815\n" +
                 QByteArray(taken_up).replace("3\nT", "1\nT"));
    const QJsonObject result = run.json()["files"].toArray()[0].toObject();
    QCOMPARE(result["result"].toString(), QString("mended"));
    QCOMPARE(result["copies"].toArray().size(), 2);
}

void KestLogTest::repair_leaves_alone_what_two_stations_wrote()
{
    const Place place;
    place.write("a.csv", sample("current_one_cycle.csv") + "cut");
    const QByteArray discharging = "2020-04-03 10:00:04 Switching to phase Discharging because "
                                   "max charge time reached, first cycle\n";
    place.write("a.txt", EVENTS + EVENTS + discharging + discharging);
    const Run run = place.run({"repair", "a.csv"});
    QCOMPARE(run.output,
             QString("a.csv: not mended: two stations wrote it at once, as its event log tells: "
                     "'Discharging' at 2020-04-03 10:00:04 belongs to a test that was under way "
                     "when another was started\n"));
    QCOMPARE(run.status, 1);
    QCOMPARE(place.names(), (QStringList{"a.csv", "a.txt"}));
}

void KestLogTest::a_target_that_exists_stays_without_force()
{
    const Place place;
    place.write("a.csv", sample("current_one_cycle.csv") + "cut");
    place.write("a.repaired.csv", "mine");
    const Run run = place.run({"repair", "a.csv"});
    QCOMPARE(run.complaints,
             QString("kest-log: a.repaired.csv exists; add --force to replace it.\n"));
    QCOMPARE(run.status, 1);
    QCOMPARE(content_of(place.path("a.repaired.csv")), QByteArray("mine"));
    place.run({"repair", "--force", "a.csv"});
    QCOMPARE(content_of(place.path("a.repaired.csv")), sample("current_one_cycle.csv"));
    QCOMPARE(place.names(), (QStringList{"a.csv", "a.repaired.csv"}));
}

void KestLogTest::repair_takes_out_what_another_program_put_in_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QString>("said");
    const QByteArray whole = sample("current_one_cycle.csv");
    QTest::newRow("carriage returns")
        << QByteArray(whole).replace("\n", "\r\n")
        << "mended in a.repaired.csv|Carriage returns, which no test writes, are left out.";
    QTest::newRow("a byte order mark")
        << "\xef\xbb\xbf" + whole
        << "mended in a.repaired.csv|The byte order mark at its beginning is left out.";
    QTest::newRow("two bytes a character")
        << QByteArray("\xff\xfeK\0e\0", 6)
        << "not mended: it is in UTF-16 or UTF-32; save it as UTF-8";
}

void KestLogTest::repair_takes_out_what_another_program_put_in()
{
    QFETCH(QByteArray, log);
    QFETCH(QString, said);
    const Place place;
    place.write("a.csv", log);
    const Run run = place.run({"repair", "a.csv"});
    QCOMPARE(run.output, "a.csv: " + said.replace("|", "\na.csv: ") + '\n');
    QCOMPARE(run.status, 1);
    if (said.startsWith("mended"))
        QCOMPARE(content_of(place.path("a.repaired.csv")), sample("current_one_cycle.csv"));
    else
        QCOMPARE(place.names(), QStringList{"a.csv"});
}

void KestLogTest::info_knows_what_no_older_log_tells()
{
    const Place place;
    place.write("a.csv", sample("older_two_cycles.csv"));
    place.write("b.csv", sample("current_one_cycle.csv"));
    const auto parameters = [&place](const QString& name) {
        const QJsonObject file =
            place.run({"info", "--json", name}).json()["files"].toArray()[0].toObject();
        return file["sections"].toArray()[0].toObject()["parameters"].toObject();
    };
    const QJsonObject older = parameters("a.csv");
    QCOMPARE(older["number_of_cycles"].toInt(), 3);
    for (const char* key :
         {"detect_full_charge", "measure_internal_resistance", "resistance_interval_amp_hours"}) {
        QCOMPARE(older[key], QJsonValue());
        QVERIFY(!parameters("b.csv")[key].isNull());
    }
    QCOMPARE(parameters("b.csv")["number_of_cycles"], QJsonValue());
    QVERIFY(place.run({"info", "a.csv"}).output.contains("  charge 1                  2  ?     "));
}

void KestLogTest::two_logs_of_one_name_do_not_meet_in_a_folder()
{
    const Place place;
    for (const char* folder : {"one", "two", "out"})
        QDir(place.path(".")).mkdir(folder);
    place.write("one/a.csv", sample("current_one_cycle.csv"));
    place.write("two/a.csv", sample("older_two_cycles.csv"));
    const Run run = place.run(
        {"export", "--force", "--jobs", "1", "-f", "csv", "--to", "out", "one/a.csv", "two/a.csv"});
    QCOMPARE(run.output, QString("out/a.tidy.csv\n"));
    QCOMPARE(run.complaints, QString("kest-log: out/a.tidy.csv has been made of another log just "
                                     "now; export this one to another folder with --to.\n"));
    QCOMPARE(run.status, 1);
    QVERIFY(content_of(place.path("out/a.tidy.csv")).contains("Pack A"));
}

KEST_GUILESS_TEST(KestLogTest)
#include "tst_kest_log.moc"
