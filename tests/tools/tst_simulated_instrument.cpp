#include "simulator/simulated_instrument.h"
#include "support/test_program.h"

#include <QtTest>

class SimulatedInstrumentTest : public QObject
{
    Q_OBJECT

private slots:
    void a_fresh_instrument_is_off_and_talks_unasked();
    void each_command_is_seen_on_the_next_line_data();
    void each_command_is_seen_on_the_next_line();
    void the_last_of_several_commands_holds();
    void other_bytes_are_no_commands();
    void the_voltage_has_two_decimals_and_the_current_one_data();
    void the_voltage_has_two_decimals_and_the_current_one();
    void the_state_letter_lags_by_the_delay();
    void a_discharge_lowers_the_voltage_line_by_line();
    void a_charge_ends_at_the_chargers_voltage_and_tapers();
    void u_leads_into_the_bootloader_and_switches_off();
    void in_the_bootloader_commands_are_not_heard();
    void the_reset_sequence_restarts_from_the_bootloader();
    void the_reset_sequence_may_come_in_pieces_data();
    void the_reset_sequence_may_come_in_pieces();
    void the_reset_sequence_restarts_a_healthy_instrument_too();
    void a_broken_reset_sequence_does_nothing();
    void a_restart_is_deaf_and_silent_for_its_time();
    void no_time_and_absurd_times_change_nothing();
    void two_instruments_with_the_same_input_say_the_same();
};

namespace
{
const QByteArray RESET = QByteArray::fromHex("55555555555500000004");

/** A full pack of 25.20 V at rest and 24.45 V under its load. */
PackModel full_pack()
{
    PackModel pack;
    pack.state_of_charge = 1.0;
    return pack;
}
}  // namespace

void SimulatedInstrumentTest::a_fresh_instrument_is_off_and_talks_unasked()
{
    SimulatedInstrument instrument(full_pack(), 7);
    QCOMPARE(instrument.advance(1.0), QByteArray("KEST\t25.20\t0.0\t25.0\t0\tID=7\tO\r\n"));
    QCOMPARE(instrument.advance(1.0), QByteArray("KEST\t25.20\t0.0\t25.0\t0\tID=7\tO\r\n"));
    QVERIFY(instrument.port_present());
    QVERIFY(!instrument.splits_bytes());
}

void SimulatedInstrumentTest::each_command_is_seen_on_the_next_line_data()
{
    add_columns<QByteArray>({"command", "line"});
    add_row("off", QByteArray("O"), QByteArray("KEST\t22.32\t0.0\t25.0\t0\tID=31\tO\r\n"));
    add_row("charge", QByteArray("C"), QByteArray("KEST\t22.92\t4.0\t25.0\t0\tID=31\tC\r\n"));
    add_row("discharge", QByteArray("D"), QByteArray("KEST\t21.57\t5.0\t25.0\t0\tID=31\tD\r\n"));
}

void SimulatedInstrumentTest::each_command_is_seen_on_the_next_line()
{
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, line);
    SimulatedInstrument instrument(PackModel(), 31);
    instrument.receive(command);
    QCOMPARE(instrument.advance(0.001), line);
}

void SimulatedInstrumentTest::the_last_of_several_commands_holds()
{
    SimulatedInstrument instrument;
    instrument.receive("CDO");
    QCOMPARE(instrument.state, InstrumentState::Off);
    instrument.receive("ODC");
    QCOMPARE(instrument.state, InstrumentState::Charging);
}

void SimulatedInstrumentTest::other_bytes_are_no_commands()
{
    SimulatedInstrument instrument;
    instrument.receive("D");
    for (int byte = 0; byte < 256; ++byte)
        if (!QByteArray("OCDU").contains(char(byte)))
            instrument.receive(QByteArray(1, char(byte)));
    QCOMPARE(instrument.state, InstrumentState::Discharging);
    QVERIFY(instrument.advance(1.0).endsWith("\tD\r\n"));
}

void SimulatedInstrumentTest::the_voltage_has_two_decimals_and_the_current_one_data()
{
    add_columns<double>({"volts", "amps"});
    QTest::addColumn<QByteArray>("fields");
    QTest::newRow("zero") << 0.0 << 0.0 << QByteArray("0.00\t0.0");
    QTest::newRow("minus zero") << -0.0 << -0.0 << QByteArray("0.00\t0.0");
    QTest::newRow("a trace below zero") << -0.004 << -0.04 << QByteArray("0.00\t0.0");
    QTest::newRow("rounded down") << 21.5749 << 4.949 << QByteArray("21.57\t4.9");
    QTest::newRow("rounded up") << 21.5751 << 4.951 << QByteArray("21.58\t5.0");
    QTest::newRow("negative") << -0.2 << -1.06 << QByteArray("-0.20\t-1.1");
    QTest::newRow("trailing zeros stay") << 20.0 << 10.0 << QByteArray("20.00\t10.0");
    QTest::newRow("no exponent") << 1e7 << 1e-7 << QByteArray("10000000.00\t0.0");
}

void SimulatedInstrumentTest::the_voltage_has_two_decimals_and_the_current_one()
{
    QFETCH(double, volts);
    QFETCH(double, amps);
    QFETCH(QByteArray, fields);
    QCOMPARE(TelemetryLine(volts, amps, -1, 'C').bytes(),
             "KEST\t" + fields + "\t25.0\t0\tID=-1\tC\r\n");
}

void SimulatedInstrumentTest::the_state_letter_lags_by_the_delay()
{
    SimulatedInstrument instrument(full_pack());
    instrument.letter_delay = 2;
    instrument.advance(1.0);
    instrument.receive("D");
    QByteArray letters;
    QList<QByteArray> currents;
    for (int i = 0; i < 4; ++i) {
        const QList<QByteArray> fields = instrument.advance(1.0).trimmed().split('\t');
        currents << fields[TelemetryLine::CurrentField];
        letters += fields[TelemetryLine::StateField];
    }
    QCOMPARE(letters, QByteArray("OODD"));
    QCOMPARE(currents, (QList<QByteArray>{"5.0", "5.0", "5.0", "5.0"}));
}

void SimulatedInstrumentTest::a_discharge_lowers_the_voltage_line_by_line()
{
    SimulatedInstrument instrument(full_pack(), 2);
    instrument.receive("D");
    QByteArray wire;
    for (int i = 0; i < 3; ++i)
        wire += instrument.advance(60.0);
    QCOMPARE(wire, QByteArray("KEST\t24.17\t5.0\t25.0\t0\tID=2\tD\r\n"
                              "KEST\t23.95\t5.0\t25.0\t0\tID=2\tD\r\n"
                              "KEST\t23.79\t5.0\t25.0\t0\tID=2\tD\r\n"));
}

void SimulatedInstrumentTest::a_charge_ends_at_the_chargers_voltage_and_tapers()
{
    PackModel pack;
    pack.state_of_charge = 0.98;
    SimulatedInstrument instrument(pack, 2);
    instrument.receive("C");
    instrument.advance(60.0);
    QList<QByteArray> voltages;
    double amps = 4.0;
    for (int i = 0; i < 10; ++i) {
        const QList<QByteArray> fields = instrument.advance(300.0).split('\t');
        voltages << fields[TelemetryLine::VoltageField];
        const double now = fields[TelemetryLine::CurrentField].toDouble();
        QVERIFY2(now <= amps, fields[TelemetryLine::CurrentField].constData());
        amps = now;
    }
    QCOMPARE(voltages.count("25.20"), 10);
    QCOMPARE(amps, 0.0);
}

void SimulatedInstrumentTest::u_leads_into_the_bootloader_and_switches_off()
{
    SimulatedInstrument instrument;
    instrument.receive("CU");
    QCOMPARE(instrument.state, InstrumentState::Off);
    for (int i = 0; i < 10; ++i)
        QCOMPARE(instrument.advance(1.0), QByteArray());
}

void SimulatedInstrumentTest::in_the_bootloader_commands_are_not_heard()
{
    SimulatedInstrument instrument;
    instrument.enter_bootloader();
    instrument.receive("CCDDUU");
    QCOMPARE(instrument.state, InstrumentState::Off);
    QCOMPARE(instrument.advance(1.0), QByteArray());
}

void SimulatedInstrumentTest::the_reset_sequence_restarts_from_the_bootloader()
{
    SimulatedInstrument instrument(full_pack(), 7);
    instrument.enter_bootloader();
    instrument.receive(RESET);
    QCOMPARE(instrument.advance(1.0), QByteArray());
    QCOMPARE(instrument.advance(1.0), QByteArray());
    QCOMPARE(instrument.advance(1.0), QByteArray("KEST\t25.20\t0.0\t25.0\t0\tID=7\tO\r\n"));
    instrument.receive("D");
    QVERIFY(instrument.advance(1.0).endsWith("\tD\r\n"));
}

void SimulatedInstrumentTest::the_reset_sequence_may_come_in_pieces_data()
{
    QTest::addColumn<int>("cut");
    for (int cut = 0; cut < RESET.size(); ++cut)
        QTest::addRow("cut at %d", cut) << cut;
}

void SimulatedInstrumentTest::the_reset_sequence_may_come_in_pieces()
{
    QFETCH(int, cut);
    SimulatedInstrument instrument(full_pack(), 7);
    instrument.receive("U");
    instrument.receive("noise" + RESET.left(cut));
    QCOMPARE(instrument.advance(5.0), QByteArray());
    instrument.receive(RESET.mid(cut));
    QCOMPARE(instrument.advance(2.0), QByteArray());
    QVERIFY(instrument.advance(1.0).endsWith("\tO\r\n"));
}

void SimulatedInstrumentTest::the_reset_sequence_restarts_a_healthy_instrument_too()
{
    SimulatedInstrument instrument(full_pack(), 7);
    instrument.receive("D");
    instrument.advance(1.0);
    instrument.receive(RESET);
    QCOMPARE(instrument.advance(1.0), QByteArray());
    QCOMPARE(instrument.advance(1.0), QByteArray());
    QVERIFY(instrument.advance(1.0).endsWith("\t0.0\t25.0\t0\tID=7\tO\r\n"));
}

void SimulatedInstrumentTest::a_broken_reset_sequence_does_nothing()
{
    SimulatedInstrument instrument;
    instrument.enter_bootloader();
    instrument.receive(RESET.left(9) + "\x05" + RESET.mid(1, 5) + RESET.mid(6));
    for (int i = 0; i < 10; ++i)
        QCOMPARE(instrument.advance(1.0), QByteArray());
}

void SimulatedInstrumentTest::a_restart_is_deaf_and_silent_for_its_time()
{
    SimulatedInstrument instrument;
    instrument.restart(3.0);
    for (int i = 0; i < 3; ++i) {
        instrument.receive("DU");
        QCOMPARE(instrument.advance(1.0), QByteArray());
    }
    QVERIFY(instrument.advance(1.0).endsWith("\tO\r\n"));
}

void SimulatedInstrumentTest::no_time_and_absurd_times_change_nothing()
{
    SimulatedInstrument instrument(full_pack());
    instrument.receive("D");
    const QByteArray line = "KEST\t24.45\t5.0\t25.0\t0\tID=1\tD\r\n";
    QCOMPARE(instrument.advance(0.0), line);
    QCOMPARE(instrument.advance(-5.0), line);
    QCOMPARE(instrument.advance(qQNaN()), line);
    QCOMPARE(instrument.pack.state_of_charge, 1.0);
    // Longer than any pack lasts: its protection has opened.
    QCOMPARE(instrument.advance(1e300), QByteArray("KEST\t0.00\t0.0\t25.0\t0\tID=1\tD\r\n"));
}

void SimulatedInstrumentTest::two_instruments_with_the_same_input_say_the_same()
{
    SimulatedInstrument one(full_pack(), 3);
    SimulatedInstrument other(full_pack(), 3);
    const QByteArray script = "DDDDOOOCCDDOOOCDOC";
    QByteArray first;
    QByteArray second;
    for (const char command : script) {
        one.receive(QByteArray(1, command));
        first += one.advance(10.0);
    }
    for (const char command : script) {
        other.receive(QByteArray(1, command));
        second += other.advance(10.0);
    }
    QCOMPARE(first, second);
    QCOMPARE(first.count('\n'), script.size());
}

KEST_GUILESS_TEST(SimulatedInstrumentTest)

#include "tst_simulated_instrument.moc"
