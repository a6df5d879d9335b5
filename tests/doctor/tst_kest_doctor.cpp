#include "machine_tree.h"
#include "simulator/pseudo_terminal.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

namespace
{
constexpr int PATIENCE_MS = 60000;
const QByteArray LINE = "KEST\t24.10\t4.8\t25.0\t0\tID=7\tD";
const QString ADAPTER = "   ttyUSB0: FTDI FT232R USB UART, number A50285BI (0403:6001).\n";
const QString NO_FOLDERS = "   No log folder is chosen yet: File, Settings does that.\n"
                           "   No PDF folder is chosen yet: File, Settings does that.\n";

struct Outcome
{
    int status = -1;
    QString output;
    QString complaints;
};

/** The program itself, with a home of its own and no desktop that could be asked. */
class Doctor
{
public:
    Doctor()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_DATA_HOME", home.path());
        environment.insert("PATH", home.path());
        process.setProcessEnvironment(environment);
    }

    void start(const QStringList& arguments)
    {
        process.start(KEST_DOCTOR, arguments);
    }

    Outcome finish()
    {
        Outcome outcome;
        if (process.waitForFinished(PATIENCE_MS) && process.exitStatus() == QProcess::NormalExit)
            outcome.status = process.exitCode();
        outcome.output = QString::fromUtf8(process.readAllStandardOutput());
        outcome.complaints = QString::fromUtf8(process.readAllStandardError());
        return outcome;
    }

    Outcome run(const QStringList& arguments)
    {
        start(arguments);
        return finish();
    }

    QTemporaryDir home;
    QProcess process;
};

/** A machine with one adapter, whose port is a pseudo-terminal. */
struct Bench
{
    Bench()
    {
        QString error;
        if (!line.open(error))
            qFatal("%s", qPrintable(error));
        tree.plug_in("0403:6001");
        tree.give_port("ttyUSB0", line.path());
    }

    QStringList arguments(const QStringList& more = {}) const
    {
        return QStringList{"--root", tree.root()} + more;
    }

    MachineTree tree;
    PseudoTerminal line;
    Doctor doctor;
};

/** All below a folder: a plain file with its content, a link with where it leads. */
QStringList contents_below(const QString& folder)
{
    QStringList contents;
    const QFileInfoList entries = QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden |
                                                             QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo& entry : entries) {
        const bool plain = entry.isFile() && !entry.isSymLink();
        contents << entry.filePath() + "=" +
                        (plain ? QString(content_of(entry.filePath())) : entry.symLinkTarget());
        if (entry.isDir() && !entry.isSymLink())
            contents << contents_below(entry.filePath());
    }
    return contents;
}
}  // namespace

/** The program kest-doctor, as a process. */
class KestDoctorTest : public QObject
{
    Q_OBJECT

private slots:
    void an_instrument_that_speaks_is_shown();
    void what_is_said_decides_the_sentence_data();
    void what_is_said_decides_the_sentence();
    void a_port_in_use_is_not_opened();
    void a_port_that_does_not_open_is_told();
    void a_whole_look_changes_nothing_and_says_nothing_to_the_instrument();
    void trouble_is_told_as_json();
    void refused_profiles_are_told_with_their_line();
    void listening_shows_each_line_and_its_meaning();
    void listening_tells_as_json();
    void a_port_in_use_is_not_listened_to();
    void what_is_no_port_is_refused_data();
    void what_is_no_port_is_refused();
    void the_own_machine_is_looked_at();
    void help_and_version_are_told();
    void a_bad_argument_is_told_data();
    void a_bad_argument_is_told();
};

void KestDoctorTest::an_instrument_that_speaks_is_shown()
{
    Bench bench;
    bench.line.write(LINE + "\r\n");
    const Outcome outcome = bench.doctor.run(bench.arguments());
    QCOMPARE(
        outcome.output,
        "All is well.\n"
        "\n"
        "Also seen:\n" +
            ADAPTER +
            "   On ttyUSB0 an instrument speaks: 24.10 V, 4.8 A, instrument 7, discharging.\n" +
            NO_FOLDERS);
    QCOMPARE(outcome.complaints, QString());
    QCOMPARE(outcome.status, 0);
}

void KestDoctorTest::what_is_said_decides_the_sentence_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("nothing") << QByteArray() << "ttyUSB0 was silent: ";
    QTest::newRow("another language")
        << QByteArray("12.5 V\r\n") << "ttyUSB0 speaks, but no Kestrometer's language: \"12.5 V\" ";
    QTest::newRow("another speed") << QByteArray("\xFE\x80\x98\xE0") << "ttyUSB0 sends bytes that ";
}

void KestDoctorTest::what_is_said_decides_the_sentence()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, sentence);
    Bench bench;
    bench.line.write(bytes);
    const Outcome outcome = bench.doctor.run(bench.arguments());
    QVERIFY2(outcome.output.startsWith("1. " + sentence), qPrintable(outcome.output));
    QVERIFY(!outcome.output.contains("\n2. "));
    QCOMPARE(outcome.status, 1);
}

void KestDoctorTest::a_port_in_use_is_not_opened()
{
    Bench bench;
    bench.tree.run(4242, "/usr/bin/minicom");
    bench.tree.link("/proc/4242/fd/3", "/dev/ttyUSB0");
    bench.line.write(LINE + "\r\n");
    const Outcome outcome = bench.doctor.run(bench.arguments());
    QCOMPARE(outcome.output.section('\n', 0, 1),
             QString("1. ttyUSB0 is in use by minicom (process 4242), so that no instrument shows "
                     "on it. End that program.\n"
                     "       kill 4242"));
    QCOMPARE(outcome.status, 1);
    // What was on the line still is.
    QVERIFY(bench.line.has_unread());
}

void KestDoctorTest::a_port_that_does_not_open_is_told()
{
    Bench bench;
    bench.tree.give_port("ttyUSB0", "/dev/null");
    const Outcome outcome = bench.doctor.run(bench.arguments());
    QCOMPARE(outcome.output.section('\n', 0, 1),
             QString("1. ttyUSB0 could not be listened to: it is no serial port. A program of "
                     "another user may hold it; see which one.\n"
                     "       sudo lsof /dev/ttyUSB0"));
    QCOMPARE(outcome.status, 1);
}

void KestDoctorTest::a_whole_look_changes_nothing_and_says_nothing_to_the_instrument()
{
    Bench bench;
    const QByteArray settings = "[directories]\narchive_directory=/old\n";
    const QString folder = bench.doctor.home.filePath("kest-battery-tester");
    QVERIFY(QDir().mkpath(folder));
    QVERIFY(write_file(folder + "/kestrometer.cfg", settings));
    const QStringList tree_before = contents_below(bench.tree.root());
    const QStringList home_before = contents_below(bench.doctor.home.path());
    bench.line.write(QByteArray("CDOU\r\n") + LINE + "\r\n");
    QCOMPARE(bench.doctor.run(bench.arguments()).status, 1);
    QCOMPARE(contents_below(bench.tree.root()), tree_before);
    QCOMPARE(contents_below(bench.doctor.home.path()), home_before);
    QCOMPARE(bench.line.read(), QByteArray());
}

void KestDoctorTest::trouble_is_told_as_json()
{
    Bench bench;
    bench.tree.remove("/run/systemd/timesync/synchronized");
    const Outcome outcome = bench.doctor.run(bench.arguments({"--json", "--no-listen"}));
    const QJsonObject document = QJsonDocument::fromJson(outcome.output.toUtf8()).object();
    QCOMPARE(document["healthy"].toBool(true), false);
    QStringList ids;
    for (const auto& finding : document["findings"].toArray())
        ids << finding.toObject()["id"].toString();
    QCOMPARE(ids, QStringList({"clock", "port", "no-folder-chosen", "no-folder-chosen"}));
    QCOMPARE(outcome.status, 1);
}

void KestDoctorTest::refused_profiles_are_told_with_their_line()
{
    Bench bench;
    const QString folder = bench.doctor.home.filePath("kest-battery-tester");
    QVERIFY(QDir().mkpath(folder));
    QVERIFY(write_file(folder + "/battery_profiles.txt", "[Pack]\n\ncolour=red\n"));
    const Outcome outcome = bench.doctor.run(bench.arguments({"--no-listen"}));
    QCOMPARE(outcome.output.section('\n', 0, 1),
             QString("1. The program ends at its start: in its profiles file "
                     "%1/battery_profiles.txt, line 3 names \"colour\", which no profile has.\n"
                     "       editor +3 %1/battery_profiles.txt")
                 .arg(folder));
}

void KestDoctorTest::listening_shows_each_line_and_its_meaning()
{
    Bench bench;
    bench.line.write(LINE + "\r\nhello\r\n");
    bench.doctor.start(bench.arguments({"--listen", "ttyUSB0", "--seconds", "1"}));
    const Outcome outcome = bench.doctor.finish();
    QCOMPARE(outcome.output,
             QString("KEST\t24.10\t4.8\t25.0\t0\tID=7\tD\n"
                     "    24.10 V, 4.8 A, instrument 7, discharging\n"
                     "hello\n"
                     "    no telemetry: it has no TAB, where telemetry has 7 fields between TABs\n"
                     "All is well.\n"
                     "\n"
                     "Also seen:\n"
                     "   On ttyUSB0 an instrument speaks: 24.10 V, 4.8 A, instrument 7, "
                     "discharging.\n"));
    QCOMPARE(outcome.status, 0);
    QCOMPARE(bench.line.read(), QByteArray());
}

void KestDoctorTest::listening_tells_as_json()
{
    PseudoTerminal line;
    QString error;
    QVERIFY(line.open(error));
    line.write("hello\r\n");
    Doctor doctor;
    const Outcome outcome = doctor.run({"--listen", line.path(), "--seconds", "1", "--json"});
    const QJsonObject document = QJsonDocument::fromJson(outcome.output.toUtf8()).object();
    QCOMPARE(document["lines"].toInt(), 1);
    QCOMPARE(document["valid_lines"].toInt(-1), 0);
    QCOMPARE(document["last_other_line"].toString(), QString("hello"));
    QCOMPARE(document["findings"].toArray()[0].toObject()["id"].toString(), QString("foreign"));
    QCOMPARE(outcome.status, 1);
}

void KestDoctorTest::a_port_in_use_is_not_listened_to()
{
    PseudoTerminal line;
    QString error;
    QVERIFY(line.open(error));
    QProcess holder;
    holder.setStandardInputFile(line.path());
    holder.start("/usr/bin/sleep", {"1000"});
    QVERIFY(holder.waitForStarted());
    // Until then it is a fork of this test, which has made the terminal.
    QTRY_COMPARE(content_of(QString("/proc/%1/comm").arg(holder.processId())),
                 QByteArray("sleep\n"));
    line.write(LINE + "\r\n");
    Doctor doctor;
    const Outcome outcome = doctor.run({"--listen", line.port_name()});
    QCOMPARE(outcome.complaints,
             QString("kest-doctor: %1 is in use by sleep (process %2); it is not touched.\n")
                 .arg(line.port_name())
                 .arg(holder.processId()));
    QCOMPARE(outcome.output, QString());
    QCOMPARE(outcome.status, 1);
    QVERIFY(line.has_unread());
    holder.kill();
    holder.waitForFinished();
}

void KestDoctorTest::what_is_no_port_is_refused_data()
{
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("words");
    QTest::newRow("nothing") << "ttyNONE7"
                             << "ttyNONE7 cannot be opened: No such file or directory.";
    const QString file = source_file("README.md");
    QTest::newRow("a file") << file << file + " is no serial port.";
}

void KestDoctorTest::what_is_no_port_is_refused()
{
    QFETCH(QString, port);
    QFETCH(QString, words);
    Doctor doctor;
    const Outcome outcome = doctor.run({"--listen", port});
    QCOMPARE(outcome.complaints, "kest-doctor: " + words + "\n");
    QCOMPARE(outcome.status, 1);
}

void KestDoctorTest::the_own_machine_is_looked_at()
{
    Doctor doctor;
    const Outcome outcome = doctor.run({"--no-listen", "--json"});
    QVERIFY(outcome.status == 0 || outcome.status == 1);
    const QJsonObject document = QJsonDocument::fromJson(outcome.output.toUtf8()).object();
    QCOMPARE(document["healthy"].toBool(), outcome.status == 0);
}

void KestDoctorTest::help_and_version_are_told()
{
    Doctor doctor;
    const Outcome version = doctor.run({"--version"});
    QVERIFY(QRegularExpression("^kest-doctor [0-9]+\\.[0-9]+\\.[0-9]+\n$")
                .match(version.output)
                .hasMatch());
    QCOMPARE(version.status, 0);
    const Outcome help = doctor.run({"-h"});
    QCOMPARE(help.status, 0);
    QVERIFY(help.output.contains("--listen <PORT>"));
}

void KestDoctorTest::a_bad_argument_is_told_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("words");
    const auto row = [](const QStringList& arguments, const QString& words) {
        QTest::newRow(qPrintable(arguments.join(' '))) << arguments << words;
    };
    row({"--nonsense"}, "Unknown option 'nonsense'.");
    row({"ttyUSB0"}, "Unexpected argument: ttyUSB0");
    row({"--listen", ""}, "--listen takes the name of a port.");
    row({"--seconds", "5"}, "--seconds goes with --listen.");
    row({"--listen", "a", "--no-listen"}, "--no-listen and --listen contradict each other.");
    const QString range = "--seconds takes a whole number from 1 to 86400, not '%1'.";
    for (const char* seconds : {"0", "86401", "1.5", "x", ""})
        row({"--listen", "a", "--seconds", seconds}, range.arg(seconds));
    row({"--root", "/dev/null"}, "--root takes a folder, which '/dev/null' is not.");
}

void KestDoctorTest::a_bad_argument_is_told()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, words);
    Doctor doctor;
    const Outcome outcome = doctor.run(arguments);
    QCOMPARE(outcome.complaints, "kest-doctor: " + words + "\n");
    QCOMPARE(outcome.output, QString());
    QCOMPARE(outcome.status, 2);
}

KEST_GUILESS_TEST(KestDoctorTest)
#include "tst_kest_doctor.moc"
