#include "guard_bench.h"

#include <unistd.h>

namespace
{
pid_t process_of(const GuardBench& bench)
{
    return pid_t(bench.guard.processId());
}

/** A bench whose one instrument goes on discharging, so that its guard is switching off. */
struct SwitchingBench : GuardBench
{
    bool begin()
    {
        add_instrument();
        if (!start() || !hold_all())
            return false;
        instruments[0]->set_fault("ignore-commands");
        kill_program();
        return guard_says(" does not obey: ");
    }
};
}  // namespace

/** Signals, other guards, and programs that stop, freeze or are started again. */
class KestGuardSignalsTest : public QObject
{
    Q_OBJECT

private slots:
    void a_signal_is_passed_on_data();
    void a_signal_is_passed_on();
    void a_signal_that_the_program_has_had_is_not_passed_on();
    void a_second_signal_of_a_kind_is_passed_on_all_the_same();
    void ctrl_c_is_the_program_s_own_affair();
    void only_ctrl_c_twice_ends_a_guard_that_switches_off();
    void a_guard_that_dies_leaves_the_program_alone();
    void the_next_start_finds_nothing_in_its_way();
    void a_second_guard_waits_for_the_first();
    void a_guard_that_waits_is_ended_by_a_signal();
    void a_bare_start_finds_the_port_busy_and_disturbs_nobody();
    void two_guards_have_nothing_to_do_with_each_other();
    void a_stopped_program_is_told_of_and_let_be();
    void a_frozen_program_is_told_of();
    void a_frozen_program_is_ended_where_that_is_wanted();
};

void KestGuardSignalsTest::a_signal_is_passed_on_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("status");
    QTest::newRow("SIGTERM") << SIGTERM << 128 + SIGTERM;
    // The program has a handler for this one, and ends well.
    QTest::newRow("SIGHUP") << SIGHUP << 0;
}

void KestGuardSignalsTest::a_signal_is_passed_on()
{
    QFETCH(int, signal);
    QFETCH(int, status);
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    ::kill(process_of(bench), signal);
    QVERIFY(bench.ends_with(status));
    QVERIFY(bench.log().contains("Signal " + QByteArray::number(signal) + " is passed on to "));
    QVERIFY(instrument.comes_to("closed"));
    QCOMPARE(instrument.state(), status == 0 ? 'D' : 'O');
}

void KestGuardSignalsTest::a_signal_that_the_program_has_had_is_not_passed_on()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    bench.start_with({"--", "sh", "-c",
                      "trap 'trap - HUP; echo heard' HUP; exec 5<>$0; echo process $$ sh; "
                      "while read -r order; do $order; done",
                      instrument.path});
    bench.program = bench.program_says("process ").split(' ').first().toInt();
    QVERIFY(bench.program > 0);
    // Whoever ends a session signals all of its processes; the guard has looked at this one before.
    QVERIFY(bench.log_has("sh holds "));
    ::kill(bench.program, SIGHUP);
    bench.order("true");
    QVERIFY(!bench.program_says("hear").isEmpty());
    ::kill(process_of(bench), SIGHUP);
    QVERIFY(bench.log_has(" has had signal 1 itself."));
    bench.order("exit 0");
    QVERIFY(bench.ends_with(0));
}

void KestGuardSignalsTest::a_second_signal_of_a_kind_is_passed_on_all_the_same()
{
    GuardBench bench;
    bench.start_with({"--", "sh", "-c",
                      "trap 'trap - HUP; echo heard' HUP; echo process $$ sh; "
                      "while :; do read -r order; done"});
    bench.program = bench.program_says("process ").split(' ').first().toInt();
    QVERIFY(bench.program > 0);
    ::kill(process_of(bench), SIGHUP);
    QVERIFY(bench.log_has("Signal 1 is passed on to "));
    bench.order("now");
    ::kill(process_of(bench), SIGHUP);
    QVERIFY(bench.ends_with(128 + SIGHUP));
}

void KestGuardSignalsTest::ctrl_c_is_the_program_s_own_affair()
{
    GuardBench bench;
    QVERIFY(bench.start());
    ::kill(process_of(bench), SIGINT);
    ::kill(process_of(bench), SIGINT);
    ::kill(process_of(bench), SIGQUIT);
    bench.order("exit 0");
    QVERIFY(bench.ends_with(0));
}

void KestGuardSignalsTest::only_ctrl_c_twice_ends_a_guard_that_switches_off()
{
    SwitchingBench bench;
    QVERIFY(bench.begin());
    const QByteArray port = bench.instruments[0]->port();
    ::kill(process_of(bench), SIGTERM);
    ::kill(process_of(bench), SIGHUP);
    ::kill(process_of(bench), SIGTERM);
    ::kill(process_of(bench), SIGINT);
    QVERIFY(bench.guard_says("kest-guard: Still switching off: " + port +
                             ". Ctrl-C once more leaves it as it is.\n"));
    QCOMPARE(bench.guard.state(), QProcess::Running);
    ::kill(process_of(bench), SIGINT);
    QVERIFY(bench.ends_with(128 + SIGKILL));
    QVERIFY2(bench.said.contains("kest-guard: " + port +
                                 " was left as it is, as Ctrl-C asked. Instrument 7 on " + port +
                                 " was last discharging. Unplug the pack.\n"),
             bench.said);
    QVERIFY(bench.said.endsWith("kest-guard: NOT all is off: see to " + port + " now.\n"));
}

void KestGuardSignalsTest::a_guard_that_dies_leaves_the_program_alone()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    ::kill(process_of(bench), SIGKILL);
    QVERIFY(bench.guard.waitForFinished(PATIENCE_MS));
    QCOMPARE(::kill(bench.program, 0), 0);
    bench.kill_program();
    QVERIFY(instrument.comes_to("closed"));
    QCOMPARE(instrument.story(), QByteArray("opened 44 closed"));
}

void KestGuardSignalsTest::the_next_start_finds_nothing_in_its_way()
{
    SwitchingBench killed;
    QVERIFY(killed.begin());
    Instrument& instrument = *killed.instruments[0];
    ::kill(process_of(killed), SIGKILL);
    QVERIFY(killed.guard.waitForFinished(PATIENCE_MS));
    QVERIFY(instrument.comes_to("closed"));
    instrument.set_fault("clear");
    GuardBench next;
    next.environment = killed.environment;
    QVERIFY(next.start());
    next.order("hold " + instrument.port() + " C");
    QCOMPARE(next.program_says("ready "), instrument.port());
    next.kill_program();
    QVERIFY(next.ends_with(128 + SIGKILL));
    QVERIFY2(next.said.endsWith("kest-guard: All is off.\n"), next.said);
    QVERIFY(instrument.comes_to("opened 43 closed opened 4F closed"));
    QCOMPARE(QDir(killed.folder.filePath("state/kest-guard"))
                 .entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{"kest-guard.log"});
}

void KestGuardSignalsTest::a_second_guard_waits_for_the_first()
{
    SwitchingBench first;
    QVERIFY(first.begin());
    Instrument& instrument = *first.instruments[0];
    GuardBench second;
    second.environment = first.environment;
    second.start_with({"--", guarded_program()});
    QVERIFY(second.guard_says(
        "kest-guard: Another kest-guard is still switching instruments off; the "
        "program starts when it is done. What it does stands in " +
        first.folder.filePath("state/kest-guard/kest-guard.log").toLocal8Bit() + ".\n"));
    QCOMPARE(second.guard.readAllStandardOutput(), QByteArray());
    instrument.set_fault("clear");
    second.program = second.program_says("process ").split(' ').first().toInt();
    QVERIFY(second.program > 0);
    second.order("hold " + instrument.port() + " D");
    QCOMPARE(second.program_says("ready "), instrument.port());
    QVERIFY(first.ends_with(128 + SIGKILL));
    QVERIFY2(first.said.endsWith("kest-guard: All is off.\n"), first.said);
    QVERIFY(instrument.story().endsWith("closed opened 44"));
    second.order("exit 0");
    QVERIFY(second.ends_with(0));
}

void KestGuardSignalsTest::a_guard_that_waits_is_ended_by_a_signal()
{
    SwitchingBench first;
    QVERIFY(first.begin());
    GuardBench second;
    second.environment = first.environment;
    second.start_with({"--", guarded_program()});
    QVERIFY(second.guard_says("kest-guard: Another kest-guard "));
    ::kill(process_of(second), SIGTERM);
    QVERIFY(second.ends_with(128 + SIGTERM));
    first.instruments[0]->set_fault("clear");
    QVERIFY(first.ends_with(128 + SIGKILL));
}

void KestGuardSignalsTest::a_bare_start_finds_the_port_busy_and_disturbs_nobody()
{
    SwitchingBench bench;
    QVERIFY(bench.begin());
    Instrument& instrument = *bench.instruments[0];
    QProcess bare;
    bare.setProcessEnvironment(bench.environment);
    bare.start(guarded_program(), QStringList());
    bare.write("hold " + instrument.port() + " -\n");
    // Its open is refused; it says nothing of that, and goes on.
    while (!bare.readAllStandardOutput().contains("opened "))
        QVERIFY(bare.waitForReadyRead(PATIENCE_MS));
    instrument.set_fault("clear");
    QVERIFY(bench.ends_with(128 + SIGKILL));
    QVERIFY2(bench.said.endsWith("kest-guard: All is off.\n"), bench.said);
    QVERIFY(instrument.comes_to("closed"));
    QCOMPARE(instrument.story().count("opened"), 2);
    bare.closeWriteChannel();
    QVERIFY(bare.waitForFinished(PATIENCE_MS));
}

void KestGuardSignalsTest::two_guards_have_nothing_to_do_with_each_other()
{
    GuardBench one;
    GuardBench other;
    other.environment = one.environment;
    for (GuardBench* bench : {&one, &other}) {
        bench->add_instrument();
        QVERIFY(bench->start());
        QVERIFY(bench->hold_all());
    }
    one.kill_program();
    QVERIFY(one.ends_with(128 + SIGKILL));
    QVERIFY2(one.said.endsWith("kest-guard: All is off.\n"), one.said);
    QCOMPARE(other.instruments[0]->story(), QByteArray("opened 44"));
    other.order("exit 0");
    QVERIFY(other.ends_with(0));
}

void KestGuardSignalsTest::a_stopped_program_is_told_of_and_let_be()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument({"--rate", "20"});
    QVERIFY(bench.start({"--speed", "10", "--frozen", "5", "--kill-frozen"}));
    QVERIFY(bench.hold_all());
    QVERIFY(bench.log_has(" holds "));
    bench.kill_program(SIGSTOP);
    QVERIFY(
        bench.guard_says("kest-guard: guarded-program is stopped (Ctrl-Z, SIGSTOP or a debugger). "
                         "Its instruments keep their last command until it goes on or ends.\n"));
    bench.kill_program(SIGCONT);
    QVERIFY(bench.log_has("guarded-program reads its lines again.\n"));
    QVERIFY(!bench.log().contains("frozen"));
    bench.order("exit 0");
    QVERIFY(bench.ends_with(0));
    QVERIFY(instrument.comes_to("opened 44 closed"));
}

void KestGuardSignalsTest::a_frozen_program_is_told_of()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument({"--rate", "20"});
    QVERIFY(bench.start({"--speed", "10", "--frozen", "5"}));
    QVERIFY(bench.hold_all());
    bench.order("freeze");
    QVERIFY(bench.guard_says(
        "kest-guard: guarded-program is frozen: for 5 seconds it has read nothing "
        "of what its instruments say. Its instruments keep their last command. End "
        "it, and they are switched off.\n"));
    QCOMPARE(instrument.story(), QByteArray("opened 44"));
    bench.kill_program();
    QVERIFY(bench.ends_with(128 + SIGKILL));
    QVERIFY2(bench.said.endsWith("kest-guard: All is off.\n"), bench.said);
}

void KestGuardSignalsTest::a_frozen_program_is_ended_where_that_is_wanted()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument({"--rate", "20"});
    QVERIFY(bench.start({"--speed", "10", "--frozen", "5", "--kill-frozen"}));
    QVERIFY(bench.hold_all());
    bench.order("freeze");
    QVERIFY(bench.ends_with(128 + SIGKILL));
    QVERIFY2(bench.said.contains(" It is ended now, and its instruments are switched off.\n"),
             bench.said);
    QVERIFY2(bench.said.endsWith("kest-guard: All is off.\n"), bench.said);
    QVERIFY(instrument.comes_to("closed"));
    QCOMPARE(instrument.state(), 'O');
}

KEST_GUARD_TEST(KestGuardSignalsTest)
#include "tst_kest_guard_signals.moc"
