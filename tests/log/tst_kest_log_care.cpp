#include "program_run.h"
#include "support/ordinary_user.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QDir>
#include <QJsonArray>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

#include <csignal>
#include <functional>
#include <sys/stat.h>

/** What scripts and nights rely on: no file half done, no word lost, no memory that grows. */
class KestLogCareTest : public QObject
{
    Q_OBJECT

private slots:
    void a_signal_leaves_no_file_half_done_data();
    void a_signal_leaves_no_file_half_done();
    void what_is_no_log_is_told_by_every_command_data();
    void what_is_no_log_is_told_by_every_command();
    void a_full_disk_is_told_and_leaves_nothing_data();
    void a_full_disk_is_told_and_leaves_nothing();
    void a_result_that_nobody_takes_is_told();
    void a_folder_that_takes_no_file_is_told_data();
    void a_folder_that_takes_no_file_is_told();
    void a_target_that_exists_stays_data();
    void a_target_that_exists_stays();
    void a_bad_log_among_a_thousand_is_told();
    void a_log_that_grows_is_read_as_it_was_data();
    void a_log_that_grows_is_read_as_it_was();
    void memory_does_not_grow_data();
    void memory_does_not_grow();
    void colour_is_for_terminals_data();
    void colour_is_for_terminals();
};

namespace
{
const QByteArray HEAD = "Kestrometer Log\nBattery Name:  A\nSerial Number: 1\n";
const QByteArray CHARGE = HEAD + "Charge Number:               1\n"
                                 "Timestamp:                   2020-04-03 10:00:00\n"
                                 "Time (s),Voltage (V)\n";
const QByteArray DISCHARGE = HEAD + "Discharge Number:            1\n"
                                    "Timestamp:                   2020-04-03 10:00:00\n"
                                    "Time (s),Amp-Hours (Ah),Voltage (V),Current (A),IR (mOhms)\n";

/** A discharge of so many seconds, with a resistance every thousand rows. */
QByteArray long_log(int rows)
{
    QByteArray log = DISCHARGE;
    for (int i = 1; i <= rows; ++i) {
        log += QByteArray::number(i) + ".0," + QByteArray::number(i * 0.003, 'f', 3) +
               ",40.00,10.00" + (i % 1000 == 0 ? ",0.014\n" : "\n");
    }
    return log;
}

QByteArray log_of_sections(int count)
{
    QByteArray log = HEAD;
    for (int i = 1; i <= count; ++i)
        log += "Discharge Number:            " + QByteArray::number(i) +
               "\nTimestamp:                   2020-04-03 10:00:00\n"
               "1.0,0.003,40.00,10.00\n";
    return log;
}

/** All that kest-log does, a row each. */
void add_commands()
{
    QTest::addColumn<QStringList>("command");
    for (const char* command : {"info", "check", "repair"})
        QTest::newRow(command) << QStringList{command};
    for (const char* format : {"csv", "json", "bdf", "xlsx"})
        QTest::newRow(format) << QStringList{"export", "--zone", "UTC", "-f", format};
}

/** The files that such a command makes of "a.csv". */
QStringList targets_of(const QStringList& command)
{
    static const QMap<QString, QStringList> TARGETS = {
        {"repair", {"a.repaired.csv"}}, {"csv", {"a.tidy.csv"}},
        {"json", {"a.json"}},           {"bdf", {"a.bdf.csv", "a.bdf.metadata.json"}},
        {"xlsx", {"a.xlsx"}},
    };
    return TARGETS[command.last()];
}

void add_making_commands()
{
    QTest::addColumn<QStringList>("command");
    QTest::newRow("repair") << QStringList{"repair"};
    for (const char* format : {"csv", "json", "bdf", "xlsx"})
        QTest::newRow(format) << QStringList{"export", "--zone", "UTC", "-f", format};
}
}  // namespace

void KestLogCareTest::a_signal_leaves_no_file_half_done_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::addColumn<int>("signal_number");
    QTest::newRow("Ctrl-C, csv") << QStringList{"export", "-f", "csv"} << SIGINT;
    QTest::newRow("SIGTERM, xlsx") << QStringList{"export", "-f", "xlsx"} << SIGTERM;
    QTest::newRow("SIGHUP, json") << QStringList{"export", "-f", "json"} << SIGHUP;
    QTest::newRow("SIGTERM, bdf") << QStringList{"export", "-f", "bdf"} << SIGTERM;
    QTest::newRow("SIGTERM, repair") << QStringList{"repair"} << SIGTERM;
}

/** Stopped first, so that the signal surely comes while a file is half done. */
void KestLogCareTest::a_signal_leaves_no_file_half_done()
{
    QFETCH(QStringList, command);
    QFETCH(int, signal_number);
    const Place place;
    const QByteArray log = long_log(5000) + "cut";
    const QByteArray bytes = command[0] == "repair" ? log : log.chopped(3);
    place.write("log.csv", bytes);
    for (int i = 0; i < 300; ++i)
        QVERIFY(QFile::link(place.path("log.csv"), place.path(QString("log%1.csv").arg(i))));
    QProcess process;
    process.setWorkingDirectory(place.path("."));
    process.start(kest_log(), command + QStringList{"."});
    QVERIFY(process.waitForStarted(300000));
    const auto half_done = [&place] {
        return !place.names().filter(QRegularExpression("^\\.")).isEmpty();
    };
    const auto stopped_half_done = [&] {
        ::kill(pid_t(process.processId()), SIGSTOP);
        if (half_done())
            return true;
        ::kill(pid_t(process.processId()), SIGCONT);
        return false;
    };
    while (process.state() == QProcess::Running && !stopped_half_done())
        process.waitForFinished(1);
    QCOMPARE(process.state(), QProcess::Running);
    ::kill(pid_t(process.processId()), signal_number);
    ::kill(pid_t(process.processId()), SIGCONT);
    QVERIFY(process.waitForFinished(300000));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), signal_number);
    QVERIFY(!half_done());
    QCOMPARE(place.names().filter(".metadata.json").size(),
             place.names().filter(".bdf.csv").size());
}

void KestLogCareTest::what_is_no_log_is_told_by_every_command_data()
{
    add_commands();
}

void KestLogCareTest::what_is_no_log_is_told_by_every_command()
{
    QFETCH(QStringList, command);
    const OrdinaryUser user;
    QVERIFY(user.active());
    const Place place;
    QCOMPARE(::mkfifo(qPrintable(place.path("pipe.csv")), 0600), 0);
    QVERIFY(QDir(place.path(".")).mkdir("folder.csv"));
    place.write("secret.csv", long_log(10));
    QVERIFY(QFile::setPermissions(place.path("secret.csv"), QFile::WriteOwner));
    QFile huge(place.path("huge.csv"));
    QVERIFY(huge.open(QIODevice::WriteOnly) && huge.write(long_log(10)) > 0);
    // Four gigabytes with nothing on the disk.
    QVERIFY(huge.resize(qint64(1) << 32));
    huge.close();
    const QStringList names = place.names();
    const Run run = place.run(command + QStringList{"pipe.csv", "secret.csv", "none.csv"});
    QCOMPARE(run.output.count('\n'), command == QStringList{"info"} ? 1 : 0);
    const QString said =
        "kest-log: %1 cannot be read: %2. Name a data log, or a folder with such.\n";
    QCOMPARE(run.complaints, said.arg("pipe.csv", "it is no ordinary file") +
                                 said.arg("secret.csv", "Permission denied") +
                                 said.arg("none.csv", "No such file or directory"));
    QCOMPARE(run.status, 1);
    QCOMPARE(place.run(command + QStringList{"folder.csv"}).complaints,
             QString("kest-log: folder.csv means no log at all.\n"));
    if (command[0] == "repair" || command.last() == "csv") {
        const Run of_huge = place.run(command + QStringList{"huge.csv"});
        QVERIFY2((of_huge.output + of_huge.complaints).contains("a line of more than 64 MB"),
                 qPrintable(of_huge.output + of_huge.complaints));
        QCOMPARE(of_huge.status, 1);
    }
    QCOMPARE(place.names(), names);
}

void KestLogCareTest::a_full_disk_is_told_and_leaves_nothing_data()
{
    add_making_commands();
}

/** A limit on the size of files stands for the disk. */
void KestLogCareTest::a_full_disk_is_told_and_leaves_nothing()
{
    QFETCH(QStringList, command);
    const Place place;
    place.write("a.csv", long_log(30000) + (command[0] == "repair" ? "cut" : ""));
    const Run run(
        "bash",
        QStringList{"-c", "trap '' XFSZ; ulimit -f 400; exec \"$@\"", "bash", kest_log()} +
            command + QStringList{"a.csv"},
        place.path("."));
    QCOMPARE(run.complaints,
             QString("kest-log: %1 cannot be written: File too large. Make room or choose another "
                     "folder with --to.\n")
                 .arg(targets_of(command).first()));
    QCOMPARE(run.output, QString());
    QCOMPARE(run.status, 1);
    QCOMPARE(place.names(), QStringList{"a.csv"});
}

void KestLogCareTest::a_result_that_nobody_takes_is_told()
{
    const Place place;
    place.write("a.csv", long_log(10));
    const Run run("bash", {"-c", "exec \"$0\" info a.csv > /dev/full", kest_log()},
                  place.path("."));
    QCOMPARE(run.complaints, QString("kest-log: Standard output takes no more.\n"));
    QCOMPARE(run.status, 1);
}

void KestLogCareTest::a_folder_that_takes_no_file_is_told_data()
{
    add_making_commands();
}

void KestLogCareTest::a_folder_that_takes_no_file_is_told()
{
    QFETCH(QStringList, command);
    const OrdinaryUser user;
    QVERIFY(user.active());
    const Place place;
    place.write("a.csv", long_log(10) + (command[0] == "repair" ? "cut" : ""));
    QVERIFY(QDir(place.path(".")).mkdir("locked"));
    QVERIFY(QFile::setPermissions(place.path("locked"), QFile::ReadOwner | QFile::ExeOwner));
    const Run run = place.run(command + QStringList{"--to", "locked", "a.csv"});
    QCOMPARE(run.complaints,
             QString("kest-log: locked/%1 cannot be written: Permission denied. Choose another "
                     "folder with --to.\n")
                 .arg(targets_of(command).first()));
    QCOMPARE(run.output, QString());
    QCOMPARE(run.status, 1);
}

void KestLogCareTest::a_target_that_exists_stays_data()
{
    add_making_commands();
}

/** Each of those that a command makes; no other is made then, either. */
void KestLogCareTest::a_target_that_exists_stays()
{
    QFETCH(QStringList, command);
    for (const QString& target : targets_of(command)) {
        const Place place;
        place.write("a.csv", long_log(10) + (command[0] == "repair" ? "cut" : ""));
        place.write(target, "mine");
        const Run run = place.run(command + QStringList{"a.csv"});
        QCOMPARE(run.complaints,
                 QString("kest-log: %1 exists; add --force to replace it.\n").arg(target));
        QCOMPARE(run.status, 1);
        QCOMPARE(content_of(place.path(target)), QByteArray("mine"));
        QStringList names = {"a.csv", target};
        names.sort();
        QCOMPARE(place.names(), names);
        place.run(command + QStringList{"--force", "a.csv"});
        QVERIFY(content_of(place.path(target)) != "mine");
        QCOMPARE(place.names().size(), 1 + targets_of(command).size());
    }
}

void KestLogCareTest::a_bad_log_among_a_thousand_is_told()
{
    const Place place;
    for (int i = 0; i < 1000; ++i)
        place.write(QString("log%1.csv").arg(i, 3, 10, QChar('0')),
                    i == 500 ? QByteArray("bad\n") : long_log(3));
    const Run table = place.run({"info", "."});
    QCOMPARE(table.output.count('\n'), 1001);
    QCOMPARE(table.output.count("  yes  "), 999);
    QCOMPARE(table.complaints, QString());
    QCOMPARE(table.status, 1);
    const Run document = place.run({"info", "--json", "."});
    QCOMPARE(document.status, 1);
    const QJsonArray files = document.json()["files"].toArray();
    QCOMPARE(files.size(), 1000);
    for (int i = 0; i < 1000; ++i)
        QCOMPARE(files[i].toObject()["loads"].toBool(), i != 500);
    const Run tables = place.run({"export", "-f", "csv", "."});
    QCOMPARE(tables.output.count(".tidy.csv\n"), 999);
    QVERIFY(tables.complaints.contains("log500.csv does not load: line 1, column 1"));
    QCOMPARE(place.names().size(), 1999);
}

void KestLogCareTest::a_log_that_grows_is_read_as_it_was_data()
{
    add_commands();
}

/** As fast as it can, another program adds rows all the while. */
void KestLogCareTest::a_log_that_grows_is_read_as_it_was()
{
    QFETCH(QStringList, command);
    const Place place;
    const QByteArray row = "1000000.9,41.52\n";  // of a size that never lies across two pages
    QByteArray log = CHARGE + row.repeated(2000);
    while (log.size() % row.size() != 0)
        log.insert(HEAD.size() - 2, ' ');
    place.write("a.csv", log);
    place.write("a.txt", "2020-04-03 10:00:00 Switching to phase Charging because User clicked "
                         "'Start'.\n");
    QProcess writer;
    writer.start("/usr/bin/python3", {"-c",
                                      "import os, sys\n"
                                      "f = os.open(sys.argv[1], os.O_WRONLY | os.O_APPEND)\n"
                                      "print(flush=True)\n"
                                      "while True: os.write(f, sys.argv[2].encode())\n",
                                      place.path("a.csv"), row});
    QVERIFY(writer.waitForReadyRead(300000));
    const Run run = place.run(command + QStringList{"a.csv"});
    writer.kill();
    QVERIFY(writer.waitForFinished(300000));
    QCOMPARE(run.status, 0);
    QVERIFY(!run.output.isEmpty());
    if (command.last() == "csv") {
        const QByteArray table = content_of(place.path("a.tidy.csv"));
        QVERIFY(table.count('\n') > 2000);
        QVERIFY(table.endsWith(",41.52,,,,\r\n"));
    }
}

void KestLogCareTest::memory_does_not_grow_data()
{
    QTest::addColumn<QStringList>("command");
    for (const char* command : {"info", "repair"})
        QTest::newRow(command) << QStringList{command};
    for (const char* format : {"csv", "xlsx"})
        QTest::newRow(format) << QStringList{"export", "--zone", "UTC", "-f", format};
}

/** Neither with the length of a log nor with the number of logs. */
void KestLogCareTest::memory_does_not_grow()
{
    QFETCH(QStringList, command);
    const QByteArray cut = command[0] == "repair" ? "cut" : "";
    const Place place;
    place.write("short.csv", long_log(10000) + cut);
    place.write("long.csv", long_log(160000) + cut);
    for (const char* folder : {"few", "many", "out"})
        QVERIFY(QDir(place.path(".")).mkdir(folder));
    // What is known of a log grows with its sections; a workbook has a sheet for each.
    const QByteArray rich = command[0] == "export" ? long_log(200) : log_of_sections(200);
    for (int i = 0; i < 120; ++i)
        place.write(QString(i < 20 ? "few/%1.csv" : "many/%1.csv").arg(i), rich + cut);
    // The largest resident set of the program, in kilobytes.
    const auto peak = [&](const QString& logs) {
        const bool makes = !targets_of(command).isEmpty();
        const QStringList to = makes ? QStringList{"--to", "out"} : QStringList();
        const Run run("/usr/bin/python3",
                      QStringList{"-c",
                                  "import os, resource, subprocess, sys\n"
                                  "os.environ['ASAN_OPTIONS'] = 'quarantine_size_mb=1'\n"
                                  "subprocess.run(sys.argv[1:], stdout=subprocess.DEVNULL)\n"
                                  "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)\n",
                                  kest_log()} +
                          command + to + QStringList{"--jobs", "2", logs},
                      place.path("."));
        return run.output.toInt();
    };
    const int of_short = peak("short.csv");
    QVERIFY(of_short > 0);
    const int of_long = peak("long.csv");
    const int of_few = peak("few");
    const int of_many = peak("many");
    constexpr int LITTLE = 4000;  // kilobytes: 27 bytes a row, or 40 kilobytes a log, would show
    QVERIFY2(of_long < of_short + LITTLE, qPrintable(QString::number(of_long - of_short)));
    QVERIFY2(of_many < of_few + LITTLE, qPrintable(QString::number(of_many - of_few)));
}

void KestLogCareTest::colour_is_for_terminals_data()
{
    QTest::addColumn<QString>("environment");
    QTest::addColumn<QString>("output");
    QTest::newRow("a terminal") << "TERM=xterm"
                                << "a.csv: \x1b[32mloads\x1b[0m\r\n";
    QTest::newRow("without colour") << "TERM=xterm NO_COLOR=1"
                                    << "a.csv: loads\r\n";
    QTest::newRow("a poor terminal") << "TERM=dumb"
                                     << "a.csv: loads\r\n";
}

void KestLogCareTest::colour_is_for_terminals()
{
    QFETCH(QString, environment);
    const Place place;
    place.write("a.csv", long_log(3));
    place.write("a.txt", "2020-04-03 10:00:00 Switching to phase Discharging because x\n");
    const Run run("script",
                  {"-qec", "env " + environment + " '" + kest_log() + "' check a.csv", "/dev/null"},
                  place.path("."));
    QTEST(run.output, "output");
    QCOMPARE(run.status, 0);
}

KEST_GUILESS_TEST(KestLogCareTest)
#include "tst_kest_log_care.moc"
