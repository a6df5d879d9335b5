#include "guard_bench.h"

#include "support/test_files.h"

#include <QStandardPaths>

/** The program dies, in every way that programs do, and its instruments are switched off. */
class KestGuardTest : public QObject
{
    Q_OBJECT

private slots:
    void a_program_that_ends_well_is_left_alone();
    void killed_in_a_phase_data();
    void killed_in_a_phase();
    void death_data();
    void death();
    void the_display_dies();
    void sixteen_stations_are_switched_off_at_once();
    void a_program_that_holds_nothing_leaves_nothing_to_do();
    void a_port_that_was_closed_before_is_left_alone();
    void a_port_that_was_never_held_is_left_alone();
    void the_log_tells_the_whole_story();
    void the_program_gets_its_own_name_and_arguments();
    void what_cannot_be_started_is_told_data();
    void what_cannot_be_started_is_told();
};

void KestGuardTest::a_program_that_ends_well_is_left_alone()
{
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all("C"));
    bench.order("exit 0");
    QVERIFY(bench.ends_with(0));
    QCOMPARE(bench.said, QByteArray());
    QVERIFY(instrument.comes_to("opened 43 closed"));
    QCOMPARE(instrument.story(), QByteArray("opened 43 closed"));
}

void KestGuardTest::killed_in_a_phase_data()
{
    QTest::addColumn<int>("phase");
    QTest::addColumn<char>("state");
    const QByteArray letters = "OCCOODODCCO";
    for (int phase = 0; phase < letters.size(); ++phase)
        QTest::addRow("phase %d", phase) << phase << letters.at(phase);
}

void KestGuardTest::killed_in_a_phase()
{
    QFETCH(int, phase);
    QFETCH(char, state);
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start());
    bench.order("phase " + instrument.port() + " " + QByteArray::number(phase));
    QCOMPARE(bench.program_says("ready "), instrument.port());
    QTRY_COMPARE_WITH_TIMEOUT(instrument.state(), state, PATIENCE_MS);
    bench.kill_program();
    QVERIFY2(bench.ends_all_off(), bench.said);
    QVERIFY(instrument.comes_to("closed opened 4F closed"));
    QCOMPARE(instrument.state(), 'O');
}

void KestGuardTest::death_data()
{
    QTest::addColumn<QByteArray>("order");
    QTest::addColumn<QVector<int>>("statuses");
    QTest::newRow("bad address") << QByteArray("segv") << QVector<int>{128 + SIGSEGV};
    QTest::newRow("bus error") << QByteArray("bus") << QVector<int>{128 + SIGBUS};
    QTest::newRow("abort") << QByteArray("abort") << QVector<int>{128 + SIGABRT};
    // A sanitizer ends with a status of its own where the library throws.
    QTest::newRow("memory limit") << QByteArray("memory") << QVector<int>{128 + SIGABRT, 1};
    QTest::newRow("status") << QByteArray("exit 1") << QVector<int>{1};
}

void KestGuardTest::death()
{
    QFETCH(QByteArray, order);
    QFETCH(QVector<int>, statuses);
    GuardBench bench;
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    bench.order(order);
    QVERIFY(bench.ends());
    QVERIFY2(statuses.contains(bench.guard.exitCode()),
             qPrintable(QString::number(bench.guard.exitCode())));
    QVERIFY(bench.ends_with(bench.guard.exitCode()));
    QVERIFY2(bench.said.endsWith("kest-guard: All is off.\n"), bench.said);
    QVERIFY(instrument.comes_to("opened 44 closed opened 4F closed"));
    QCOMPARE(instrument.state(), 'O');
}

void KestGuardTest::the_display_dies()
{
    GuardBench bench;
    QProcess display;
    // It picks a free number by itself, and tells it on standard output.
    display.start("Xvfb", {"-displayfd", "1", "-screen", "0", "640x480x24", "-nolisten", "tcp"});
    while (!display.canReadLine() && display.waitForReadyRead(PATIENCE_MS)) {
    }
    const QByteArray number = display.readLine().trimmed();
    QVERIFY2(!number.isEmpty(), display.readAllStandardError());
    bench.environment.insert("DISPLAY", ":" + number);
    bench.environment.insert("QT_QPA_PLATFORM", "xcb");
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    display.kill();
    QVERIFY(display.waitForFinished(PATIENCE_MS));
    // Killed, it leaves behind what would be in another user's way.
    QFile::remove("/tmp/.X" + number + "-lock");
    QFile::remove("/tmp/.X11-unix/X" + number);
    QVERIFY(bench.ends_with(1));
    QVERIFY2(bench.said.endsWith("kest-guard: All is off.\n"), bench.said);
    QVERIFY(instrument.comes_to("closed opened 4F closed"));
    QCOMPARE(instrument.state(), 'O');
}

void KestGuardTest::sixteen_stations_are_switched_off_at_once()
{
    GuardBench bench;
    for (int i = 0; i < 16; ++i)
        bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    bench.kill_program();
    QVERIFY2(bench.ends_all_off(), bench.said);
    for (const auto& instrument : bench.instruments) {
        QVERIFY(instrument->comes_to("opened 44 closed opened 4F closed"));
        QCOMPARE(instrument->state(), 'O');
    }
}

void KestGuardTest::a_program_that_holds_nothing_leaves_nothing_to_do()
{
    GuardBench bench;
    QVERIFY(bench.start());
    bench.kill_program(SIGTERM);
    QVERIFY(bench.ends_with(128 + SIGTERM));
    QCOMPARE(bench.said, QByteArray("kest-guard: guarded-program was ended (signal 15) and held no "
                                    "instrument.\n"));
}

void KestGuardTest::a_port_that_was_closed_before_is_left_alone()
{
    GuardBench bench;
    Instrument& kept = bench.add_instrument();
    Instrument& closed = bench.add_instrument();
    QVERIFY(bench.start(QUICK));
    QVERIFY(bench.hold_all());
    QVERIFY(bench.log_has("holds " + closed.port()));
    bench.order("close " + closed.port());
    QVERIFY(bench.log_has("no longer holds " + closed.port()));
    bench.kill_program();
    QVERIFY(bench.ends_with(128 + SIGKILL));
    QVERIFY(kept.comes_to("opened 44 closed opened 4F closed"));
    QCOMPARE(closed.story(), QByteArray("opened 44 closed"));
}

void KestGuardTest::a_port_that_was_never_held_is_left_alone()
{
    GuardBench bench;
    bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    Instrument& other = bench.add_instrument();
    bench.kill_program();
    QVERIFY(bench.ends_with(128 + SIGKILL));
    QCOMPARE(other.story(), QByteArray());
}

void KestGuardTest::the_log_tells_the_whole_story()
{
    GuardBench bench;
    const QByteArray port = bench.add_instrument({"--capacity", "100000", "--rate", "4"}).port();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    QVERIFY(bench.log_has("holds " + port));
    bench.kill_program();
    QVERIFY(bench.ends_with(128 + SIGKILL));
    const QByteArray told =
        "guarded-program was killed (signal 9: by somebody, or by the system because memory ran "
        "out) while it held " +
        port +
        ". Switching off what is there.\n"
        "Instrument 7 on " +
        port +
        " is off: 22.32 V, 0.0 A.\n"
        "All is off.\n";
    QByteArray from_log;
    for (const QByteArray& line : bench.log().split('\n')) {
        if (line.isEmpty())
            continue;
        const QDateTime time = QDateTime::fromString(line.left(line.indexOf(' ')), Qt::ISODate);
        QVERIFY2(time.isValid(), line);
        from_log += line.mid(line.indexOf(' ') + 1) + "\n";
    }
    const QByteArray process = QByteArray::number(bench.program);
    QCOMPARE(without_haste(from_log), "guarded-program started (process " + process +
                                          ").\nguarded-program holds " + port + ".\n" + told);
    QCOMPARE(without_haste(bench.said).replace("kest-guard: ", ""), told);
}

void KestGuardTest::the_program_gets_its_own_name_and_arguments()
{
    GuardBench bench;
    bench.environment.insert("PATH", bench.folder.path() + ":/usr/bin:/bin");
    QVERIFY(QFile::link("/bin/sh", bench.folder.filePath("kest-battery-tester")));
    bench.start_with({"--frozen", "5", "kest-battery-tester", "-c",
                      "printf '%s|' \"$0\" \"$@\"; tr '\\0' '|' < /proc/$$/cmdline", "--",
                      "--off"});
    QVERIFY(bench.ends_with(0));
    QCOMPARE(
        bench.guard.readAllStandardOutput(),
        QByteArray("--|--off|kest-battery-tester|-c|printf '%s|' \"$0\" \"$@\"; tr '\\0' '|' < "
                   "/proc/$$/cmdline|--|--off|"));
}

void KestGuardTest::what_cannot_be_started_is_told_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("not there") << "no-such-program" << 127
                               << QByteArray("no-such-program cannot be started: No such file or "
                                             "directory.");
    QTest::newRow("not to be run")
        << "/etc/passwd" << 126 << QByteArray("passwd cannot be started: Permission denied.");
}

void KestGuardTest::what_cannot_be_started_is_told()
{
    QFETCH(QString, program);
    QFETCH(int, status);
    QFETCH(QByteArray, text);
    GuardBench bench;
    // Where one folder may not be searched, the system does not say that the program is not there.
    bench.environment.insert("PATH", "/usr/bin:/bin");
    bench.start_with({program});
    QVERIFY(bench.ends_with(status));
    QCOMPARE(bench.said, "kest-guard: " + text + "\n");
}

KEST_GUARD_TEST(KestGuardTest)
#include "tst_kest_guard.moc"
