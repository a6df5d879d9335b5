#include "records/test_view.h"
#include "support/test_program.h"

#include <QtTest>

/** What a test is found at, by what is known of it. */
class WatchStatesTest : public QObject
{
    Q_OBJECT

private slots:
    void a_test_is_found_at_data();
    void a_test_is_found_at();
};

namespace
{
constexpr double QUIET = 30.0;

/** The conditions as "discharging no-current". */
QString keys(const QList<Condition>& conditions)
{
    QStringList words;
    for (const Condition condition : conditions)
        words << traits_of(condition).key;
    return words.join(' ');
}

TestView running(TestPhase phase)
{
    TestView view;
    view.writer = Writer::Running;
    view.phase = phase;
    view.phase_seconds = 50.0;
    view.row_seconds = 1.0;
    view.line_seconds = 1.0;
    return view;
}

TestView by(Writer writer, TestPhase phase)
{
    TestView view = running(phase);
    view.writer = writer;
    return view;
}

TestView quiet_for(double seconds, TestView view)
{
    view.row_seconds = view.line_seconds = seconds;
    return view;
}

TestView lasting(double seconds, TestView view)
{
    view.phase_seconds = seconds;
    return view;
}

TestView reset(int times, double first, double last, TestView view)
{
    view.resets = times;
    view.first_reset_seconds = first;
    view.last_reset_seconds = view.line_seconds = last;
    return view;
}

TestView with_telemetry(double seconds, TestView view)
{
    view.telemetry_seconds = seconds;
    return view;
}

TestView botched(int times, TestView view)
{
    view.botched_tests = times;
    return view;
}

void found(const char* name, const TestView& view, const char* conditions)
{
    QTest::newRow(name) << view << QString(conditions);
}

void add_phases()
{
    found("charging", running(TestPhase::Charging), "charging");
    found("final charge", running(TestPhase::FinalCharge), "charging");
    found("discharging", running(TestPhase::Discharging), "discharging");
    found("resistance test", running(TestPhase::ResistanceTest), "testing-resistance");
    found("recovery", running(TestPhase::ResistanceRecovery), "testing-resistance");
    found("charge test", running(TestPhase::FullChargeTest), "testing-charge");
    found("final charge test", running(TestPhase::FinalChargeTest), "testing-charge");
    found("ready", running(TestPhase::ReadyForDischarge), "waits-for-operator");
    found("done", running(TestPhase::Done), "done");
    found("no phase told", running(TestPhase::Unknown), "");
}

void add_writers()
{
    found("a preview", by(Writer::Previewer, TestPhase::Charging), "");
    found("a preview of a done test", by(Writer::Previewer, TestPhase::Done), "");
    found("an old log", by(Writer::Unseen, TestPhase::Discharging), "");
    found("closed by a program that lives", by(Writer::Closed, TestPhase::Discharging), "ended");
    found("closed when done", by(Writer::Closed, TestPhase::Done), "ended");
    found("gone", by(Writer::Gone, TestPhase::Discharging), "program-gone");
    found("gone while waiting", by(Writer::Gone, TestPhase::ReadyForDischarge), "program-gone");
    found("gone before a phase", by(Writer::Gone, TestPhase::Unknown), "program-gone");
    found("gone when done", by(Writer::Gone, TestPhase::Done), "ended");
    const TestView untold = by(Writer::Untold, TestPhase::Charging);
    found("network", untold, "charging");
    found("network, quiet", quiet_for(30.0, untold), "charging");
    found("network, too quiet", quiet_for(30.1, untold), "perhaps-ended");
    found("network, reset", reset(7, 40.0, 4.0, quiet_for(45.0, untold)),
          "charging instrument-silent");
    found("network, waiting", quiet_for(9000.0, by(Writer::Untold, TestPhase::ReadyForDischarge)),
          "waits-for-operator");
    found("network, done", quiet_for(9000.0, by(Writer::Untold, TestPhase::Done)), "done");
}

void add_silence()
{
    const TestView charge = running(TestPhase::Charging);
    const TestView discharge = running(TestPhase::Discharging);
    found("charge, no row for as long as may be", quiet_for(30.0, charge), "charging");
    found("charge, no row for longer", quiet_for(30.1, charge), "charging instrument-silent");
    found("charge, unread telemetry", with_telemetry(1.0, quiet_for(31.0, charge)),
          "charging instrument-silent");
    found("discharge, no row for as long as may be", quiet_for(30.0, discharge), "discharging");
    found("discharge, no rows and no resets", quiet_for(31.0, discharge), "discharging no-current");
    found("discharge, no rows but resets", reset(6, 27.0, 2.0, quiet_for(31.0, discharge)),
          "discharging instrument-silent");
    found("discharge, resets are over", reset(6, 60.0, 17.0, quiet_for(70.0, discharge)),
          "discharging no-current");
    found("discharge, telemetry and no rows", with_telemetry(1.0, quiet_for(31.0, discharge)),
          "discharging no-current");
    found("resistance test, silent", quiet_for(31.0, running(TestPhase::ResistanceTest)),
          "testing-resistance instrument-silent");
    const TestView ready = quiet_for(9000.0, running(TestPhase::ReadyForDischarge));
    found("ready needs no rows", ready, "waits-for-operator");
    found("ready, silent for a moment", reset(2, 10.0, 5.0, ready), "waits-for-operator");
    found("ready, silent", reset(6, 25.0, 5.0, ready), "waits-for-operator instrument-silent");
    found("ready, silent no more", reset(6, 60.0, 16.1, ready), "waits-for-operator");
    found("done needs no instrument", reset(99, 500.0, 1.0, running(TestPhase::Done)), "done");
}

void add_troubles()
{
    const TestView test = running(TestPhase::ResistanceTest);
    found("a step of two minutes", lasting(120.0, test), "testing-resistance");
    found("a longer step", lasting(120.1, test), "testing-resistance step-does-not-end");
    found("a longer recovery", lasting(121.0, running(TestPhase::ResistanceRecovery)),
          "testing-resistance step-does-not-end");
    found("a longer charge test", lasting(121.0, running(TestPhase::FullChargeTest)),
          "testing-charge step-does-not-end");
    found("a step ends not for silence", lasting(500.0, quiet_for(400.0, test)),
          "testing-resistance instrument-silent");
    found("a long charge", lasting(90000.0, running(TestPhase::Charging)), "charging");
    found("a long final charge test is none", lasting(121.0, running(TestPhase::FinalChargeTest)),
          "testing-charge");
    found("two botched", botched(2, running(TestPhase::Discharging)), "discharging");
    found("three botched", botched(3, running(TestPhase::Discharging)),
          "discharging resistance-tests-fail");
    found("botched, and testing on", botched(3, test), "testing-resistance resistance-tests-fail");
    found("botched, and charging again", botched(3, running(TestPhase::Charging)), "charging");
    found("botched, and done", botched(3, running(TestPhase::Done)), "done");
}
}  // namespace

Q_DECLARE_METATYPE(TestView)

void WatchStatesTest::a_test_is_found_at_data()
{
    QTest::addColumn<TestView>("view");
    QTest::addColumn<QString>("conditions");
    add_phases();
    add_writers();
    add_silence();
    add_troubles();
}

void WatchStatesTest::a_test_is_found_at()
{
    QFETCH(TestView, view);
    QTEST(keys(conditions_of(view, QUIET)), "conditions");
}

KEST_GUILESS_TEST(WatchStatesTest)
#include "tst_watch_states.moc"
