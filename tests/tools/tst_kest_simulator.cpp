#include "simulator_process.h"
#include "support/test_files.h"
#include "support/test_program.h"

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
    void a_recording_is_played_to_its_end();
    void a_recording_is_read_to_its_last_byte();
    void a_recording_keeps_its_own_pace();
    void a_recording_has_no_faults();
    void it_ends_when_asked_data();
    void it_ends_when_asked();
    void it_ends_with_standard_input_only_if_asked();
    void it_lingers_while_somebody_has_the_port();
    void the_record_tells_what_came_in_order();
    void a_record_that_cannot_be_made_ends_with_status_1();
};

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

void KestSimulatorTest::a_recording_is_played_to_its_end()
{
    QTemporaryDir folder;
    QByteArray lines;
    for (int i = 0; i < 5000; ++i)
        lines += "line " + QByteArray::number(i) + "\n";
    QVERIFY(write_file(folder.filePath("lines"), lines));
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
    QVERIFY(write_file(folder.filePath("lines"), "one\n"));
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
    QVERIFY(write_file(folder.filePath("log.txt"), "2020-04-03 09:15:00 first\n"
                                                   "2020-04-03 09:15:00 43\n"
                                                   "2020-04-03 21:15:00 twelve hours later\n"
                                                   "2020-04-03 21:15:10 last\n"));
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
    QVERIFY(write_file(folder.filePath("lines"), "one\n"));
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

    Simulator other(STEADY, {});
    const QString path = other.next_line();
    other.process.write("id 8");  // without a line end
    other.process.waitForBytesWritten(PATIENCE_MS);
    other.process.closeWriteChannel();
    Reader reader(path);
    QVERIFY(reader.reads("ID=8\tO\r\n"));
    QCOMPARE(other.process.state(), QProcess::Running);
}

void KestSimulatorTest::it_lingers_while_somebody_has_the_port()
{
    Simulator simulator(STEADY + QStringList{"--linger", "0.01"});
    auto reader = std::make_unique<Reader>(simulator.next_line());
    QVERIFY(reader->reads(OFF));
    simulator.process.closeWriteChannel();
    reader->write("D");
    QVERIFY(reader->reads(DISCHARGING.repeated(20)));
    QCOMPARE(simulator.process.state(), QProcess::Running);
    reader.reset();
    QVERIFY(simulator.ends_with(0));
}

void KestSimulatorTest::the_record_tells_what_came_in_order()
{
    QTemporaryDir folder;
    const QString path = folder.filePath("record");
    Simulator simulator(STEADY + QStringList{"--record", path});
    {
        Reader reader(simulator.next_line());
        QVERIFY(reader.reads(OFF));
        reader.write("D");
        QVERIFY(reader.reads(DISCHARGING));
        reader.write("U");
        QTRY_VERIFY_WITH_TIMEOUT(content_of(path).endsWith("55\n"), PATIENCE_MS);
    }
    QTRY_VERIFY_WITH_TIMEOUT(content_of(path).endsWith("closed\n"), PATIENCE_MS);
    simulator.process.terminate();
    QVERIFY(simulator.ends_with(0));
    qint64 lines = 0;
    QByteArray happened;
    for (const QByteArray& row : content_of(path).trimmed().split('\n')) {
        QVERIFY(row.split('\t')[0].toLongLong() >= lines);
        lines = row.split('\t')[0].toLongLong();
        happened += row.mid(row.indexOf('\t') + 1).replace('\t', ' ') + "; ";
    }
    QCOMPARE(happened, QByteArray("O opened; D 44; O 55; O closed; O ended; "));
}

void KestSimulatorTest::a_record_that_cannot_be_made_ends_with_status_1()
{
    Simulator simulator({"--record", "/no/such/folder/record"});
    QVERIFY(simulator.ends_with(1));
    QCOMPARE(simulator.next_complaint(),
             QByteArray("kest-simulator: /no/such/folder/record cannot be written: No such file or "
                        "directory\n"));
}

KEST_GUILESS_TEST(KestSimulatorTest)

#include "tst_kest_simulator.moc"
