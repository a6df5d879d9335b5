#include "support/phase_tour.h"
#include "support/test_program.h"

#include "common/date_time.h"
#include "common/time_span.h"
#include "config/help_ids.h"
#include "config/tool_tips.h"
#include "device/kestrometer.h"
#include "station/test_station.h"

#include <QLabel>
#include <QtTest>

#include <functional>

/** What a line of telemetry shows: all that it has changed, and nothing else. */
class ReadoutsTest : public QObject
{
    Q_OBJECT

private slots:
    void lines_show_what_a_full_refresh_would();
    void a_line_shows_whatever_has_changed_before_it_data();
    void a_line_shows_whatever_has_changed_before_it();
    void current_and_charge_time_take_turns();
    void the_current_gets_its_help_once();
    void a_missing_help_is_told_at_every_line();
};

namespace
{
const char* const LABELS[] = {
    "laStationID",     "laPhase",         "laVoltage",         "laCurrent",
    "laCummAmpHours2", "laCycleNumber",   "laCummAmpHours",    "laCummWattHours",
    "laElapsedTime",   "laIntResistance", "laBadSerialNumber", "laBlankSerialNumber",
    "laBadName",       "laBlankName",
};

QString panel_of(StationBench& bench)
{
    QStringList shown;
    for (const char* name : LABELS) {
        const auto* label = bench.widget<QLabel>(name);
        shown += (label->isHidden() ? "hidden: " : "") + label->text() + label->toolTip();
    }
    return shown.join('\n');
}

/** What the panel shows after each line of a test that comes through all phases. */
QStringList panels_of_a_tour(bool refreshed)
{
    PhaseTour tour;
    QStringList panels;
    QObject::connect(tour.test.bench.instrument, &Kestrometer::sig_measurement, &tour.test.station,
                     [&] {
                         if (refreshed)
                             tour.test.station.update_ui();
                         panels += panel_of(tour.test.bench);
                     });
    if (!tour.run() || tour.visited != PhaseTour::every_phase())
        qFatal("The tour has left a phase out.");
    return panels;
}

/** Counts the new tooltips of a widget. */
class HelpCounter : public QObject
{
public:
    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::ToolTipChange ? 1 : 0;
        return false;
    }

    int count = 0;
};

using Change = std::function<void(TestStation&)>;

void begin_discharge(StationBench& bench)
{
    bench.station->measure_internal_resistance = false;
    bench.start();
    bench.press("pbStartSkip");
    bench.receive("41.52", "9.98", "D");
}
}  // namespace

Q_DECLARE_METATYPE(Change)

void ReadoutsTest::lines_show_what_a_full_refresh_would()
{
    const QStringList panels = panels_of_a_tour(false);
    const QStringList refreshed = panels_of_a_tour(true);
    QVERIFY(panels.size() > PHASE_DONE);
    QCOMPARE(panels, refreshed);
}

void ReadoutsTest::a_line_shows_whatever_has_changed_before_it_data()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, const Change& change) {
        QTest::newRow(name) << change;
    };
    row("serial number", [](TestStation& station) { station.serial_number = "10/42"; });
    row("no serial number", [](TestStation& station) { station.serial_number.clear(); });
    row("name", [](TestStation& station) { station.profile_name = "A*"; });
    row("no name", [](TestStation& station) { station.profile_name.clear(); });
    row("cycles", [](TestStation& station) { station.number_of_cycles = 5; });
    row("no cycle", [](TestStation& station) {
        station.phase = PHASE_IDLE;
        station.current_cycle = nullptr;
    });
    row("resistance",
        [](TestStation& station) { station.current_cycle->internal_resistance.add(0.5, 16.0); });
    row("amp-hours", [](TestStation& station) { station.current_cycle->amp_hours = 7.25; });
    row("watt-hours", [](TestStation& station) { station.current_cycle->watt_hours = 300.0; });
    row("phase", [](TestStation& station) { station.phase = PHASE_DONE; });
    row("start", [](TestStation& station) {
        station.leg_start_time = station.leg_start_time.addSecs(-86400);
    });
}

void ReadoutsTest::a_line_shows_whatever_has_changed_before_it()
{
    QFETCH(Change, change);
    StationBench bench;
    begin_discharge(bench);
    const QString before = panel_of(bench);
    change(*bench.station);
    bench.receive_after(0.0, "41.52", "9.98", "D");
    const QString after = panel_of(bench);
    QVERIFY(after != before);
    bench.station->update_ui();
    QCOMPARE(after, panel_of(bench));
}

/** One label shows both: what it showed before the other's turn does not count as shown. */
void ReadoutsTest::current_and_charge_time_take_turns()
{
    StationBench bench;
    begin_discharge(bench);
    const auto* label = bench.widget<QLabel>("laCurrent");
    const auto help = [](int id) {
        QLabel other;
        ToolTips::assign(&other, id);
        return other.toolTip();
    };
    QCOMPARE(label->text(), QString("9.98 A"));
    QCOMPARE(label->toolTip(), help(HELP_CURRENT));
    for (int turn = 0; turn < 2; ++turn) {
        bench.station->phase = PHASE_CHARGING;
        bench.receive_after(0.0, "41.52", "9.98", "C");
        QCOMPARE(label->text(),
                 format_time_span(bench.station->leg_start_time.secsTo(Time::now())));
        QCOMPARE(label->toolTip(), help(HELP_CHARGE_TIME));
        bench.station->phase = PHASE_DISCHARGING;
        bench.receive_after(0.0, "41.52", "9.98", "D");
        QCOMPARE(label->text(), QString("9.98 A"));
        QCOMPARE(label->toolTip(), help(HELP_CURRENT));
    }
}

void ReadoutsTest::the_current_gets_its_help_once()
{
    StationBench bench;
    begin_discharge(bench);
    HelpCounter counter;
    bench.widget<QLabel>("laCurrent")->installEventFilter(&counter);
    for (int i = 0; i < 3; ++i)
        bench.receive("41.52", "9.98", "D");
    QCOMPARE(counter.count, 0);
    // Put there anew with all the others, it is not known any more.
    bench.station->set_tooltips();
    counter.count = 0;
    bench.receive("41.52", "9.98", "D");
    QCOMPARE(counter.count, 1);
}

void ReadoutsTest::a_missing_help_is_told_at_every_line()
{
    StationBench bench;
    begin_discharge(bench);
    const QMap<int, QString> tooltips = ToolTips::tooltips;
    ToolTips::tooltips.remove(57);
    for (int i = 1; i <= 3; ++i) {
        bench.answers.click(QMessageBox::Ok);
        bench.receive("41.52", "9.98", "D");
        QCOMPARE(int(bench.answers.seen.size()), i);
        QCOMPARE(bench.answers.seen.back().text,
                 QString("Tooltip 57 requested but not present in help file."));
    }
    ToolTips::tooltips = tooltips;
}

KEST_TEST(ReadoutsTest)
#include "tst_readouts.moc"
