#include "instrument_bench.h"
#include "support/console_capture.h"
#include "support/modal_answer.h"
#include "support/test_program.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
const QByteArray REPORTS_OFF = "x\t48.00\t0.0\tx\tx\tID=31\tO";
const QByteArray REPORTS_CHARGING = "x\t48.00\t2.0\tx\tx\tID=31\tC";
const QByteArray RESET_BYTES("\x55\x55\x55\x55\x55\x55\x00\x00\x00\x04", 10);

using Bench = InstrumentBench;

QStringList toolkit_messages;

/** Collects what the toolkit has to say while the object lives. */
struct MessageRecorder
{
    MessageRecorder()
    {
        toolkit_messages.clear();
        before = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&,
                                           const QString& text) { toolkit_messages.append(text); });
    }

    ~MessageRecorder()
    {
        qInstallMessageHandler(before);
    }

    QtMessageHandler before = nullptr;
};

/** Everything that writes, as the levels above call it. */
void command_everything(Kestrometer& instrument)
{
    instrument.set_state(Charging);
    instrument.set_state(Off);
    instrument.enter_bootloader_mode();
    for (int times = 0; times < 3; ++times)
        instrument.reset();
}
}  // namespace

class KestrometerCommandsTest : public QObject
{
    Q_OBJECT

private slots:
    void each_state_has_its_command();
    void off_is_sent_to_a_fresh_object_that_seems_off();
    void a_state_both_reported_and_commanded_is_not_sent_again();
    void a_state_only_reported_is_sent();
    void unknown_is_remembered_and_not_sent();
    void bootloader_and_reset_have_their_bytes();
    void commands_arrive_in_order();
    void an_empty_command_is_refused();
    void an_ignored_command_is_repeated_at_every_second_line();
    void a_line_that_obeys_starts_the_count_again();
    void invalid_lines_are_not_counted();
    void nothing_is_repeated_before_the_first_command();
    void the_check_sees_what_a_listener_has_just_commanded();
    void both_directions_are_logged_as_they_are();
    void each_record_is_in_the_file_at_once();
    void without_a_log_nothing_is_logged();
    void a_port_that_cannot_be_opened_is_silent();
    void a_port_that_vanishes_is_closed();
    void a_write_into_nowhere_closes_the_port();
    void a_vanished_port_leaves_others_alone();
    void commands_that_nobody_takes_wait_and_telemetry_goes_on();
    void a_port_that_vanishes_with_commands_waiting_is_closed();
};

void KestrometerCommandsTest::each_state_has_its_command()
{
    Bench bench;
    bench.instrument.set_state(Discharging);
    QCOMPARE(bench.wire.commands(), QByteArray("D"));
    bench.instrument.set_state(Charging);
    QCOMPARE(bench.wire.commands(), QByteArray("C"));
    bench.instrument.set_state(Off);
    QCOMPARE(bench.wire.commands(), QByteArray("O"));
    QCOMPARE(bench.instrument.requested_state, Off);
}

void KestrometerCommandsTest::off_is_sent_to_a_fresh_object_that_seems_off()
{
    Bench bench;
    QCOMPARE(bench.instrument.state, Off);
    bench.instrument.set_state(Off);
    QCOMPARE(bench.wire.commands(), QByteArray("O"));
}

void KestrometerCommandsTest::a_state_both_reported_and_commanded_is_not_sent_again()
{
    Bench bench;
    bench.instrument.set_state(Off);
    bench.instrument.set_state(Off);
    QCOMPARE(bench.wire.commands(), QByteArray("O"));
    bench.instrument.set_state(Charging);
    bench.instrument.set_state(Charging);
    QCOMPARE(bench.wire.commands(), QByteArray("CC"));
    QVERIFY(bench.send(REPORTS_CHARGING));
    bench.instrument.set_state(Charging);
    QCOMPARE(bench.wire.commands(), QByteArray());
}

void KestrometerCommandsTest::a_state_only_reported_is_sent()
{
    Bench bench;
    bench.instrument.set_state(Discharging);
    QVERIFY(bench.send(REPORTS_CHARGING));
    QCOMPARE(bench.wire.commands(), QByteArray("D"));
    bench.instrument.set_state(Charging);
    QCOMPARE(bench.wire.commands(), QByteArray("C"));
}

void KestrometerCommandsTest::unknown_is_remembered_and_not_sent()
{
    Bench bench;
    ModalAnswer answers;
    bench.instrument.set_state(Charging);
    bench.instrument.set_state(Unknown);
    QCOMPARE(bench.wire.commands(), QByteArray("C"));
    QCOMPARE(bench.instrument.requested_state, Unknown);
    for (int line = 0; line < 4; ++line)
        QVERIFY(bench.send(REPORTS_OFF));
    QCOMPARE(bench.instrument.stuck_count, 0);
    QCOMPARE(bench.wire.commands(), QByteArray());
    QCOMPARE(int(answers.seen.size()), 0);
}

void KestrometerCommandsTest::bootloader_and_reset_have_their_bytes()
{
    Bench bench;
    bench.instrument.enter_bootloader_mode();
    QCOMPARE(bench.wire.commands(), QByteArray("\x55"));
    bench.instrument.reset();
    QCOMPARE(bench.wire.commands(), RESET_BYTES);
    QCOMPARE(bench.instrument.requested_state, Unknown);
}

void KestrometerCommandsTest::commands_arrive_in_order()
{
    Bench bench;
    command_everything(bench.instrument);
    QCOMPARE(bench.wire.commands(), "COU" + RESET_BYTES + RESET_BYTES + RESET_BYTES);
}

void KestrometerCommandsTest::an_empty_command_is_refused()
{
    Bench bench;
    ModalAnswer answers;
    QBuffer log;
    QVERIFY(log.open(QIODevice::WriteOnly));
    bench.instrument.telemetry_log = &log;
    answers.click(QMessageBox::Ok);
    bench.instrument.send_command("");
    QCOMPARE(int(answers.seen.size()), 1);
    QCOMPARE(answers.seen[0].caption, QString("Error"));
    QCOMPARE(answers.seen[0].text, QString("Attempting to send zero-length command."));
    QCOMPARE(answers.seen[0].icon, QMessageBox::Warning);
    QCOMPARE(int(answers.seen[0].buttons), int(QMessageBox::Ok));
    QCOMPARE(bench.wire.commands(), QByteArray());
    QCOMPARE(log.data(), QByteArray());
}

void KestrometerCommandsTest::an_ignored_command_is_repeated_at_every_second_line()
{
    Bench bench;
    bench.instrument.set_state(Charging);
    QCOMPARE(bench.wire.commands(), QByteArray("C"));
    for (int line = 1; line <= 8; ++line) {
        QByteArray printed;
        {
            ConsoleCapture capture;
            QVERIFY(bench.send(REPORTS_OFF));
            printed = capture.text();
        }
        const bool repeats = line % 2 == 0;
        QCOMPARE(bench.instrument.stuck_count, line);
        QCOMPARE(bench.instrument.get_stuck(), line >= 5);
        QCOMPARE(bench.wire.commands(), repeats ? QByteArray("C") : QByteArray());
        QCOMPARE(printed, repeats
                              ? "Kestrometer 31 has been stuck for " + QByteArray::number(line) +
                                    " reads, re-sending last command.\n"
                              : QByteArray());
    }
}

void KestrometerCommandsTest::a_line_that_obeys_starts_the_count_again()
{
    Bench bench;
    bench.instrument.set_state(Charging);
    const ConsoleCapture quiet;
    for (int line = 0; line < 5; ++line)
        QVERIFY(bench.send(REPORTS_OFF));
    QVERIFY(bench.instrument.get_stuck());
    QVERIFY(bench.send(REPORTS_CHARGING));
    QCOMPARE(bench.instrument.stuck_count, 0);
    QVERIFY(!bench.instrument.get_stuck());
    bench.wire.commands();
    QVERIFY(bench.send(REPORTS_OFF));
    QCOMPARE(bench.wire.commands(), QByteArray());
    QVERIFY(bench.send(REPORTS_OFF));
    QCOMPARE(bench.wire.commands(), QByteArray("C"));
}

void KestrometerCommandsTest::invalid_lines_are_not_counted()
{
    Bench bench;
    bench.instrument.set_state(Charging);
    bench.wire.commands();
    QVERIFY(bench.send(REPORTS_OFF));
    for (const char* line : {"garbage", "x\t48.00\t2.0\tx\tx\tID=31\tCC", ""})
        QVERIFY(bench.send(line));
    QCOMPARE(bench.instrument.stuck_count, 1);
    QCOMPARE(bench.wire.commands(), QByteArray());
}

void KestrometerCommandsTest::nothing_is_repeated_before_the_first_command()
{
    Bench bench;
    for (int line = 0; line < 6; ++line)
        QVERIFY(bench.send("x\t48.00\t2.0\tx\tx\tID=31\tD"));
    QCOMPARE(bench.instrument.stuck_count, 0);
    QCOMPARE(bench.wire.commands(), QByteArray());
}

void KestrometerCommandsTest::the_check_sees_what_a_listener_has_just_commanded()
{
    Bench bench;
    bench.instrument.set_state(Charging);
    QVERIFY(bench.send(REPORTS_OFF));
    connect(&bench.instrument, &Kestrometer::sig_measurement,
            [&] { bench.instrument.set_state(Off); });
    QVERIFY(bench.send(REPORTS_OFF));
    QCOMPARE(bench.instrument.stuck_count, 0);
    QCOMPARE(bench.wire.commands(), QByteArray("CO"));
}

void KestrometerCommandsTest::both_directions_are_logged_as_they_are()
{
    Bench bench;
    QBuffer log;
    QVERIFY(log.open(QIODevice::WriteOnly));
    bench.instrument.telemetry_log = &log;
    bench.instrument.set_state(Charging);
    bench.clock.advance_seconds(1.0);
    QVERIFY(bench.send(" garbage %1 \x1b\xC3\xA9 "));
    bench.clock.advance_seconds(1.999);
    QVERIFY(bench.send(REPORTS_CHARGING));
    bench.instrument.reset();
    bench.instrument.enter_bootloader_mode();
    QVERIFY(bench.send(""));
    QCOMPARE(log.data(), QByteArray("2020-04-03 09:15:00 43\n"
                                    "2020-04-03 09:15:01  garbage %1 \x1b\xC3\xA9 \n"
                                    "2020-04-03 09:15:02 x\t48.00\t2.0\tx\tx\tID=31\tC\n"
                                    "2020-04-03 09:15:02 55 55 55 55 55 55 00 00 00 04\n"
                                    "2020-04-03 09:15:02 55\n"
                                    "2020-04-03 09:15:02 \n"));
}

void KestrometerCommandsTest::each_record_is_in_the_file_at_once()
{
    Bench bench;
    const QTemporaryDir folder;
    QFile log(folder.filePath("raw.txt"));
    QVERIFY(log.open(QIODevice::WriteOnly | QIODevice::Text | QIODevice::Unbuffered));
    bench.instrument.telemetry_log = &log;
    bench.instrument.set_state(Off);
    QFile reader(log.fileName());
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QCOMPARE(reader.readAll(), QByteArray("2020-04-03 09:15:00 4F\n"));
    QVERIFY(bench.send("one"));
    QCOMPARE(reader.readAll(), QByteArray("2020-04-03 09:15:00 one\n"));
}

void KestrometerCommandsTest::without_a_log_nothing_is_logged()
{
    Bench bench;
    QBuffer log;
    QVERIFY(log.open(QIODevice::WriteOnly));
    bench.instrument.telemetry_log = &log;
    QVERIFY(bench.send("one"));
    bench.instrument.telemetry_log = nullptr;
    QVERIFY(bench.send("two"));
    bench.instrument.reset();
    QCOMPARE(log.data(), QByteArray("2020-04-03 09:15:00 one\n"));
}

void KestrometerCommandsTest::a_port_that_cannot_be_opened_is_silent()
{
    const MessageRecorder recorder;
    ModalAnswer answers;
    QBuffer log;
    QVERIFY(log.open(QIODevice::WriteOnly));
    const TestClock clock;
    {
        Kestrometer instrument("no-such-port");
        QVERIFY(!instrument.port.isOpen());
        QCOMPARE(instrument.get_port_name(), QString("no-such-port"));
        instrument.telemetry_log = &log;
        command_everything(instrument);
        QCoreApplication::processEvents();
        QCOMPARE(instrument.id, -1);
        QCOMPARE(instrument.requested_state, Off);
    }
    QCOMPARE(toolkit_messages, QStringList());
    QCOMPARE(int(answers.seen.size()), 0);
    QVERIFY(log.data().startsWith("2020-04-03 09:15:00 43\n2020-04-03 09:15:00 4F\n"));
}

void KestrometerCommandsTest::a_port_that_vanishes_is_closed()
{
    const MessageRecorder recorder;
    Bench bench;
    QVERIFY(bench.send(REPORTS_CHARGING));
    QSignalSpy errors(&bench.instrument.port, &QSerialPort::errorOccurred);
    bench.wire.hang_up();
    QVERIFY(spin_until([&] { return !bench.instrument.port.isOpen(); }));
    const int errors_until_closed = errors.count();
    QVERIFY(errors_until_closed >= 1 && errors_until_closed <= 2);
    command_everything(bench.instrument);
    for (int round = 0; round < 100; ++round)
        QCoreApplication::processEvents();
    QCOMPARE(errors.count(), errors_until_closed);
    QCOMPARE(bench.instrument.valid_voltage, 48.0);
    QCOMPARE(bench.instrument.get_port_name(), bench.instrument.port.portName());
    QCOMPARE(toolkit_messages, QStringList());
}

void KestrometerCommandsTest::a_write_into_nowhere_closes_the_port()
{
    const MessageRecorder recorder;
    Bench bench;
    bench.wire.hang_up();
    // Before the event loop has had a chance to notice.
    command_everything(bench.instrument);
    QVERIFY(spin_until([&] { return !bench.instrument.port.isOpen(); }));
    command_everything(bench.instrument);
    QCOMPARE(toolkit_messages, QStringList());
}

void KestrometerCommandsTest::a_vanished_port_leaves_others_alone()
{
    Bench vanishing;
    Bench staying;
    vanishing.wire.hang_up();
    QVERIFY(spin_until([&] { return !vanishing.instrument.port.isOpen(); }));
    QVERIFY(staying.send(REPORTS_CHARGING));
    QCOMPARE(staying.instrument.state, Charging);
    staying.instrument.set_state(Off);
    QCOMPARE(staying.wire.commands(), QByteArray("O"));
}

void KestrometerCommandsTest::commands_that_nobody_takes_wait_and_telemetry_goes_on()
{
    Bench bench;
    QSignalSpy errors(&bench.instrument.port, &QSerialPort::errorOccurred);
    QByteArray sent;
    while (errors.isEmpty()) {
        const QByteArray commands(4096, 'C');
        bench.instrument.send_command(commands);
        sent += commands;
    }
    QCoreApplication::processEvents();
    QVERIFY(bench.instrument.port.isOpen());
    QVERIFY(bench.send(REPORTS_CHARGING));
    QCOMPARE(bench.instrument.state, Charging);
    QByteArray taken = bench.wire.commands();
    QVERIFY(taken.size() < sent.size());
    QVERIFY(spin_until([&] { return bench.instrument.port.bytesToWrite() == 0; }));
    taken += bench.wire.commands();
    QCOMPARE(taken, sent);
}

void KestrometerCommandsTest::a_port_that_vanishes_with_commands_waiting_is_closed()
{
    Bench bench;
    QSignalSpy errors(&bench.instrument.port, &QSerialPort::errorOccurred);
    while (errors.isEmpty())
        bench.instrument.send_command(QByteArray(4096, 'C'));
    bench.wire.hang_up();
    QVERIFY(spin_until([&] { return !bench.instrument.port.isOpen(); }));
}

KEST_TEST(KestrometerCommandsTest)
#include "tst_kestrometer_commands.moc"
