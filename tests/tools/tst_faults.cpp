#include "simulator/faults.h"
#include "simulator/simulated_instrument.h"
#include "support/test_program.h"

#include <QtTest>

using Wire = QList<QByteArray>;

class FaultsTest : public QObject
{
    Q_OBJECT

private slots:
    void each_fault_does_what_it_says_data();
    void each_fault_does_what_it_says();
    void every_fault_has_its_case();
    void garbage_is_noise_that_ends_in_a_line_end();
    void split_bytes_asks_for_single_writes();
    void a_vanished_port_neither_hears_nor_talks();
    void a_fault_set_again_replaces_the_first();
    void faults_add_up();
    void clear_ends_them_all();
};

namespace
{
const QByteArray OFF = "KEST\t25.20\t0.0\t25.0\t0\tID=7\tO\r\n";
const QByteArray CHARGING = "KEST\t25.20\t0.0\t25.0\t0\tID=7\tC\r\n";
const QByteArray DISCHARGING = "KEST\t24.45\t5.0\t25.0\t0\tID=7\tD\r\n";
const QByteArray RESET = QByteArray::fromHex("55555555555500000004");

/** A pack that stays full: the lines above hold for as long as a test lasts. */
SimulatedInstrument steady_instrument()
{
    PackModel pack;
    pack.state_of_charge = 1.0;
    pack.capacity_ah = 1e9;
    return SimulatedInstrument(pack, 7);
}

/** A healthy line with another text in one field. */
QByteArray with_field(QByteArray line, int field, const QByteArray& text)
{
    QList<QByteArray> fields = line.replace("\r\n", "").split('\t');
    fields[field] = text;
    return fields.join('\t') + "\r\n";
}

QByteArray with_numbers(const QByteArray& text)
{
    return with_field(with_field(DISCHARGING, 1, text), 2, text);
}

Wire times(int count, const QByteArray& bytes)
{
    Wire wire;
    while (wire.size() < count)
        wire << bytes;
    return wire;
}

/** What comes on the wire, second by second. */
struct Case
{
    const char* fault;
    QByteArray before;  ///< commands in front of the fault
    QByteArray after;   ///< commands behind it
    Wire wire;
};

QVector<Case> text_cases()
{
    const QByteArray cut = DISCHARGING.chopped(2);
    return {
        {"six-fields", "D", "", {"KEST\t24.45\t5.0\t25.0\tID=7\tD\r\n", DISCHARGING}},
        {"eight-fields", "D", "", {"KEST\t24.45\t5.0\t25.0\t0\t0\tID=7\tD\r\n", DISCHARGING}},
        {"empty-fields", "D", "", {"\t\t\t\t\t\t\r\n", DISCHARGING}},
        {"letters", "D", "", {with_numbers("abc"), DISCHARGING}},
        {"decimal-comma", "D", "", {"KEST\t24,45\t5,0\t25.0\t0\tID=7\tD\r\n", DISCHARGING}},
        {"inf", "D", "", {with_numbers("inf"), DISCHARGING}},
        {"nan", "D", "", {with_numbers("nan"), DISCHARGING}},
        {"1e308", "D", "", {with_numbers("1e308"), DISCHARGING}},
        {"1e308 3",
         "D",
         "",
         {with_numbers("1e308"), with_numbers("1e308"), with_numbers("1e308"), DISCHARGING}},
        {"no-id", "", "", {with_field(OFF, 5, ""), OFF}},
        {"bare-id", "", "", {with_field(OFF, 5, "ID="), OFF}},
        {"big-id", "", "", {with_field(OFF, 5, "ID=4294967303"), OFF}},
        {"wrong-letter", "", "", {with_field(OFF, 6, "X"), OFF}},
        {"wrong-letter 2 o", "", "", {with_field(OFF, 6, "o"), with_field(OFF, 6, "o"), OFF}},
        {"doubled-letter", "C", "", {with_field(CHARGING, 6, "CC"), CHARGING}},
        {"field 0 ID=9", "", "", {with_field(OFF, 0, "ID=9"), OFF}},
        {"field 5 ID=0x1F 2",
         "",
         "",
         {with_field(OFF, 5, "ID=0x1F"), with_field(OFF, 5, "ID=0x1F"), OFF}},
        {"lone-cr", "D", "", {cut + "\r", DISCHARGING}},
        {"lone-lf", "D", "", {cut + "\n", DISCHARGING}},
        {"lost-line-end", "D", "", {cut, DISCHARGING}},
        {"nul", "", "", {with_field(OFF, 0, QByteArray("KEST\0", 5)), OFF}},
        {"nul-line-end", "", "", {OFF.chopped(2) + QByteArray("\0\r\n", 3), OFF}},
        {"invalid-utf8", "", "", {with_field(OFF, 0, "KEST\xC3\x28\xFF"), OFF}},
        {"split-bytes", "", "", {OFF, OFF}},
        {"merge", "", "", {"", OFF + OFF, OFF}},
        {"merge 3", "", "", {"", "", OFF + OFF + OFF, OFF}},
        {"merge 1", "", "", {OFF, OFF}},
        {"babble 7", "", "", {"0123456" + OFF, OFF}},
        {"babble 4000000", "", "", {QByteArray("0123456789").repeated(400000) + OFF, OFF}},
        {"echo", "", "Dx", {"Dx" + DISCHARGING, DISCHARGING}},
        {"letters forever", "D", "", times(50, with_numbers("abc"))},
    };
}

QVector<Case> time_cases()
{
    return {
        {"silence 3", "", "", {"", "", "", OFF, OFF}},
        {"silence 2", "", "D", {"", "", DISCHARGING}},
        {"silence 0.5", "", "", {"", OFF}},
        {"silence forever", "", "", times(50, "")},
        {"burst 3", "", "D", {"", "", "", DISCHARGING.repeated(4), DISCHARGING}},
        {"slow 3", "", "", {"", "", OFF, "", "", OFF}},
        {"slow 1", "", "", {OFF, OFF}},
        {"fast 3", "", "", {OFF + OFF + OFF, OFF + OFF + OFF}},
    };
}

QVector<Case> instrument_cases()
{
    const QByteArray rest = with_field(OFF, 1, "24.45");
    return {
        {"ignore-next", "", "DC", {CHARGING}},
        {"ignore-next", "", "D", {OFF, OFF}},
        {"ignore-next 3", "", "DDDC", {CHARGING}},
        {"ignore-commands", "D", "OOOCO", times(50, DISCHARGING)},
        {"ignore-commands 2", "", "DDDD", {OFF, OFF, OFF}},
        {"late-commands 2", "", "D", {OFF, OFF, DISCHARGING}},
        {"late-commands 1", "", "DC", {OFF, CHARGING}},
        {"stuck-state C", "", "D", times(50, with_field(DISCHARGING, 6, "C"))},
        {"stuck-state O 2",
         "",
         "D",
         {with_field(DISCHARGING, 6, "O"), with_field(DISCHARGING, 6, "O"), DISCHARGING}},
        {"id 8", "", "", {with_field(OFF, 5, "ID=8"), with_field(OFF, 5, "ID=8")}},
        {"id -2147483648", "", "", {with_field(OFF, 5, "ID=-2147483648")}},
        {"restart", "D", "D", {"", "", OFF, OFF}},
        {"restart 4", "D", "", {"", "", "", "", OFF}},
        {"bootloader", "D", "ODC", times(50, "")},
        {"bootloader", "D", RESET, {"", "", OFF}},
        {"bootloader-noise", "D", "ODC", times(3, QByteArray::fromHex("FC7F001555C3AA00FE"))},
        {"bootloader-noise", "D", RESET, {"", "", OFF}},
        {"no-load", "D", "", times(3, "KEST\t25.20\t0.0\t25.0\t0\tID=7\tD\r\n")},
        {"load", "D", "", {DISCHARGING}},
        {"trip-protection", "D", "", times(3, "KEST\t0.00\t0.0\t25.0\t0\tID=7\tD\r\n")},
        {"trip-protection", "D", "C", {CHARGING}},
        {"current-after-off 0.5", "D", "O", times(3, with_field(OFF, 2, "0.5"))},
        {"current-after-off 0.5", "", "D", {DISCHARGING}},
        {"current-after-off 0.5 2",
         "D",
         "O",
         {with_field(OFF, 2, "0.5"), with_field(OFF, 2, "0.5"), OFF}},
        {"voltage-after-off 0", "D", "O", times(3, rest)},
        {"voltage-after-off -0.2", "D", "O", times(3, with_field(OFF, 1, "24.25"))},
        {"voltage-after-off -0.2 1", "D", "O", {with_field(OFF, 1, "24.25"), OFF}},
        {"voltage-after-off -0.2", "C", "O", {OFF}},
        {"voltage-after-off -0.2", "D", "CO", {OFF}},
    };
}

QVector<Case> port_cases()
{
    return {
        {"vanish", "", "", times(50, "")},
        {"vanish 2", "", "D", {"", "", OFF}},
        {"return", "", "", {OFF}},
        {"clear", "", "", {OFF}},
    };
}

QVector<Case> all_cases()
{
    return text_cases() + time_cases() + instrument_cases() + port_cases();
}
}  // namespace

void FaultsTest::each_fault_does_what_it_says_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<Wire>("wire");
    for (const Case& one : all_cases())
        QTest::addRow("%s, %s then %s", one.fault, one.before.constData(),
                      one.after.toHex().constData())
            << one.fault << one.before << one.after << one.wire;
}

void FaultsTest::each_fault_does_what_it_says()
{
    QFETCH(QString, fault);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(Wire, wire);
    SimulatedInstrument instrument = steady_instrument();
    QString error;
    instrument.receive(before);
    QVERIFY2(set_fault(instrument, fault, error), qPrintable(error));
    instrument.receive(after);
    for (const QByteArray& expected : wire)
        QCOMPARE(instrument.advance(1.0), expected);
}

void FaultsTest::every_fault_has_its_case()
{
    QSet<QString> tested = {"garbage"};  // has a test of its own
    for (const Case& one : all_cases())
        tested.insert(QString(one.fault).section(' ', 0, 0));
    QSet<QString> known;
    for (const FaultRow& row : fault_rows())
        known.insert(row.name);
    QCOMPARE(tested, known);
    QCOMPARE(known.size(), fault_rows().size());
}

void FaultsTest::garbage_is_noise_that_ends_in_a_line_end()
{
    SimulatedInstrument instrument = steady_instrument();
    SimulatedInstrument twin = steady_instrument();
    QString error;
    QVERIFY(set_fault(instrument, "garbage 200", error));
    QVERIFY(set_fault(twin, "garbage 200", error));
    QSet<QByteArray> different;
    for (int i = 0; i < 200; ++i) {
        const QByteArray line = instrument.advance(1.0);
        QCOMPARE(line, twin.advance(1.0));
        QVERIFY(line.endsWith("\r\n"));
        const QByteArray noise = line.chopped(2);
        QVERIFY(noise.size() >= 1 && noise.size() <= 60);
        QVERIFY(!noise.contains('\r') && !noise.contains('\n') && !noise.contains('\0'));
        different.insert(line);
    }
    QVERIFY2(different.size() > 190, qPrintable(QString::number(different.size())));
    QCOMPARE(instrument.advance(1.0), OFF);
}

void FaultsTest::split_bytes_asks_for_single_writes()
{
    SimulatedInstrument instrument = steady_instrument();
    QString error;
    QVERIFY(set_fault(instrument, "split-bytes 2", error));
    QList<bool> splits;
    for (int i = 0; i < 4; ++i) {
        instrument.advance(1.0);
        splits << instrument.splits_bytes();
    }
    QCOMPARE(splits, (QList<bool>{true, true, false, false}));
}

void FaultsTest::a_vanished_port_neither_hears_nor_talks()
{
    SimulatedInstrument instrument = steady_instrument();
    QString error;
    QVERIFY(set_fault(instrument, "vanish", error));
    QVERIFY(!instrument.port_present());
    instrument.receive("D");
    QCOMPARE(instrument.advance(1.0), QByteArray());
    QVERIFY(set_fault(instrument, "return", error));
    QVERIFY(instrument.port_present());
    QCOMPARE(instrument.advance(1.0), OFF);

    QVERIFY(set_fault(instrument, "vanish 2", error));
    instrument.advance(1.0);
    QVERIFY(!instrument.port_present());
    instrument.advance(1.0);
    QVERIFY(instrument.port_present());
}

void FaultsTest::a_fault_set_again_replaces_the_first()
{
    SimulatedInstrument instrument = steady_instrument();
    QString error;
    QVERIFY(set_fault(instrument, "lost-line-end forever", error));
    QVERIFY(set_fault(instrument, "lost-line-end 1", error));
    QCOMPARE(instrument.advance(1.0), OFF.chopped(2));
    QCOMPARE(instrument.advance(1.0), OFF);

    QVERIFY(set_fault(instrument, "field 1 a", error));
    QVERIFY(set_fault(instrument, "field 2 b", error));
    QVERIFY(set_fault(instrument, "field 1 c", error));
    QCOMPARE(instrument.advance(1.0), with_field(with_field(OFF, 1, "c"), 2, "b"));
}

void FaultsTest::faults_add_up()
{
    SimulatedInstrument instrument = steady_instrument();
    QString error;
    for (const char* fault :
         {"inf", "decimal-comma", "doubled-letter", "no-id", "lone-cr", "field 6 z", "six-fields",
          "eight-fields", "merge 2", "echo", "slow 2"})
        QVERIFY(set_fault(instrument, fault, error));
    instrument.receive("x");
    QCOMPARE(instrument.advance(1.0), QByteArray("x"));
    QCOMPARE(instrument.advance(1.0), QByteArray());
    QCOMPARE(instrument.advance(1.0), QByteArray());
    QCOMPARE(instrument.advance(1.0), "KEST\tinf\tinf\t25.0\t0\t\tz\r" + OFF);
}

void FaultsTest::clear_ends_them_all()
{
    for (const FaultRow& row : fault_rows()) {
        SimulatedInstrument instrument = steady_instrument();
        QString error;
        QString line = row.name;
        for (const QString& argument : QString(row.usage).split(' ', Qt::SkipEmptyParts))
            if (argument.startsWith('<'))
                line += argument == "<letter>" || argument == "<text>" ? " X" : " 5";
        QVERIFY2(set_fault(instrument, line, error), qPrintable(error));
        QVERIFY2(set_fault(instrument, "clear", error), qPrintable(error));
        const bool lasts =
            qstrcmp(row.name, "restart") == 0 || QByteArray(row.name).startsWith("bootloader");
        const QByteArray expected = qstrcmp(row.name, "id") == 0 ? with_field(OFF, 5, "ID=5") : OFF;
        QCOMPARE(instrument.advance(1.0), lasts ? QByteArray() : expected);
    }
}

KEST_GUILESS_TEST(FaultsTest)

#include "tst_faults.moc"
