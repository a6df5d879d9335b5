#include "guard_bench.h"

#include <QDir>

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
    void a_start_waits_for_what_is_switched_off_by_hand();
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
    QVERIFY(bench.start(QUICK));
    QVERIFY(bench.hold_all());
    bench.signal_guard(signal);
    QVERIFY(bench.ends_with(status));
    QVERIFY(bench.log().contains("Signal " + QByteArray::number(signal) + " is passed on to "));
    QVERIFY(instrument.comes_to("closed"));
    QCOMPARE(instrument.state(), status == 0 ? 'D' : 'O');
}

void KestGuardSignalsTest::a_signal_that_the_program_has_had_is_not_passed_on()
{
    GuardBench bench;
    bench.add_instrument();
    QVERIFY(bench.start(QUICK));
    bench.order("linger");
    QCOMPARE(bench.program_says("lingers"), QByteArray());
    QVERIFY(bench.hold_all("-"));
    // Whoever ends a session signals all of its processes; the guard has looked at this one before.
    QVERIFY(bench.log_has("guarded-program holds "));
    bench.kill_program(SIGHUP);
    QCOMPARE(bench.program_says("hea"), QByteArray("rd"));
    bench.signal_guard(SIGHUP);
    QVERIFY(bench.log_has(" has had signal 1 itself."));
    bench.order("exit 0");
    QVERIFY(bench.ends_with(0));
}

void KestGuardSignalsTest::a_second_signal_of_a_kind_is_passed_on_all_the_same()
{
    GuardBench bench;
    QVERIFY(bench.start(QUICK));
    bench.order("linger");
    QCOMPARE(bench.program_says("lingers"), QByteArray());
    bench.signal_guard(SIGHUP);
    QCOMPARE(bench.program_says("hea"), QByteArray("rd"));
    bench.signal_guard(SIGHUP);
    QVERIFY(bench.ends_with(128 + SIGHUP));
}

void KestGuardSignalsTest::ctrl_c_is_the_program_s_own_affair()
{
    GuardBench bench;
    QVERIFY(bench.start());
    bench.signal_guard(SIGINT);
    bench.signal_guard(SIGINT);
    bench.signal_guard(SIGQUIT);
    bench.order("exit 0");
    QVERIFY(bench.ends_with(0));
}

void KestGuardSignalsTest::only_ctrl_c_twice_ends_a_guard_that_switches_off()
{
    SwitchingBench bench;
    QVERIFY(bench.begin());
    const QByteArray port = bench.instruments[0]->port();
    bench.signal_guard(SIGTERM);
    bench.signal_guard(SIGHUP);
    bench.signal_guard(SIGTERM);
    bench.signal_guard(SIGINT);
    QVERIFY(bench.guard_says("kest-guard: Still switching off: " + port +
                             ". Ctrl-C once more leaves it as it is.\n"));
    QCOMPARE(bench.guard.state(), QProcess::Running);
    bench.signal_guard(SIGINT);
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
    bench.signal_guard(SIGKILL);
    QVERIFY(bench.ends());
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
    killed.signal_guard(SIGKILL);
    QVERIFY(killed.ends());
    QVERIFY(instrument.comes_to("closed"));
    instrument.set_fault("clear");
    GuardBench next;
    next.environment = killed.environment;
    QVERIFY(next.start());
    next.order("hold " + instrument.port() + " C");
    QCOMPARE(next.program_says("ready "), instrument.port());
    next.kill_program();
    QVERIFY2(next.ends_all_off(), next.said);
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
    QVERIFY2(first.ends_all_off(), first.said);
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
    second.signal_guard(SIGTERM);
    QVERIFY(second.ends_with(128 + SIGTERM));
    first.instruments[0]->set_fault("clear");
    QVERIFY(first.ends_with(128 + SIGKILL));
}

void KestGuardSignalsTest::a_start_waits_for_what_is_switched_off_by_hand()
{
    GuardBench by_hand;
    Instrument& instrument = by_hand.add_instrument();
    instrument.set_fault("ignore-commands");
    instrument.set_fault("stuck-state D forever");
    by_hand.start_with({"--off", instrument.port()});
    QVERIFY(by_hand.guard_says(" does not obey: "));
    GuardBench next;
    next.environment = by_hand.environment;
    next.start_with({"--", guarded_program()});
    QVERIFY(next.guard_says("kest-guard: Another kest-guard is still switching instruments off; "));
    instrument.set_fault("clear");
    QVERIFY(by_hand.ends_with(0));
    next.program = next.program_says("process ").split(' ').first().toInt();
    QVERIFY(next.program > 0);
    next.order("exit 0");
    QVERIFY(next.ends_with(0));
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
    QByteArray bare_said;
    while (!bare_said.contains("opened ")) {
        QVERIFY(bare.waitForReadyRead(PATIENCE_MS));
        bare_said += bare.readAllStandardOutput();
    }
    instrument.set_fault("clear");
    QVERIFY2(bench.ends_all_off(), bench.said);
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
    QVERIFY2(one.ends_all_off(), one.said);
    QCOMPARE(other.instruments[0]->story(), QByteArray("opened 44"));
    other.order("exit 0");
    QVERIFY(other.ends_with(0));
}

void KestGuardSignalsTest::a_stopped_program_is_told_of_and_let_be()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    // Long enough for a program that goes on to be slow at first.
    QVERIFY(bench.start({"--speed", "10", "--frozen", "30", "--kill-frozen"}));
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
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start({"--speed", "10", "--frozen", "5"}));
    QVERIFY(bench.hold_all());
    bench.order("freeze");
    QVERIFY(bench.guard_says(
        "kest-guard: guarded-program is frozen: for 5 seconds it has read nothing "
        "of what its instruments say. Its instruments keep their last command. End "
        "it, and they are switched off.\n"));
    QCOMPARE(instrument.story(), QByteArray("opened 44"));
    bench.kill_program();
    QVERIFY2(bench.ends_all_off(), bench.said);
}

void KestGuardSignalsTest::a_frozen_program_is_ended_where_that_is_wanted()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
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
