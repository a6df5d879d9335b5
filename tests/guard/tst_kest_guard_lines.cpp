#include "guard_bench.h"

#include <fcntl.h>
#include <unistd.h>

namespace
{
// Time lapse, for both sides alike: the seconds of an instrument pass in a fifth of their time.
const QStringList FAST_INSTRUMENT = {"--rate", "4", "--speed", "5"};
const QStringList FAST_GUARD = {"--speed", "5"};
// Where the instrument has nothing to say, and the guard waits for it in vain.
const QStringList FASTER_GUARD = {"--speed", "40"};

const QByteArray RESET = "555555555555000000044F";

// But for what a leak checker reads there: it cannot do without the rest, and is told so.
const QString NO_PROC = "mount -t tmpfs none /proc && mkdir /proc/self && "
                        "printf 'ASAN_OPTIONS=detect_leaks=0\\0' >/proc/self/environ && ";
const QString NO_DRIVERS = "mount --bind /dev/null /proc/tty/drivers && ";

/** What the instrument was told behind the first time that it was let go, in one piece. */
QByteArray told_afterwards(const Instrument& instrument)
{
    QByteArray bytes;
    bool let_go = false;
    for (const Instrument::Row& row : instrument.record()) {
        const bool is_event = row.what == "opened" || row.what == "closed" || row.what == "ended";
        if (let_go && !is_event)
            bytes += row.what;
        let_go = let_go || row.what == "closed";
    }
    return bytes;
}

/** Numbers are given away again at once, also to the instruments of other tests. */
bool is_gone_or_another(const QByteArray& said)
{
    return said.contains(" is another device now, and was told nothing.") ||
           said.contains(" is gone, and its instrument keeps its last command.");
}

bool ends_not_all_off(GuardBench& bench)
{
    return bench.ends_with(128 + SIGKILL) &&
           bench.said.contains("\nkest-guard: NOT all is off: see to ");
}
}  // namespace

/** What may have become of a line, and how an instrument may misbehave. */
class KestGuardLinesTest : public QObject
{
    Q_OBJECT

private slots:
    void a_fault_of_the_instrument_data();
    void a_fault_of_the_instrument();
    void an_instrument_that_never_obeys_is_told_of_at_once();
    void a_reset_that_was_cut_short_is_made_whole();
    void a_bootloader_is_left();
    void one_that_is_silent_is_told_of();
    void another_kind_of_instrument_gets_no_more_than_this();
    void a_line_that_was_pulled_is_told_of();
    void a_line_that_goes_with_the_program_is_told_of();
    void a_line_that_goes_while_it_is_switched_off_is_told_of();
    void a_line_that_comes_back_gets_no_byte();
    void a_line_that_another_process_holds_is_left_alone();
    void a_line_that_another_process_holds_for_a_moment_is_waited_for();
    void a_fork_that_goes_on_is_left_alone();
    void a_line_that_does_not_open_is_told_of();
    void without_the_system_s_word_nothing_is_claimed_data();
    void without_the_system_s_word_nothing_is_claimed();
};

void KestGuardLinesTest::a_fault_of_the_instrument_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::newRow("ignores two commands") << QByteArray("ignore-next 2");
    QTest::newRow("ignores commands for five lines") << QByteArray("ignore-commands 5");
    QTest::newRow("obeys three lines late") << QByteArray("late-commands 3");
    QTest::newRow("some garbage") << QByteArray("garbage 3");
    QTest::newRow("a line without an end") << QByteArray("lost-line-end");
    QTest::newRow("byte by byte") << QByteArray("split-bytes 3");
    QTest::newRow("some silence") << QByteArray("silence 1");
    QTest::newRow("a letter that lags") << QByteArray("stuck-state D 4");
}

void KestGuardLinesTest::a_fault_of_the_instrument()
{
    QFETCH(QByteArray, fault);
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    instrument.set_fault(fault);
    bench.kill_program();
    QVERIFY2(bench.ends_all_off(), bench.said);
    QVERIFY(instrument.comes_to("closed"));
    QCOMPARE(instrument.state(), 'O');
    QCOMPARE(told_afterwards(instrument).replace("4F", ""), QByteArray());
}

void KestGuardLinesTest::an_instrument_that_never_obeys_is_told_of_at_once()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    instrument.set_fault("ignore-commands");
    bench.kill_program();
    QVERIFY(
        bench.guard_says("kest-guard: Instrument 7 on " + instrument.port() +
                         " does not obey: told to switch off, it is still discharging. Unplug the "
                         "pack. It will be told again until it is off.\n"));
    QCOMPARE(instrument.state(), 'D');
    instrument.set_fault("clear");
    QVERIFY2(bench.ends_all_off(), bench.said);
    QVERIFY(bench.said.contains("Instrument 7 on " + instrument.port() +
                                " was still discharging; it is off since "));
    QCOMPARE(instrument.state(), 'O');
}

void KestGuardLinesTest::a_reset_that_was_cut_short_is_made_whole()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument(FAST_INSTRUMENT);
    QVERIFY(bench.start(FAST_GUARD));
    QVERIFY(bench.hold_all());
    bench.order("half-a-reset");
    QCOMPARE(bench.program_says("half "), QByteArray("sent"));
    QVERIFY(instrument.comes_to("55555555"));
    bench.kill_program();
    QVERIFY2(bench.ends_all_off(), bench.said);
    QVERIFY(bench.said.contains(" It had to be reset.\n"));
    QVERIFY2(told_afterwards(instrument).startsWith("4F" + RESET), instrument.story());
}

void KestGuardLinesTest::a_bootloader_is_left()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument(FAST_INSTRUMENT);
    QVERIFY(bench.start(FAST_GUARD));
    QVERIFY(bench.hold_all());
    instrument.set_fault("bootloader");
    bench.kill_program();
    QVERIFY2(bench.ends_all_off(), bench.said);
    QVERIFY2(told_afterwards(instrument).startsWith("4F" + RESET), instrument.story());
}

void KestGuardLinesTest::one_that_is_silent_is_told_of()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument(FAST_INSTRUMENT);
    QVERIFY(bench.start(FASTER_GUARD));
    QVERIFY(bench.hold_all());
    instrument.set_fault("silence 100000");
    bench.kill_program();
    QVERIFY2(ends_not_all_off(bench), bench.said);
    QVERIFY2(bench.said.contains(instrument.port() +
                                 " has been silent for 60 seconds. Whether its instrument is off, "
                                 "nobody knows. Unplug the pack.\n"),
             bench.said);
    QVERIFY(instrument.comes_to("closed"));
    QCOMPARE(told_afterwards(instrument), "4F" + RESET.repeated(3));
}

void KestGuardLinesTest::another_kind_of_instrument_gets_no_more_than_this()
{
    GuardBench bench;
    Instrument& instrument =
        bench.add_instrument(FAST_INSTRUMENT + QStringList{"--fault", "garbage forever"});
    QVERIFY(bench.start(FASTER_GUARD));
    QVERIFY(bench.hold_all("-"));
    bench.kill_program();
    QVERIFY2(ends_not_all_off(bench), bench.said);
    QVERIFY2(bench.said.contains("What speaks on " + instrument.port() +
                                 " has sent no valid line for 60 seconds."),
             bench.said);
    QVERIFY(instrument.comes_to("closed"));
    QCOMPARE(told_afterwards(instrument), "4F" + RESET.repeated(3));
}

void KestGuardLinesTest::a_line_that_was_pulled_is_told_of()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    bench.add_instrument();
    QVERIFY(bench.start(QUICK));
    QVERIFY(bench.hold_all());
    const QByteArray port = instrument.port();
    QVERIFY(bench.log_has(" holds " + port));
    instrument.set_fault("vanish");
    QVERIFY(bench.log_has("no longer holds " + port));
    bench.kill_program();
    QVERIFY2(ends_not_all_off(bench), bench.said);
    QVERIFY2(bench.said.contains(port + " was gone already when the program ended"), bench.said);
    QVERIFY2(bench.said.endsWith("NOT all is off: see to " + port + " now.\n"), bench.said);
    QCOMPARE(instrument.story(), QByteArray("opened 44"));
}

void KestGuardLinesTest::a_line_that_goes_with_the_program_is_told_of()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start(QUICK));
    QVERIFY(bench.hold_all());
    QVERIFY(bench.log_has(" holds " + instrument.port()));
    // Between two looks of the guard.
    QVERIFY(bench.stop_guard_between_looks());
    bench.kill_program();
    QVERIFY(instrument.comes_to("closed"));
    instrument.set_fault("vanish");
    bench.signal_guard(SIGCONT);
    QVERIFY2(ends_not_all_off(bench), bench.said);
    QVERIFY2(is_gone_or_another(bench.said), bench.said);
    QCOMPARE(told_afterwards(instrument), QByteArray());
}

void KestGuardLinesTest::a_line_that_goes_while_it_is_switched_off_is_told_of()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    instrument.set_fault("ignore-commands");
    bench.kill_program();
    QVERIFY(bench.guard_says("does not obey"));
    instrument.set_fault("vanish");
    QVERIFY2(ends_not_all_off(bench), bench.said);
    QVERIFY2(
        bench.said.contains(instrument.port() +
                            " vanished before its instrument was seen to be off. Instrument 7 on " +
                            instrument.port() + " was last discharging. Unplug the pack.\n"),
        bench.said);
}

void KestGuardLinesTest::a_line_that_comes_back_gets_no_byte()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    QVERIFY(bench.log_has(" holds " + instrument.port()));
    QVERIFY(bench.stop_guard_between_looks());
    bench.kill_program();
    QVERIFY(instrument.comes_to("closed"));
    // The system knows the age of a pseudo-terminal to a second, and gives its number away again.
    const qint64 made = QFileInfo(instrument.path).metadataChangeTime().toSecsSinceEpoch();
    QVERIFY(
        QTest::qWaitFor([made] { return QDateTime::currentSecsSinceEpoch() > made; }, PATIENCE_MS));
    instrument.set_fault("vanish\nreturn");
    QVERIFY(!instrument.next_path().isEmpty());
    bench.signal_guard(SIGCONT);
    QVERIFY2(ends_not_all_off(bench), bench.said);
    QVERIFY2(is_gone_or_another(bench.said), bench.said);
    QCOMPARE(told_afterwards(instrument), QByteArray());
}

void KestGuardLinesTest::a_line_that_another_process_holds_is_left_alone()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all("-"));
    // One after the other: the system tells of two that come at once as of one.
    QVERIFY(instrument.comes_to("opened"));
    QProcess other;
    other.start("sh", {"-c", "exec 5<>" + instrument.path + "; echo up; read x"});
    // To an ordinary user the port is closed while the program has it for itself.
    const bool is_root = ::geteuid() == 0;
    QVERIFY(is_root ? other.waitForReadyRead(PATIENCE_MS) : other.waitForFinished(PATIENCE_MS));
    bench.kill_program();
    QVERIFY(bench.ends_with(128 + SIGKILL));
    const QByteArray holder = "sh (process " + QByteArray::number(other.processId()) + ")";
    QCOMPARE(
        bench.said.contains(instrument.port() + " is held by " + holder + " and was left alone."),
        is_root);
    const QByteArray told = told_afterwards(instrument);
    QVERIFY2(is_root ? told.isEmpty() : told.startsWith("4F"), told);
    other.closeWriteChannel();
    other.waitForFinished(PATIENCE_MS);
}

void KestGuardLinesTest::a_line_that_another_process_holds_for_a_moment_is_waited_for()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    bench.order("fork");
    const pid_t fork_id = bench.program_says("fork ").toInt();
    QVERIFY(fork_id > 0);
    bench.kill_program();
    QVERIFY(bench.guard_says("Switching off what is there."));
    ::kill(fork_id, SIGKILL);
    QVERIFY2(bench.ends_all_off(), bench.said);
    QCOMPARE(instrument.state(), 'O');
}

void KestGuardLinesTest::a_fork_that_goes_on_is_left_alone()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all("-"));
    QVERIFY(instrument.comes_to("opened"));
    bench.order("fork");
    const QByteArray fork_id = bench.program_says("fork ");
    QVERIFY(fork_id.toInt() > 0);
    bench.kill_program();
    QVERIFY2(
        bench.guard_says(instrument.port() + " is held by guarded-program (process " + fork_id +
                         ") and was left alone. Look whether its instrument is off, or unplug the "
                         "pack.\n"),
        bench.said);
    QCOMPARE(instrument.story(), QByteArray("opened"));
    ::kill(fork_id.toInt(), SIGKILL);
    QVERIFY2(ends_not_all_off(bench), bench.said);
}

void KestGuardLinesTest::a_line_that_does_not_open_is_told_of()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all("-"));
    // It does not notice that its last reader has gone, and so the line stays that reader's alone.
    instrument.signal(SIGSTOP);
    bench.kill_program();
    if (::geteuid() == 0) {
        instrument.signal(SIGCONT);
        QVERIFY2(bench.ends_all_off(), bench.said);
        return;
    }
    QVERIFY2(ends_not_all_off(bench), bench.said);
    QVERIFY2(bench.said.contains(instrument.port() + " cannot be opened ("), bench.said);
    instrument.signal(SIGCONT);
    QVERIFY(instrument.comes_to("opened closed"));
}

void KestGuardLinesTest::without_the_system_s_word_nothing_is_claimed_data()
{
    QTest::addColumn<QString>("preparation");
    QTest::newRow("of processes") << NO_PROC;
    QTest::newRow("of serial lines") << NO_DRIVERS;
}

void KestGuardLinesTest::without_the_system_s_word_nothing_is_claimed()
{
    QFETCH(QString, preparation);
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start_by(
        "unshare", {"--map-root-user", "--mount", "sh", "-c", preparation + "exec \"$@\"", "sh"}));
    QVERIFY(bench.hold_all());
    bench.kill_program();
    QVERIFY(bench.ends_with(128 + SIGKILL));
    QVERIFY2(bench.said.contains("kest-guard: The system does not tell which serial lines "
                                 "guarded-program holds: if it dies, nothing is switched off.\n"),
             bench.said);
    QVERIFY2(bench.said.endsWith("Nobody could see which instruments it held: look whether each is "
                                 "off, or unplug the packs.\n"),
             bench.said);
    QCOMPARE(told_afterwards(instrument), QByteArray());
}

KEST_GUARD_TEST(KestGuardLinesTest)
#include "tst_kest_guard_lines.moc"
