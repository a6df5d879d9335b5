#include "guard_bench.h"

#include "guard/off_run.h"

#include "support/test_files.h"

#include <QSerialPort>

#include <unistd.h>

namespace
{
/** Has the instrument in this state, with nobody left on its line. */
bool leave_in_state(Instrument& instrument, const QByteArray& command)
{
    QSerialPort port(instrument.path);
    if (!port.open(QIODevice::ReadWrite))
        return false;
    port.write(command);
    port.flush();
    const bool obeyed =
        QTest::qWaitFor([&] { return instrument.state() == command.at(0); }, PATIENCE_MS);
    port.close();
    return obeyed && instrument.comes_to("closed");
}

/** All free ports of a machine that has these; the status that it ends with. */
int switch_all_off(const QStringList& ports)
{
    int descriptors[2] = {};
    if (::pipe(descriptors) != 0)
        return -1;
    GuardOptions options;
    options.off = true;
    options.all = true;
    options.speed = 2.0;
    int status = 0;
    {
        OffRun run(options, ports, descriptors[0]);
        QTimer::singleShot(0, &run, &OffRun::start);
        status = QCoreApplication::exec();
    }
    ::close(descriptors[0]);
    ::close(descriptors[1]);
    return status;
}
}  // namespace

/** Switching off by hand. */
class KestGuardByHandTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void a_port_is_switched_off();
    void two_ports_are_switched_off();
    void what_is_no_port_is_told();
    void a_port_that_is_in_use_is_left_alone();
    void of_all_ports_those_are_switched_off_where_an_instrument_speaks();
    void without_a_port_there_is_nothing_to_do();
    void wrong_arguments_are_told();
    void help_and_version_are_told();

private:
    QTemporaryDir folder;
};

void KestGuardByHandTest::initTestCase()
{
    qputenv("XDG_STATE_HOME", QFile::encodeName(folder.path()));
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("XDG_RUNTIME_DIR");
}

void KestGuardByHandTest::a_port_is_switched_off()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument({"--capacity", "100000", "--rate", "4"});
    QVERIFY(leave_in_state(instrument, "D"));
    bench.start_with({"--off", instrument.port()});
    QVERIFY(bench.ends_with(0));
    QCOMPARE(without_haste(bench.said), "kest-guard: Instrument 7 on " + instrument.port() +
                                            " is off: 22.32 V, 0.0 A.\nkest-guard: All is off.\n");
    QVERIFY(instrument.comes_to("opened 44 closed opened 4F closed"));
    QCOMPARE(instrument.state(), 'O');
}

void KestGuardByHandTest::two_ports_are_switched_off()
{
    GuardBench bench;
    QVERIFY(leave_in_state(bench.add_instrument(), "D"));
    QVERIFY(leave_in_state(bench.add_instrument(), "C"));
    bench.start_with({"-o", bench.instruments[0]->path, bench.instruments[1]->port(),
                      bench.instruments[1]->path});
    QVERIFY(bench.ends_with(0));
    for (const auto& instrument : bench.instruments) {
        QVERIFY(instrument->comes_to("closed opened 4F closed"));
        QCOMPARE(instrument->state(), 'O');
    }
}

void KestGuardByHandTest::what_is_no_port_is_told()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    bench.start_with({"--off", "ttyNONE", instrument.port()});
    QVERIFY(bench.ends_with(1));
    QVERIFY2(bench.said.startsWith("kest-guard: /dev/ttyNONE is no serial port of this machine.\n"),
             bench.said);
    QVERIFY2(bench.said.endsWith("kest-guard: NOT all is off: see to /dev/ttyNONE now.\n"),
             bench.said);
    QVERIFY(instrument.comes_to("opened 4F closed"));
    GuardBench alone;
    alone.start_with({"--off", "/dev/null"});
    QVERIFY(alone.ends_with(1));
    QCOMPARE(alone.said, QByteArray("kest-guard: /dev/null is no serial port of this machine.\n"
                                    "kest-guard: NOT all is off: see to /dev/null now.\n"));
}

void KestGuardByHandTest::a_port_that_is_in_use_is_left_alone()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QProcess other;
    other.start("sh", {"-c", "exec 5<>" + instrument.path + "; echo up; read x"});
    QVERIFY(other.waitForReadyRead(PATIENCE_MS));
    bench.start_with({"--off", instrument.port()});
    QVERIFY(bench.ends_with(1));
    QCOMPARE(bench.said,
             "kest-guard: " + instrument.port() + " is held by sh (process " +
                 QByteArray::number(other.processId()) +
                 ") and was left alone. Look whether its instrument is off, or unplug the "
                 "pack.\nkest-guard: NOT all is off: see to " +
                 instrument.port() + " now.\n");
    QCOMPARE(instrument.story(), QByteArray("opened"));
    other.closeWriteChannel();
    QVERIFY(other.waitForFinished(PATIENCE_MS));
}

void KestGuardByHandTest::of_all_ports_those_are_switched_off_where_an_instrument_speaks()
{
    GuardBench bench;
    Instrument& ours = bench.add_instrument();
    Instrument& silent = bench.add_instrument({"--fault", "silence 100000"});
    Instrument& foreign = bench.add_instrument({"--fault", "garbage forever"});
    Instrument& used = bench.add_instrument();
    QVERIFY(leave_in_state(ours, "D"));
    QProcess other;
    other.start("sh", {"-c", "exec 5<>" + used.path + "; echo up; read x"});
    QVERIFY(other.waitForReadyRead(PATIENCE_MS));
    QCOMPARE(switch_all_off({ours.path, silent.path, foreign.path, used.path, "/dev/ttyNONE"}), 0);
    const QByteArray log = content_of(folder.filePath("kest-guard/kest-guard.log"));
    QVERIFY2(log.contains(" " + used.port() + " is in use by sh (process " +
                          QByteArray::number(other.processId()) + ") and was left alone.\n"),
             log);
    QVERIFY2(
        log.endsWith(" All that spoke on a free port is off. Still in use: " + used.port() + ".\n"),
        log);
    QVERIFY(ours.comes_to("opened 44 closed opened 4F closed"));
    QCOMPARE(ours.state(), 'O');
    QVERIFY(silent.comes_to("closed"));
    QVERIFY(foreign.comes_to("closed"));
    QCOMPARE(silent.story(), QByteArray("opened closed"));
    QCOMPARE(foreign.story(), QByteArray("opened closed"));
    QCOMPARE(used.story(), QByteArray("opened"));
    other.closeWriteChannel();
    QVERIFY(other.waitForFinished(PATIENCE_MS));
}

void KestGuardByHandTest::without_a_port_there_is_nothing_to_do()
{
    QCOMPARE(switch_all_off({}), 1);
}

void KestGuardByHandTest::wrong_arguments_are_told()
{
    GuardBench bench;
    bench.start_with({"--off"});
    QVERIFY(bench.ends_with(2));
    QCOMPARE(bench.said,
             QByteArray("kest-guard: --off needs a port, such as ttyUSB0, or --all.\n"));
}

void KestGuardByHandTest::help_and_version_are_told()
{
    GuardBench help;
    help.start_with({"--help"});
    QVERIFY(help.ends_with(0));
    QVERIFY(help.guard.readAllStandardOutput().contains("--kill-frozen"));
    GuardBench version;
    version.start_with({"-v"});
    QVERIFY(version.ends_with(0));
    QVERIFY(version.guard.readAllStandardOutput().startsWith("kest-guard 1."));
}

KEST_GUARD_TEST(KestGuardByHandTest)
#include "tst_kest_guard_by_hand.moc"
