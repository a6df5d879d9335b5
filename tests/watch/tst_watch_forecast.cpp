#include "records/forecast.h"
#include "simulator/pack_model.h"
#include "support/test_program.h"

#include <QRandomGenerator>
#include <QtTest>

Q_DECLARE_METATYPE(PresentLeg)
Q_DECLARE_METATYPE(QList<Leg>)

/** When a leg is expected to end. */
class WatchForecastTest : public QObject
{
    Q_OBJECT

private slots:
    void a_leg_is_expected_to_end_data();
    void a_leg_is_expected_to_end();
    void the_pack_itself_counts_before_the_test_is_asked_for_its_name();
    void errors_are_what_nine_of_ten_have_kept_to();
    void nine_of_ten_discharges_of_simulated_packs_end_in_the_range_data();
    void nine_of_ten_discharges_of_simulated_packs_end_in_the_range();
};

namespace
{
constexpr double CUTOFF = 19.0;

Leg discharge(double seconds, double amp_hours, double last_volts = 18.99, double cutoff = CUTOFF)
{
    return {SectionKind::Discharge, seconds, amp_hours, last_volts, cutoff, 21600};
}

Leg charge(double seconds, int max_charge_time = 7200)
{
    return {SectionKind::Charge, seconds, 0.0, 25.2, CUTOFF, max_charge_time};
}

PresentLeg discharging(double seconds, double amp_hours, double amps)
{
    PresentLeg leg;
    leg.kind = SectionKind::Discharge;
    leg.seconds = seconds;
    leg.amp_hours = amp_hours;
    leg.amps = amps;
    leg.volts = 22.0;
    leg.parameters.low_voltage_cutoff = CUTOFF;
    return leg;
}

PresentLeg charging(double seconds, bool detects = false)
{
    PresentLeg leg;
    leg.seconds = seconds;
    leg.volts = 25.0;
    leg.parameters.max_charge_time = 7200;
    leg.parameters.detect_full_charge = detects;
    return leg;
}

PresentLeg finally_charging(double seconds, double volts, double final_volts)
{
    PresentLeg leg = charging(seconds);
    leg.final_charge = true;
    leg.volts = volts;
    leg.parameters.final_voltage = final_volts;
    return leg;
}

QString text_of(const Expectation& end)
{
    return end.is_known() ? QString("%1 to %2").arg(end.earliest).arg(end.latest)
                          : QString("unknown");
}
}  // namespace

void WatchForecastTest::a_leg_is_expected_to_end_data()
{
    QTest::addColumn<PresentLeg>("leg");
    QTest::addColumn<QList<Leg>>("before");
    QTest::addColumn<double>("error");
    QTest::addColumn<QString>("end");
    const auto row = [](const char* name, const PresentLeg& leg, const QList<Leg>& before,
                        double error, const char* end) {
        QTest::newRow(name) << leg << before << error << QString(end);
    };
    const QList<Leg> two = {charge(5000), discharge(1800, 2.5), charge(7201), discharge(1728, 2.4)};
    row("first discharge", discharging(600, 1.0, 5.0), {}, -1.0, "unknown");
    row("first discharge behind a charge", discharging(600, 1.0, 5.0), {charge(5000)}, -1.0,
        "unknown");
    // 1.4 and 1.5 Ah are left at 5 A: 1608 to 1680 s, and 3 % of 1644 s, and the next line.
    row("as two before", discharging(600, 1.0, 5.0), two, -1.0, "1556.68 to 1731.32");
    row("at half the current", discharging(600, 1.0, 2.5), two, -1.0, "2533.36 to 2842.64");
    row("earlier ones were off", discharging(600, 1.0, 5.0), two, 0.2, "1277.2 to 2010.8");
    row("longer than those before", discharging(1900, 2.6, 5.0), two, -1.0, "1900 to 1959");
    row("no current", discharging(600, 1.0, 0.0), two, -1.0, "unknown");
    row("ended by hand before", discharging(600, 1.0, 5.0), {discharge(900, 1.2, 22.0)}, -1.0,
        "unknown");
    row("another cutoff before", discharging(600, 1.0, 5.0), {discharge(900, 1.2, 17.0, 17.0)},
        -1.0, "unknown");
    row("charge by its time", charging(600), {}, -1.0, "7198 to 10802");
    row("charge by its time, beyond whole hours", charging(8000), {}, -1.0, "8000 to 10802");
    row("charge by its time, known by one before", charging(600), {charge(9001)}, -1.0,
        "8999 to 9003");
    row("charge by its time, skipped before", charging(600), {charge(900)}, -1.0, "7198 to 10802");
    row("charge by detection", charging(600, true), {}, -1.0, "600 to 10802");
    row("charge by detection, as before", charging(600, true), {charge(5000)}, -1.0,
        "4848 to 5152");
    row("charge by detection, longer than before", charging(6000, true), {charge(5000)}, -1.0,
        "6000 to 10802");
    row("final charge to any voltage", finally_charging(10, 25.0, 0.0), {}, -1.0, "298 to 302");
    row("final charge to a voltage", finally_charging(310, 25.0, 25.2), {}, -1.0, "600 to 10802");
    row("final charge, voltage reached", finally_charging(310, 25.3, 25.2), {}, -1.0, "598 to 602");
}

void WatchForecastTest::a_leg_is_expected_to_end()
{
    QFETCH(PresentLeg, leg);
    QFETCH(QList<Leg>, before);
    QFETCH(double, error);
    QTEST(text_of(expected_end(leg, before, {}, {}, error)), "end");
}

void WatchForecastTest::the_pack_itself_counts_before_the_test_is_asked_for_its_name()
{
    const PresentLeg leg = discharging(0, 0.0, 3.6);
    const QList<Leg> of_test = {discharge(1000, 1.0)};
    const QList<Leg> of_pack = {discharge(2000, 2.0)};
    const QList<Leg> of_battery = {discharge(3000, 3.0)};
    const auto middle = [&](const QList<Leg>& test, const QList<Leg>& pack) {
        return std::round(expected_end(leg, test, pack, of_battery, -1.0).latest / 1000.0);
    };
    QCOMPARE(middle(of_test, of_pack), 1.0);
    QCOMPARE(middle({}, of_pack), 2.0);
    QCOMPARE(middle({}, {}), 3.0);
}

void WatchForecastTest::errors_are_what_nine_of_ten_have_kept_to()
{
    ForecastErrors errors;
    QCOMPARE(errors.share(SectionKind::Discharge), -1.0);
    for (int i = 1; i <= 10; ++i)
        errors.add(SectionKind::Discharge, 1000.0 + i * 10.0, 1000.0);
    QCOMPARE(errors.share(SectionKind::Discharge), 0.09);
    QCOMPARE(errors.share(SectionKind::Charge), -1.0);
    errors.add(SectionKind::Charge, 300.0, 1.0);  // ended as it began
    QCOMPARE(errors.share(SectionKind::Charge), -1.0);
    for (int i = 0; i < ForecastErrors::KEPT; ++i)
        errors.add(SectionKind::Discharge, 100.0, 100.0);
    QCOMPARE(errors.share(SectionKind::Discharge), 0.0);
}

namespace
{
/** What differs from pack to pack and from discharge to discharge, as shares. */
struct Conditions
{
    bool one_name = false;  ///< packs of about one capacity, which know of each other
    double aging = 0.005;   ///< capacity lost a discharge, and resistance won
    double cold = 0.0;  ///< at most of the capacity, by temperature; five times that of resistance
    double start = 0.03;  ///< at most missing at the start of a discharge
    double load = 0.02;   ///< by which the load is off
};

/** All packs of a shop one after the other, and the forecasts made meanwhile. */
class PacksOfAShop
{
public:
    explicit PacksOfAShop(const Conditions& shop_conditions) : conditions(shop_conditions)
    {
    }

    void discharge(quint32 seed)
    {
        random.seed(seed);
        capacity = conditions.one_name ? 2.5 * (1.0 - share(0.1)) : 1.0 + share(2.0);
        resistance = 0.05 + share(0.2);
        QList<Leg> legs;
        for (int cycle = 0; cycle < 6; ++cycle)
            legs << discharge_once(legs);
        if (conditions.one_name)
            of_battery << legs;
    }

    int forecasts = 0;
    int good = 0;

private:
    double share(double most)
    {
        return random.generateDouble() * most;
    }

    PackModel next_pack()
    {
        capacity *= 1.0 - conditions.aging;
        resistance *= 1.0 + conditions.aging;
        const double cold = share(conditions.cold);
        PackModel pack;
        pack.capacity_ah = capacity * (1.0 - cold);
        pack.internal_resistance = resistance * (1.0 + 5.0 * cold);
        pack.state_of_charge = 1.0 - share(conditions.start);
        pack.load_amps = 5.0 * (1.0 - conditions.load + share(2.0 * conditions.load));
        return pack;
    }

    Leg discharge_once(const QList<Leg>& before)
    {
        PackModel pack = next_pack();
        PresentLeg leg = discharging(0.0, 0.0, pack.load_amps);
        QList<Expectation> made;
        while (leg.volts >= CUTOFF) {
            leg.volts = pack.advance(1.0, InstrumentState::Discharging).volts;
            leg.seconds += 1.0;
            leg.amp_hours += pack.load_amps / 3600.0;
            if (int(leg.seconds) % 300 == 1)
                made << expected_end(leg, before, {}, of_battery,
                                     errors.share(SectionKind::Discharge));
        }
        judge(made, leg.seconds);
        return ::discharge(leg.seconds, leg.amp_hours, leg.volts);
    }

    void judge(const QList<Expectation>& made, double end)
    {
        for (const Expectation& forecast : made) {
            if (!forecast.is_known())
                continue;
            ++forecasts;
            good += forecast.earliest <= end && end <= forecast.latest ? 1 : 0;
        }
        if (!made.isEmpty() && made.first().is_known())
            errors.add(SectionKind::Discharge, made.first().middle(), end);
    }

    Conditions conditions;
    QRandomGenerator random;
    double capacity = 0.0;    ///< amp-hours, of the present pack
    double resistance = 0.0;  ///< ohms
    QList<Leg> of_battery;
    ForecastErrors errors;  ///< of the whole shop, as the watch keeps them
};
}  // namespace
Q_DECLARE_METATYPE(Conditions)

void WatchForecastTest::nine_of_ten_discharges_of_simulated_packs_end_in_the_range_data()
{
    QTest::addColumn<Conditions>("conditions");
    // one_name, aging, cold, start, load
    QTest::newRow("packs of all kinds") << Conditions();
    QTest::newRow("packs of one name") << Conditions{true, 0.005, 0.0, 0.03, 0.02};
    QTest::newRow("they age") << Conditions{false, 0.02, 0.0, 0.03, 0.02};
    QTest::newRow("cold nights") << Conditions{false, 0.005, 0.1, 0.03, 0.02};
    QTest::newRow("they age in cold nights") << Conditions{false, 0.02, 0.15, 0.03, 0.02};
    QTest::newRow("one name, age and cold") << Conditions{true, 0.01, 0.1, 0.03, 0.02};
    QTest::newRow("loads that differ") << Conditions{false, 0.005, 0.0, 0.03, 0.2};
    QTest::newRow("half charged at the start") << Conditions{false, 0.005, 0.0, 0.5, 0.02};
}

void WatchForecastTest::nine_of_ten_discharges_of_simulated_packs_end_in_the_range()
{
    QFETCH(Conditions, conditions);
    PacksOfAShop shop(conditions);
    for (quint32 seed = 1; seed <= 30; ++seed)
        shop.discharge(seed);
    QVERIFY(shop.forecasts > 500);
    QVERIFY2(shop.good >= shop.forecasts * 0.9,
             qPrintable(QString("%1 of %2").arg(shop.good).arg(shop.forecasts)));
}

KEST_GUILESS_TEST(WatchForecastTest)
#include "tst_watch_forecast.moc"
