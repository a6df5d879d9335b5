#include "instrument_bench.h"
#include "support/test_program.h"

#include <QtTest>

#include <cmath>

namespace
{
/** With what listeners have seen of it. */
struct Bench : InstrumentBench
{
    Bench()
    {
        QObject::connect(&instrument, &Kestrometer::sig_id_change,
                         [this] { heard.append(QString("id %1").arg(instrument.id)); });
        QObject::connect(&instrument, &Kestrometer::sig_measurement,
                         [this] { heard.append("measurement"); });
    }

    QStringList heard;
};
}  // namespace

class KestrometerTest : public QObject
{
    Q_OBJECT

private slots:
    void a_fresh_object_knows_nothing();
    void the_port_has_the_settings_of_the_instrument();
    void nothing_is_sent_on_opening();
    void a_port_may_be_given_by_its_path();
    void the_destructor_closes_the_port();
    void a_valid_line_is_taken_over();
    void an_invalid_line_changes_only_what_it_reached_data();
    void an_invalid_line_changes_only_what_it_reached();
    void a_new_number_is_announced_before_the_measurement();
    void the_number_minus_one_is_no_news();
    void a_number_of_an_invalid_line_is_never_announced();
    void listeners_find_the_new_readings();
    void listeners_of_the_number_find_the_old_valid_readings();
    void every_line_moves_the_times_on();
    void the_status_is_age_and_text();
    void the_status_shows_the_line_sanitised();
    void the_status_before_the_first_line_is_no_time_ago();
    void three_seconds_of_silence_are_unresponsive();
};

void KestrometerTest::a_fresh_object_knows_nothing()
{
    const Bench bench;
    const Kestrometer& fresh = bench.instrument;
    QCOMPARE(fresh.receive_buffer, QString());
    QCOMPARE(fresh.requested_state, Unknown);
    QCOMPARE(fresh.stuck_count, 0);
    QCOMPARE(fresh.last_data, QString());
    QVERIFY(fresh.telemetry_log == nullptr);
    QVERIFY(fresh.last_data_time.isNull());
    QCOMPARE(fresh.voltage, 0.0);
    QCOMPARE(fresh.current, 0.0);
    QVERIFY(fresh.previous_data_time.isNull());
    QCOMPARE(fresh.id, -1);
    QCOMPARE(fresh.state, Off);
    QVERIFY(!fresh.get_stuck());
}

void KestrometerTest::the_port_has_the_settings_of_the_instrument()
{
    Bench bench;
    const QSerialPort& port = bench.instrument.port;
    QVERIFY(port.isOpen());
    QCOMPARE(port.openMode(), QIODevice::ReadWrite);
    QCOMPARE(port.baudRate(QSerialPort::Input), 9600);
    QCOMPARE(port.baudRate(QSerialPort::Output), 9600);
    QCOMPARE(port.dataBits(), QSerialPort::Data8);
    QCOMPARE(port.parity(), QSerialPort::NoParity);
    QCOMPARE(port.stopBits(), QSerialPort::OneStop);
    QCOMPARE(port.flowControl(), QSerialPort::NoFlowControl);
}

void KestrometerTest::nothing_is_sent_on_opening()
{
    Bench bench;
    QVERIFY(bench.send("hello"));
    QCOMPARE(bench.wire.commands(), QByteArray());
}

void KestrometerTest::a_port_may_be_given_by_its_path()
{
    Wire wire;
    const Kestrometer instrument("/dev/" + wire.port_name());
    QVERIFY(instrument.port.isOpen());
    QCOMPARE(instrument.get_port_name(), wire.port_name());
}

void KestrometerTest::the_destructor_closes_the_port()
{
    Wire wire;
    auto first = std::make_unique<Kestrometer>(wire.port_name());
    QVERIFY(first->port.isOpen());
    QVERIFY(!Kestrometer(wire.port_name()).port.isOpen());
    first.reset();
    QVERIFY(Kestrometer(wire.port_name()).port.isOpen());
}

void KestrometerTest::a_valid_line_is_taken_over()
{
    Bench bench;
    QVERIFY(bench.send("x\t48.02\t-3.1\tx\tx\tID=0x1F\tD"));
    QCOMPARE(bench.instrument.voltage, 48.02);
    QCOMPARE(bench.instrument.current, -3.1);
    QCOMPARE(bench.instrument.valid_voltage, 48.02);
    QCOMPARE(bench.instrument.valid_current, -3.1);
    QCOMPARE(bench.instrument.id, 31);
    QCOMPARE(bench.instrument.state, Discharging);
    QCOMPARE(bench.heard, (QStringList{"id 31", "measurement"}));
}

void KestrometerTest::an_invalid_line_changes_only_what_it_reached_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<double>("voltage");
    QTest::addColumn<double>("current");
    QTest::addColumn<int>("id");
    QTest::newRow("empty") << QByteArray("") << 48.0 << 2.0 << 7;
    QTest::newRow("garbage") << QByteArray("#*!\x1b[0m") << 48.0 << 2.0 << 7;
    QTest::newRow("6 fields") << QByteArray("x\t50\t1\tx\tID=8\tC") << 48.0 << 2.0 << 7;
    QTest::newRow("8 fields") << QByteArray("x\t50\t1\tx\tx\tID=8\tC\t") << 48.0 << 2.0 << 7;
    QTest::newRow("bad voltage") << QByteArray("x\t5O\t1\tx\tx\tID=8\tC") << 0.0 << 2.0 << 7;
    QTest::newRow("bad current") << QByteArray("x\t50\t1,5\tx\tx\tID=8\tC") << 50.0 << 0.0 << 7;
    QTest::newRow("bad ID") << QByteArray("x\t50\t1\tx\tx\tID=12abc\tC") << 50.0 << 1.0 << 7;
    QTest::newRow("no ID") << QByteArray("x\t50\t1\tx\tx\tID=\tC") << 50.0 << 1.0 << 7;
    add_row("ID beyond 32 bits", QByteArray("x\t50\t1\tx\tx\tID=4294967304\tC"), 50.0, 1.0, 8);
    QTest::newRow("two letters") << QByteArray("x\t50\t1\tx\tx\tID=8\tCC") << 50.0 << 1.0 << 8;
    QTest::newRow("no letter") << QByteArray("x\t50\t1\tx\tx\tID=8\t") << 50.0 << 1.0 << 8;
}

void KestrometerTest::an_invalid_line_changes_only_what_it_reached()
{
    QFETCH(QByteArray, line);
    QFETCH(double, voltage);
    QFETCH(double, current);
    QFETCH(int, id);
    Bench bench;
    QVERIFY(bench.send("x\t48\t2\tx\tx\tID=7\tO"));
    bench.heard.clear();
    QVERIFY(bench.send(line));
    QCOMPARE(bench.instrument.voltage, voltage);
    QCOMPARE(bench.instrument.current, current);
    QCOMPARE(bench.instrument.id, id);
    QCOMPARE(bench.instrument.valid_voltage, 48.0);
    QCOMPARE(bench.instrument.valid_current, 2.0);
    QCOMPARE(bench.instrument.state, Off);
    QCOMPARE(bench.heard, QStringList());
}

void KestrometerTest::a_new_number_is_announced_before_the_measurement()
{
    Bench bench;
    QVERIFY(bench.send("x\t48\t2\tx\tx\tID=7\tO"));
    QVERIFY(bench.send("x\t48\t2\tx\tx\tID=7\tO"));
    QVERIFY(bench.send("x\t48\t2\tx\tx\tID=8\tO"));
    QCOMPARE(bench.heard,
             (QStringList{"id 7", "measurement", "measurement", "id 8", "measurement"}));
}

void KestrometerTest::the_number_minus_one_is_no_news()
{
    Bench bench;
    QVERIFY(bench.send("x\t48\t2\tx\tx\tID=-1\tO"));
    QCOMPARE(bench.heard, QStringList{"measurement"});
}

void KestrometerTest::a_number_of_an_invalid_line_is_never_announced()
{
    Bench bench;
    QVERIFY(bench.send("x\t48\t2\tx\tx\tID=7\tOO"));
    QCOMPARE(bench.instrument.id, 7);
    QVERIFY(bench.send("x\t48\t2\tx\tx\tID=7\tO"));
    QCOMPARE(bench.heard, QStringList{"measurement"});
}

void KestrometerTest::listeners_find_the_new_readings()
{
    Bench bench;
    QVERIFY(bench.send("x\t48\t2\tx\tx\tID=7\tO"));
    int calls = 0;
    connect(&bench.instrument, &Kestrometer::sig_measurement, [&] {
        ++calls;
        QCOMPARE(bench.instrument.voltage, 50.5);
        QCOMPARE(bench.instrument.valid_voltage, 50.5);
        QCOMPARE(bench.instrument.current, 1.5);
        QCOMPARE(bench.instrument.valid_current, 1.5);
        QCOMPARE(bench.instrument.state, Charging);
        QCOMPARE(bench.instrument.last_data_time, bench.clock.now);
    });
    QVERIFY(bench.send("x\t50.5\t1.5\tx\tx\tID=7\tC"));
    QCOMPARE(calls, 1);
}

void KestrometerTest::listeners_of_the_number_find_the_old_valid_readings()
{
    Bench bench;
    QVERIFY(bench.send("x\t48\t2\tx\tx\tID=7\tO"));
    int calls = 0;
    connect(&bench.instrument, &Kestrometer::sig_id_change, [&] {
        ++calls;
        QCOMPARE(bench.instrument.voltage, 50.5);
        QCOMPARE(bench.instrument.valid_voltage, 48.0);
        QCOMPARE(bench.instrument.state, Off);
    });
    QVERIFY(bench.send("x\t50.5\t1.5\tx\tx\tID=8\tC"));
    QCOMPARE(calls, 1);
}

void KestrometerTest::every_line_moves_the_times_on()
{
    Bench bench;
    const QDateTime start = bench.clock.now;
    QVERIFY(bench.send("x\t48\t2\tx\tx\tID=7\tO"));
    QVERIFY(bench.instrument.previous_data_time.isNull());
    QCOMPARE(bench.instrument.last_data_time, start);
    bench.clock.advance_seconds(1.0);
    QVERIFY(bench.send("garbage"));
    QCOMPARE(bench.instrument.previous_data_time, start);
    QCOMPARE(bench.instrument.last_data_time, start.addMSecs(1000));
    QCOMPARE(bench.instrument.last_data, QString("garbage"));
    bench.clock.advance_seconds(0.25);
    QVERIFY(bench.send("x\t48\t2\tx\tx\tID=7\tO"));
    QCOMPARE(bench.instrument.previous_data_time, start.addMSecs(1000));
    QCOMPARE(bench.instrument.last_data_time, start.addMSecs(1250));
}

void KestrometerTest::the_status_is_age_and_text()
{
    Bench bench;
    QVERIFY(bench.send(" x\t48\t2\tx\tx\tID=7\tO "));
    QCOMPARE(bench.instrument.get_status(), QString("00s ago: x\t48\t2\tx\tx\tID=7\tO"));
    bench.clock.advance_seconds(309.9);
    QCOMPARE(bench.instrument.get_status(), QString("05m 09s ago: x\t48\t2\tx\tx\tID=7\tO"));
    bench.clock.advance_seconds(86400);
    QVERIFY(bench.instrument.get_status().startsWith("1d 00h 05m 09s ago: x"));
}

void KestrometerTest::the_status_shows_the_line_sanitised()
{
    Bench bench;
    QVERIFY(bench.send("\x1b[0m %1 %2 \x07\r\xC3\xA9\x7F"));
    QCOMPARE(bench.instrument.get_status(),
             QString("00s ago: [0x1B][0m %1 %2 [0x7][0xD][0xE9]\x7F"));
}

void KestrometerTest::the_status_before_the_first_line_is_no_time_ago()
{
    const Bench bench;
    QCOMPARE(bench.instrument.get_status(), QString("00s ago: "));
}

void KestrometerTest::three_seconds_of_silence_are_unresponsive()
{
    Bench bench;
    QVERIFY(!bench.instrument.is_unresponsive());
    QVERIFY(bench.send("anything"));
    bench.clock.advance_seconds(2.999);
    QVERIFY(!bench.instrument.is_unresponsive());
    bench.clock.advance_seconds(0.001);
    QVERIFY(bench.instrument.is_unresponsive());
    QVERIFY(bench.send("anything"));
    QVERIFY(!bench.instrument.is_unresponsive());
}

KEST_GUILESS_TEST(KestrometerTest)
#include "tst_kestrometer.moc"
