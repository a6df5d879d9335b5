#include "simulator/faults.h"
#include "simulator/simulated_instrument.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QtTest>

class FaultLinesTest : public QObject
{
    Q_OBJECT

private slots:
    void a_bad_line_is_told_and_changes_nothing_data();
    void a_bad_line_is_told_and_changes_nothing();
    void help_names_every_fault();
    void the_manual_names_every_fault();
};

void FaultLinesTest::a_bad_line_is_told_and_changes_nothing_data()
{
    add_columns<QString>({"line", "error"});
    const auto row = [](const char* line, const char* error) {
        QTest::newRow(line) << line << error;
    };
    const QString lines = "is not a number of lines from 1 to 1000000, or \"forever\".";
    const QString seconds = "is not a number of seconds from 0.001 to 10000000, or \"forever\".";
    row("", "No fault is named.");
    row("  \t", "No fault is named.");
    row("foo", "There is no fault \"foo\"; --help lists them.");
    row("Garbage", "There is no fault \"Garbage\"; --help lists them.");
    row("silence", "Fault \"silence\" needs more: silence <seconds>.");
    row("field 1", "Fault \"field\" needs more: field <field> <text> [lines=1].");
    row("echo on", "Fault \"echo\" takes less: echo.");
    row("garbage 1 2", "Fault \"garbage\" takes less: garbage [lines=1].");
    add_row("no lines", "garbage 0", "Fault \"garbage\": \"0\" " + lines);
    add_row("negative lines", "garbage -1", "Fault \"garbage\": \"-1\" " + lines);
    add_row("half a line", "garbage 1.5", "Fault \"garbage\": \"1.5\" " + lines);
    add_row("too many lines", "garbage 1000001", "Fault \"garbage\": \"1000001\" " + lines);
    add_row("lines beyond 64 bits", "garbage 99999999999999999999",
            "Fault \"garbage\": \"99999999999999999999\" " + lines);
    add_row("words for lines", "garbage x", "Fault \"garbage\": \"x\" " + lines);
    add_row("no time", "silence 0", "Fault \"silence\": \"0\" " + seconds);
    add_row("infinite time", "silence inf", "Fault \"silence\": \"inf\" " + seconds);
    add_row("nan time", "silence nan", "Fault \"silence\": \"nan\" " + seconds);
    add_row("comma", "silence 1,5", "Fault \"silence\": \"1,5\" " + seconds);
    row("burst forever",
        "Fault \"burst\": \"forever\" is not a number of seconds from 0.001 to 100000.");
    row("slow 1001", "Fault \"slow\": \"1001\" is not a whole number from 1 to 1000.");
    row("late-commands -1",
        "Fault \"late-commands\": \"-1\" is not a number of lines from 0 to 1000.");
    row("babble 100000001",
        "Fault \"babble\": \"100000001\" is not a number of bytes from 1 to 100000000.");
    row("voltage-after-off x",
        "Fault \"voltage-after-off\": \"x\" is not a number of volts from -1000 to 1000.");
    row("current-after-off 1e4",
        "Fault \"current-after-off\": \"1e4\" is not a number of amps from -1000 to 1000.");
    row("id 2147483648",
        "Fault \"id\": \"2147483648\" is not a whole number from -2147483648 to 2147483647.");
    row("field 7 x", "Fault \"field\": \"7\" is not a field's number from 0 to 6.");
    row("stuck-state CC", "Fault \"stuck-state\": \"CC\" is not one printable character.");
    row("stuck-state \u00e9", "Fault \"stuck-state\": \"\u00e9\" is not one printable character.");
}

void FaultLinesTest::a_bad_line_is_told_and_changes_nothing()
{
    QFETCH(QString, line);
    QFETCH(QString, error);
    QString told;
    QVERIFY(!check_fault(line, told));
    QCOMPARE(told, error);

    SimulatedInstrument instrument;
    SimulatedInstrument healthy;
    told.clear();
    QVERIFY(!set_fault(instrument, line, told));
    QCOMPARE(told, error);
    instrument.receive("D");
    healthy.receive("D");
    for (int i = 0; i < 3; ++i)
        QCOMPARE(instrument.advance(1.0), healthy.advance(1.0));
    QVERIFY(instrument.port_present());
}

void FaultLinesTest::help_names_every_fault()
{
    const QString help = fault_help();
    for (const FaultRow& row : fault_rows())
        QVERIFY2(help.contains(QString("  %1\n      %2\n").arg(fault_synopsis(row), row.effect)),
                 row.name);
    QCOMPARE(help.count('\n'), 2 * fault_rows().size() + 5);
}

void FaultLinesTest::the_manual_names_every_fault()
{
    QFile manual(source_file("docs/simulator.md"));
    QVERIFY(manual.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(manual.readAll()).split('\n');
    QStringList rows;
    for (const QString& line : lines)
        if (line.startsWith("| `") && !line.startsWith("| `--"))
            rows << line;
    QStringList expected;
    for (const FaultRow& row : fault_rows())
        expected << QString("| `%1` | %2 |").arg(fault_synopsis(row), row.effect);
    QCOMPARE(rows, expected);
}

KEST_GUILESS_TEST(FaultLinesTest)

#include "tst_fault_lines.moc"
