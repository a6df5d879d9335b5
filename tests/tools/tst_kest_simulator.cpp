#include "simulator/faults.h"

#include <QProcess>
#include <QSerialPort>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

class KestSimulatorTest : public QObject
{
    Q_OBJECT

private slots:
    void the_first_line_is_the_path_of_the_port();
    void it_streams_and_obeys_on_a_real_port();
    void the_state_letter_lags_by_the_delay();
    void pack_options_shape_the_readings_data();
    void pack_options_shape_the_readings();
    void a_fault_may_stand_on_the_command_line();
    void a_fault_may_come_by_standard_input();
    void a_bad_fault_line_is_told_and_the_run_goes_on();
    void a_split_line_arrives_whole();
    void megabytes_without_a_line_end_arrive_whole();
    void nobody_gets_lines_from_before_he_came();
    void a_reader_who_is_killed_leaves_no_traces();
    void closed_standard_streams_do_no_harm();
    void a_port_vanishes_and_comes_back_under_its_link();
    void a_port_may_be_gone_from_the_start();
    void a_stale_link_is_replaced();
    void a_link_that_cannot_be_made_ends_with_status_1_data();
    void a_link_that_cannot_be_made_ends_with_status_1();
    void a_recording_is_played_to_its_end();
    void a_recording_is_read_to_its_last_byte();
    void a_recording_keeps_its_own_pace();
    void a_recording_has_no_faults();
    void it_ends_when_asked_data();
    void it_ends_when_asked();
    void it_ends_with_standard_input_only_if_asked();
    void help_tells_every_option_and_every_fault();
    void the_manual_tells_every_option();
    void a_bad_argument_is_told_data();
    void a_bad_argument_is_told();
};

namespace
{
constexpr int PATIENCE_MS = 60000;  // a limit for what has gone wrong; nothing waits for it to pass

const QByteArray OFF = "KEST\t25.20\t0.0\t25.0\t0\tID=7\tO\r\n";
const QByteArray DISCHARGING = "KEST\t24.45\t5.0\t25.0\t0\tID=7\tD\r\n";
// A full pack so big that its voltage does not move while a test lasts.
const QStringList STEADY = {"--rate",   "500", "--id",       "7",
                            "--charge", "100", "--capacity", "100000"};

/** The program itself, and what it says. */
struct Simulator
{
    explicit Simulator(const QStringList& arguments)
    {
        process.start(KEST_SIMULATOR, arguments);
    }
    ~Simulator()
    {
        process.closeWriteChannel();
        process.terminate();
        process.waitForFinished(PATIENCE_MS);
    }
    QString next_line()
    {
        while (!process.canReadLine() && process.waitForReadyRead(PATIENCE_MS)) {
        }
        return QString::fromLocal8Bit(process.readLine()).trimmed();
    }
    /** One line of standard error, with its line end. */
    QByteArray next_complaint()
    {
        while (!complaints.contains('\n')) {
            process.setReadChannel(QProcess::StandardError);
            const bool more = process.waitForReadyRead(PATIENCE_MS);
            complaints += process.readAllStandardError();
            process.setReadChannel(QProcess::StandardOutput);
            if (!more)
                break;
        }
        const QByteArray line = complaints.left(complaints.indexOf('\n') + 1);
        complaints.remove(0, line.size());
        return line;
    }
    void say(const QByteArray& line)
    {
        process.write(line + "\n");
        process.waitForBytesWritten(PATIENCE_MS);
    }
    /** Returns when the program has been through its event loop twice since all that came before. */
    void settle()
    {
        for (int i = 0; i < 2; ++i) {
            say("settle");
            next_complaint();
        }
    }
    bool ends_with(int status)
    {
        return (process.state() == QProcess::NotRunning || process.waitForFinished(PATIENCE_MS)) &&
               process.exitStatus() == QProcess::NormalExit && process.exitCode() == status;
    }

    QProcess process;
    QByteArray complaints;
};

/** The application's end of the line. */
struct Reader
{
    explicit Reader(const QString& path) : port(path)
    {
        port.open(QIODevice::ReadWrite);
    }
    /** Reads until `text` has come; false if it does not come. */
    bool reads(const QByteArray& text)
    {
        const QDeadlineTimer patience(PATIENCE_MS);
        int searched = 0;
        while (received.indexOf(text, searched) < 0) {
            searched = std::max(0, received.size() - text.size());
            if (patience.hasExpired() || !port.waitForReadyRead(PATIENCE_MS))
                return false;
            received += port.readAll();
        }
        return true;
    }
    void write(const QByteArray& bytes)
    {
        port.write(bytes);
        port.waitForBytesWritten(PATIENCE_MS);
    }

    QSerialPort port;
    QByteArray received;
};

QByteArray write_file(const QString& path, const QByteArray& content)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(content);
    return content;
}
}  // namespace

void KestSimulatorTest::the_first_line_is_the_path_of_the_port()
{
    Simulator simulator({});
    const QString path = simulator.next_line();
    QVERIFY2(path.startsWith("/dev/pts/"), qPrintable(path));
    QVERIFY(QFile::exists(path));
}

void KestSimulatorTest::it_streams_and_obeys_on_a_real_port()
{
    Simulator simulator(STEADY);
    Reader reader(simulator.next_line());
    QVERIFY(reader.reads(OFF.repeated(3)));
    reader.write("D");
    QVERIFY(reader.reads(DISCHARGING.repeated(3)));
    reader.write("O");
    QVERIFY(reader.reads(DISCHARGING + OFF));
    const QByteArray whole = reader.received.left(reader.received.lastIndexOf('\n') + 1);
    QCOMPARE(whole.count('\n'), whole.count(OFF) + whole.count(DISCHARGING));
}

void KestSimulatorTest::the_state_letter_lags_by_the_delay()
{
    Simulator simulator(STEADY + QStringList{"--delay", "3"});
    Reader reader(simulator.next_line());
    QVERIFY(reader.reads(OFF));
    reader.write("D");
    QVERIFY(reader.reads(DISCHARGING));
    const QByteArray lagging = "KEST\t24.45\t5.0\t25.0\t0\tID=7\tO\r\n";
    QVERIFY(reader.received.contains(OFF + lagging.repeated(3) + DISCHARGING));
}

void KestSimulatorTest::pack_options_shape_the_readings_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("off");
    QTest::addColumn<QByteArray>("charging");
    QTest::addColumn<QByteArray>("discharging");
    QTest::newRow("cells") << QStringList{"--cells", "10"} << QByteArray("37.20\t0.0")
                           << QByteArray("37.80\t4.0") << QByteArray("36.45\t5.0");
    QTest::newRow("charge") << QStringList{"--charge", "10"} << QByteArray("20.70\t0.0")
                            << QByteArray("21.30\t4.0") << QByteArray("19.95\t5.0");
    QTest::newRow("resistance") << QStringList{"--resistance", "20"} << QByteArray("22.32\t0.0")
                                << QByteArray("22.40\t4.0") << QByteArray("22.22\t5.0");
    QTest::newRow("charger's current")
        << QStringList{"--charger-current", "1"} << QByteArray("22.32\t0.0")
        << QByteArray("22.47\t1.0") << QByteArray("21.57\t5.0");
    QTest::newRow("charger's voltage")
        << QStringList{"--charger-voltage", "3.75"} << QByteArray("22.32\t0.0")
        << QByteArray("22.50\t1.2") << QByteArray("21.57\t5.0");
    QTest::newRow("load") << QStringList{"--load", "2.5"} << QByteArray("22.32\t0.0")
                          << QByteArray("22.92\t4.0") << QByteArray("21.95\t2.5");
}

void KestSimulatorTest::pack_options_shape_the_readings()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, off);
    QFETCH(QByteArray, charging);
    QFETCH(QByteArray, discharging);
    Simulator simulator(QStringList{"--rate", "500", "--capacity", "100000"} + options);
    Reader reader(simulator.next_line());
    QVERIFY(reader.reads("KEST\t" + off + "\t25.0\t0\tID=1\tO\r\n"));
    reader.write("C");
    QVERIFY(reader.reads("KEST\t" + charging + "\t25.0\t0\tID=1\tC\r\n"));
    reader.write("D");
    QVERIFY(reader.reads("KEST\t" + discharging + "\t25.0\t0\tID=1\tD\r\n"));
}

void KestSimulatorTest::a_fault_may_stand_on_the_command_line()
{
    Simulator simulator(STEADY + QStringList{"--fault", "id 9", "--fault", "stuck-state c"});
    Reader reader(simulator.next_line());
    QVERIFY(reader.reads("KEST\t25.20\t0.0\t25.0\t0\tID=9\tc\r\n"));
}

void KestSimulatorTest::a_fault_may_come_by_standard_input()
{
    Simulator simulator(STEADY);
    Reader reader(simulator.next_line());
    QVERIFY(reader.reads(OFF));
    simulator.say("\n  doubled-letter   forever \nid 12");
    QVERIFY(reader.reads("KEST\t25.20\t0.0\t25.0\t0\tID=12\tOO\r\n"));
}

void KestSimulatorTest::a_bad_fault_line_is_told_and_the_run_goes_on()
{
    Simulator simulator(STEADY);
    Reader reader(simulator.next_line());
    simulator.say("silence\nfoo");
    QCOMPARE(simulator.next_complaint(),
             QByteArray("kest-simulator: Fault \"silence\" needs more: silence <seconds>.\n"));
    QCOMPARE(simulator.next_complaint(),
             QByteArray("kest-simulator: There is no fault \"foo\"; --help lists them.\n"));
    QVERIFY(reader.reads(OFF));
}

void KestSimulatorTest::a_split_line_arrives_whole()
{
    Simulator simulator(STEADY + QStringList{"--rate", "5", "--fault", "split-bytes 2"});
    Reader reader(simulator.next_line());
    QVERIFY(reader.reads(OFF.repeated(3)));
    QVERIFY(reader.received.startsWith(OFF));
}

void KestSimulatorTest::megabytes_without_a_line_end_arrive_whole()
{
    Simulator simulator(STEADY);
    Reader reader(simulator.next_line());
    QVERIFY(reader.reads(OFF));
    simulator.say("babble 3000000");
    QVERIFY(reader.reads("9" + OFF));
    const int start = reader.received.indexOf("\n0123") + 1;
    QCOMPARE(reader.received.mid(start, 3000000 + OFF.size()),
             QByteArray("0123456789").repeated(300000) + OFF);
}

void KestSimulatorTest::nobody_gets_lines_from_before_he_came()
{
    Simulator simulator(STEADY);
    const QString path = simulator.next_line();
    {
        Reader reader(path);
        QVERIFY(reader.reads(OFF));
    }
    const int idle = ::open(QFile::encodeName(path).constData(), O_RDWR | O_NOCTTY);
    pollfd unread = {idle, POLLIN, 0};
    QCOMPARE(::poll(&unread, 1, PATIENCE_MS), 1);
    ::close(idle);
    simulator.settle();
    simulator.say("id 8");
    simulator.settle();
    Reader reader(path);
    const QByteArray line = "KEST\t25.20\t0.0\t25.0\t0\tID=8\tO\r\n";
    QVERIFY(reader.reads(line));
    QVERIFY2(reader.received.startsWith(line), reader.received.left(200).constData());
}

void KestSimulatorTest::a_reader_who_is_killed_leaves_no_traces()
{
    Simulator simulator(STEADY);
    const QByteArray path = QFile::encodeName(simulator.next_line());
    const int killed = ::open(path.constData(), O_RDWR | O_NOCTTY);
    QVERIFY(killed >= 0);
    termios settings = {};
    QCOMPARE(::tcgetattr(killed, &settings), 0);
    settings.c_lflag |= ECHO | ICANON;
    QCOMPARE(::tcsetattr(killed, TCSANOW, &settings), 0);
    QCOMPARE(::ioctl(killed, TIOCEXCL), 0);
    ::close(killed);
    simulator.settle();

    const int next = ::open(path.constData(), O_RDWR | O_NOCTTY);
    QVERIFY(next >= 0);
    int alone = -1;
    QCOMPARE(::ioctl(next, TIOCGEXCL, &alone), 0);
    QCOMPARE(alone, 0);
    QCOMPARE(::tcgetattr(next, &settings), 0);
    QCOMPARE(settings.c_lflag & (ECHO | ICANON), 0u);
    ::close(next);
}

void KestSimulatorTest::closed_standard_streams_do_no_harm()
{
    QTemporaryDir folder;
    const QString link = folder.filePath("kest0");
    QProcess shell;
    shell.start("sh", QStringList{"-c", "exec \"$@\" <&- >&- 2>&-", "sh", KEST_SIMULATOR} + STEADY +
                          QStringList{"--link", link});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(link), PATIENCE_MS);
    for (const char* stream : {"0", "1", "2"})
        QCOMPARE(QFile::symLinkTarget(QString("/proc/%1/fd/%2").arg(shell.processId()).arg(stream)),
                 QString("/dev/null"));
    Reader reader(link);
    QVERIFY(reader.reads(OFF));
    shell.terminate();
    QVERIFY(shell.waitForFinished(PATIENCE_MS));
    QCOMPARE(shell.exitCode(), 0);
}

void KestSimulatorTest::a_port_vanishes_and_comes_back_under_its_link()
{
    QTemporaryDir folder;
    const QString link = folder.filePath("kest0");
    Simulator simulator(STEADY + QStringList{"--link", link});
    const QString path = simulator.next_line();
    QCOMPARE(QFile::symLinkTarget(link), path);
    {
        Reader reader(link);
        QVERIFY(reader.reads(OFF));
        bool lost = false;
        const auto give_up = [&](QSerialPort::SerialPortError error) {
            lost = error == QSerialPort::ResourceError || error == QSerialPort::ReadError;
            if (lost)
                reader.port.close();
        };
        connect(&reader.port, &QSerialPort::errorOccurred, &reader.port, give_up,
                Qt::QueuedConnection);
        simulator.say("vanish");
        QTRY_VERIFY_WITH_TIMEOUT(lost, PATIENCE_MS);
        simulator.settle();
        QVERIFY(!QFileInfo(link).isSymLink());
    }
    simulator.say("return");
    const QString new_path = simulator.next_line();
    QVERIFY2(new_path.startsWith("/dev/pts/"), qPrintable(new_path));
    QCOMPARE(QFile::symLinkTarget(link), new_path);
    Reader reader(link);
    QVERIFY(reader.reads(OFF));
}

void KestSimulatorTest::a_port_may_be_gone_from_the_start()
{
    QTemporaryDir folder;
    const QString link = folder.filePath("kest0");
    Simulator simulator(STEADY + QStringList{"--link", link, "--fault", "vanish 0.02"});
    QVERIFY(simulator.next_line().startsWith("/dev/pts/"));
    QVERIFY(simulator.next_line().startsWith("/dev/pts/"));
    Reader reader(link);
    QVERIFY(reader.reads(OFF));
}

void KestSimulatorTest::a_stale_link_is_replaced()
{
    QTemporaryDir folder;
    const QString link = folder.filePath("kest0");
    QVERIFY(QFile::link("/dev/pts/no-such-port", link));
    Simulator simulator({"--link", link});
    const QString path = simulator.next_line();
    QCOMPARE(QFile::symLinkTarget(link), path);
    QCOMPARE(
        QDir(folder.path()).entryList(QDir::Files | QDir::System | QDir::NoDotAndDotDot).size(), 1);
}

void KestSimulatorTest::a_link_that_cannot_be_made_ends_with_status_1_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("a file is there") << "file"
                                     << "exists and is no symbolic link.";
    QTest::newRow("a folder is there") << "."
                                       << "exists and is no symbolic link.";
    QTest::newRow("no such folder") << "none/kest0"
                                    << "cannot be made: No such file or directory.";
    QTest::newRow("below a file") << "file/kest0"
                                  << "cannot be made: Not a directory.";
}

void KestSimulatorTest::a_link_that_cannot_be_made_ends_with_status_1()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    QTemporaryDir folder;
    const QByteArray content = write_file(folder.filePath("file"), "mine");
    const QString link = folder.path() + "/" + name;
    Simulator simulator({"--link", link});
    QVERIFY(simulator.ends_with(1));
    QCOMPARE(QString::fromLocal8Bit(simulator.process.readAllStandardError()),
             QString("kest-simulator: %1 %2\n").arg(link, reason));
    QCOMPARE(simulator.process.readAllStandardOutput(), QByteArray());
    QFile file(folder.filePath("file"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), content);
}

void KestSimulatorTest::a_recording_is_played_to_its_end()
{
    QTemporaryDir folder;
    QByteArray lines;
    for (int i = 0; i < 5000; ++i)
        lines += "line " + QByteArray::number(i) + "\n";
    write_file(folder.filePath("lines"), lines);
    Simulator simulator(
        {"--replay", folder.filePath("lines"), "--rate", "1000", "--speed", "10", "--exit-at-end"});
    Reader reader(simulator.next_line());
    QVERIFY(reader.reads("line 4999\r\n"));
    QCOMPARE(reader.received, lines.replace("\n", "\r\n"));
    QVERIFY(simulator.ends_with(0));
}

void KestSimulatorTest::a_recording_is_read_to_its_last_byte()
{
    QTemporaryDir folder;
    write_file(folder.filePath("lines"), "one\n");
    Simulator simulator({"--replay", folder.filePath("lines"), "--exit-at-end"});
    const QString path = simulator.next_line();
    const int slow = ::open(QFile::encodeName(path).constData(), O_RDWR | O_NOCTTY);
    pollfd unread = {slow, POLLIN, 0};
    QCOMPARE(::poll(&unread, 1, PATIENCE_MS), 1);
    // Plenty of chances to end too early.
    for (int i = 0; i < 300; ++i)
        simulator.settle();
    char bytes[16] = {};
    QCOMPARE(int(::read(slow, bytes, sizeof bytes)), 5);
    QCOMPARE(QByteArray(bytes), QByteArray("one\r\n"));
    QVERIFY(simulator.ends_with(0));
    ::close(slow);
}

void KestSimulatorTest::a_recording_keeps_its_own_pace()
{
    QTemporaryDir folder;
    write_file(folder.filePath("log.txt"), "2020-04-03 09:15:00 first\n"
                                           "2020-04-03 09:15:00 43\n"
                                           "2020-04-03 21:15:00 twelve hours later\n"
                                           "2020-04-03 21:15:10 last\n");
    // Twelve hours in half a second: without time lapse the test would not see the end.
    Simulator simulator(
        {"--replay", folder.filePath("log.txt"), "--speed", "86400", "--exit-at-end"});
    Reader reader(simulator.next_line());
    QVERIFY(reader.reads("last\r\n"));
    QCOMPARE(reader.received, QByteArray("first\r\ntwelve hours later\r\nlast\r\n"));
    QVERIFY(simulator.ends_with(0));
}

void KestSimulatorTest::a_recording_has_no_faults()
{
    QTemporaryDir folder;
    write_file(folder.filePath("lines"), "one\n");
    Simulator simulator({"--replay", folder.filePath("lines")});
    Reader reader(simulator.next_line());
    simulator.say("echo");
    QCOMPARE(simulator.next_complaint(),
             QByteArray("kest-simulator: A recording has no faults.\n"));
    QVERIFY(reader.reads("one\r\n"));
}

void KestSimulatorTest::it_ends_when_asked_data()
{
    QTest::addColumn<int>("signal_number");
    QTest::newRow("by SIGTERM") << SIGTERM;
    QTest::newRow("by SIGINT") << SIGINT;
    QTest::newRow("by SIGHUP") << SIGHUP;
}

void KestSimulatorTest::it_ends_when_asked()
{
    QFETCH(int, signal_number);
    QTemporaryDir folder;
    const QString link = folder.filePath("kest0");
    Simulator simulator({"--link", link});
    simulator.next_line();
    QVERIFY(QFileInfo(link).isSymLink());
    ::kill(pid_t(simulator.process.processId()), signal_number);
    QVERIFY(simulator.ends_with(0));
    QVERIFY(!QFileInfo(link).isSymLink());
    QCOMPARE(simulator.process.readAllStandardError(), QByteArray());
}

void KestSimulatorTest::it_ends_with_standard_input_only_if_asked()
{
    Simulator asked({"--exit-with-stdin"});
    asked.next_line();
    asked.process.closeWriteChannel();
    QVERIFY(asked.ends_with(0));

    Simulator other(STEADY);
    const QString path = other.next_line();
    other.process.write("id 8");  // without a line end
    other.process.waitForBytesWritten(PATIENCE_MS);
    other.process.closeWriteChannel();
    Reader reader(path);
    QVERIFY(reader.reads("ID=8\tO\r\n"));
    QCOMPARE(other.process.state(), QProcess::Running);
}

void KestSimulatorTest::help_tells_every_option_and_every_fault()
{
    Simulator simulator({"--help"});
    QVERIFY(simulator.ends_with(0));
    const QString help = QString::fromLocal8Bit(simulator.process.readAllStandardOutput());
    for (const char* option :
         {"--rate <lines>", "--speed <factor>", "--id <number>", "--delay <lines>",
          "--cells <count>", "--capacity <Ah>", "--charge <percent>", "--resistance <milliohms>",
          "--charger-current <A>", "--charger-voltage <V>", "--load <A>", "--link <path>",
          "--fault <text>", "--replay <file>", "--exit-at-end", "--exit-with-stdin", "--help"})
        QVERIFY2(help.contains(option), option);
    QVERIFY(help.endsWith("\nFaults:\n\n" + fault_help()));
    QCOMPARE(simulator.process.readAllStandardError(), QByteArray());
}

void KestSimulatorTest::the_manual_tells_every_option()
{
    Simulator simulator({"-h"});
    QVERIFY(simulator.ends_with(0));
    const QString help = QString::fromLocal8Bit(simulator.process.readAllStandardOutput());
    QFile manual(KEST_SOURCE_DIR "/docs/simulator.md");
    QVERIFY(manual.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(manual.readAll());
    QRegularExpressionMatchIterator options =
        QRegularExpression("^  (-h, )?(--[a-z-]+( <[^>]+>)?)", QRegularExpression::MultilineOption)
            .globalMatch(help);
    int count = 0;
    for (; options.hasNext(); ++count) {
        const QString option = options.next().captured(2);
        QVERIFY2(text.contains(QString("| `%1` | ").arg(option)), qPrintable(option));
    }
    QCOMPARE(count, 17);
}

void KestSimulatorTest::a_bad_argument_is_told_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const auto row = [](const QStringList& arguments, const QString& error) {
        QTest::newRow(qPrintable(arguments.join(' '))) << arguments << error;
    };
    row({"--foo"}, "Unknown option 'foo'.");
    row({"-x"}, "Unknown option 'x'.");
    row({"--rate"}, "Missing value after '--rate'.");
    row({"--help=1"}, "Unexpected value after '--help'.");
    row({"7"}, "\"7\" is no option; --help lists them.");
    row({"--rate", ""}, "--rate: \"\" is not a number from 0.001 to 1000.");
    row({"--rate", "0"}, "--rate: \"0\" is not a number from 0.001 to 1000.");
    row({"--rate", "1001"}, "--rate: \"1001\" is not a number from 0.001 to 1000.");
    row({"--rate", "fast"}, "--rate: \"fast\" is not a number from 0.001 to 1000.");
    row({"--rate=-1"}, "--rate: \"-1\" is not a number from 0.001 to 1000.");
    row({"--rate", "nan"}, "--rate: \"nan\" is not a number from 0.001 to 1000.");
    row({"--speed", "inf"}, "--speed: \"inf\" is not a number from 0.001 to 100000.");
    row({"--speed", "1,5"}, "--speed: \"1,5\" is not a number from 0.001 to 100000.");
    row({"--rate", "1000", "--speed", "11"}, "--rate times --speed exceeds 10000 lines a second.");
    row({"--replay", "x", "--rate", "1000", "--speed", "11"},
        "--rate times --speed exceeds 10000 lines a second.");
    row({"--id", "1.5"}, "--id: \"1.5\" is not a whole number from -2147483648 to 2147483647.");
    row({"--id", "2147483648"},
        "--id: \"2147483648\" is not a whole number from -2147483648 to 2147483647.");
    row({"--delay", "-1"}, "--delay: \"-1\" is not a whole number from 0 to 1000.");
    row({"--cells", "0"}, "--cells: \"0\" is not a whole number from 1 to 1000.");
    row({"--capacity", "0"}, "--capacity: \"0\" is not a number from 0.001 to 100000.");
    row({"--charge", "101"}, "--charge: \"101\" is not a number from 0 to 100.");
    row({"--resistance", "-1"}, "--resistance: \"-1\" is not a number from 0 to 100000.");
    row({"--charger-current", "x"}, "--charger-current: \"x\" is not a number from 0 to 10000.");
    row({"--charger-voltage", "1e9"}, "--charger-voltage: \"1e9\" is not a number from 0 to 100.");
    row({"--load", "1e308"}, "--load: \"1e308\" is not a number from 0 to 10000.");
    row({"--fault", "foo"}, "--fault: There is no fault \"foo\"; --help lists them.");
    row({"--fault", "echo", "--fault", "silence"},
        "--fault: Fault \"silence\" needs more: silence <seconds>.");
    row({"--link", ""}, "--link needs a path.");
    row({"--replay", ""}, "--replay needs a path.");
    row({"--replay", "/no/such/file"}, "/no/such/file cannot be read: No such file or directory");
    row({"--replay", "/dev/null"}, "/dev/null holds no telemetry.");
    row({"--exit-at-end"}, "--exit-at-end goes with --replay only.");
    row({"--replay", "x", "--id", "3"}, "--id does not go with --replay.");
    row({"--replay", "x", "--load", "3"}, "--load does not go with --replay.");
    row({"--replay", "x", "--fault", "echo"}, "--fault does not go with --replay.");
}

void KestSimulatorTest::a_bad_argument_is_told()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    Simulator simulator(arguments);
    QVERIFY(simulator.ends_with(2));
    QCOMPARE(QString::fromLocal8Bit(simulator.process.readAllStandardError()),
             "kest-simulator: " + error + "\n");
    QCOMPARE(simulator.process.readAllStandardOutput(), QByteArray());
}

QTEST_GUILESS_MAIN(KestSimulatorTest)

#include "tst_kest_simulator.moc"
