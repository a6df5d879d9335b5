#include "simulator_process.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include "simulator/faults.h"

#include <QTemporaryDir>
#include <QtTest>

class KestSimulatorOptionsTest : public QObject
{
    Q_OBJECT

private slots:
    void pack_options_shape_the_readings_data();
    void pack_options_shape_the_readings();
    void a_link_that_cannot_be_made_ends_with_status_1_data();
    void a_link_that_cannot_be_made_ends_with_status_1();
    void help_tells_every_option_and_every_fault();
    void the_manual_tells_every_option();
    void a_bad_argument_is_told_data();
    void a_bad_argument_is_told();
};

void KestSimulatorOptionsTest::pack_options_shape_the_readings_data()
{
    QTest::addColumn<QStringList>("options");
    add_columns<QByteArray>({"off", "charging", "discharging"});
    add_row("cells", QStringList{"--cells", "10"}, QByteArray("37.20\t0.0"),
            QByteArray("37.80\t4.0"), QByteArray("36.45\t5.0"));
    add_row("charge", QStringList{"--charge", "10"}, QByteArray("20.70\t0.0"),
            QByteArray("21.30\t4.0"), QByteArray("19.95\t5.0"));
    add_row("resistance", QStringList{"--resistance", "20"}, QByteArray("22.32\t0.0"),
            QByteArray("22.40\t4.0"), QByteArray("22.22\t5.0"));
    add_row("charger's current", QStringList{"--charger-current", "1"}, QByteArray("22.32\t0.0"),
            QByteArray("22.47\t1.0"), QByteArray("21.57\t5.0"));
    add_row("charger's voltage", QStringList{"--charger-voltage", "3.75"}, QByteArray("22.32\t0.0"),
            QByteArray("22.50\t1.2"), QByteArray("21.57\t5.0"));
    add_row("load", QStringList{"--load", "2.5"}, QByteArray("22.32\t0.0"),
            QByteArray("22.92\t4.0"), QByteArray("21.95\t2.5"));
}

void KestSimulatorOptionsTest::pack_options_shape_the_readings()
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

void KestSimulatorOptionsTest::a_link_that_cannot_be_made_ends_with_status_1_data()
{
    add_columns<QString>({"name", "reason"});
    add_row("a file is there", "file", "exists and is no symbolic link.");
    add_row("a folder is there", ".", "exists and is no symbolic link.");
    add_row("no such folder", "none/kest0", "cannot be made: No such file or directory.");
    add_row("below a file", "file/kest0", "cannot be made: Not a directory.");
}

void KestSimulatorOptionsTest::a_link_that_cannot_be_made_ends_with_status_1()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    QTemporaryDir folder;
    const QByteArray content = "mine";
    QVERIFY(write_file(folder.filePath("file"), content));
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

void KestSimulatorOptionsTest::help_tells_every_option_and_every_fault()
{
    Simulator simulator({"--help"});
    QVERIFY(simulator.ends_with(0));
    const QString help = QString::fromLocal8Bit(simulator.process.readAllStandardOutput());
    for (const char* option :
         {"--rate <lines>", "--speed <factor>", "--id <number>", "--delay <lines>",
          "--cells <count>", "--capacity <Ah>", "--charge <percent>", "--resistance <milliohms>",
          "--charger-current <A>", "--charger-voltage <V>", "--load <A>", "--link <path>",
          "--fault <text>", "--replay <file>", "--exit-at-end", "--exit-with-stdin",
          "--linger <seconds>", "--record <path>", "--help"})
        QVERIFY2(help.contains(option), option);
    QVERIFY(help.endsWith("\nFaults:\n\n" + fault_help()));
    QCOMPARE(simulator.process.readAllStandardError(), QByteArray());
}

void KestSimulatorOptionsTest::the_manual_tells_every_option()
{
    Simulator simulator({"-h"});
    QVERIFY(simulator.ends_with(0));
    const QString help = QString::fromLocal8Bit(simulator.process.readAllStandardOutput());
    QFile manual(source_file("docs/simulator.md"));
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
    QCOMPARE(count, 19);
}

void KestSimulatorOptionsTest::a_bad_argument_is_told_data()
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
    row({"--record", ""}, "--record needs a path.");
    row({"--linger", "-1"}, "--linger: \"-1\" is not a number from 0 to 3600.");
    row({"--replay", "/no/such/file"}, "/no/such/file cannot be read: No such file or directory");
    row({"--replay", "/dev/null"}, "/dev/null holds no telemetry.");
    row({"--exit-at-end"}, "--exit-at-end goes with --replay only.");
    row({"--replay", "x", "--id", "3"}, "--id does not go with --replay.");
    row({"--replay", "x", "--load", "3"}, "--load does not go with --replay.");
    row({"--replay", "x", "--fault", "echo"}, "--fault does not go with --replay.");
}

void KestSimulatorOptionsTest::a_bad_argument_is_told()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    Simulator simulator(arguments);
    QVERIFY(simulator.ends_with(2));
    QCOMPARE(QString::fromLocal8Bit(simulator.process.readAllStandardError()),
             "kest-simulator: " + error + "\n");
    QCOMPARE(simulator.process.readAllStandardOutput(), QByteArray());
}

KEST_GUILESS_TEST(KestSimulatorOptionsTest)

#include "tst_kest_simulator_options.moc"
