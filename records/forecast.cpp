#include "records/forecast.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr double HOUR = 3600.0;
constexpr double CHARGE_TEST_INTERVAL = 300.0;
constexpr double LINE = 2.0;          // seconds until the instrument's next line, at most
constexpr double LEAST_SHARE = 0.03;  // of a leg: no two are alike
constexpr double LEAST_CURRENT = 0.01;
constexpr double SAME_CUTOFF = 0.05;  // volts

/** A discharge that went down to the same cutoff, and was not ended by hand. */
bool is_whole(const Leg& leg, double cutoff)
{
    return leg.kind == SectionKind::Discharge && leg.last_volts <= cutoff + SAME_CUTOFF &&
           std::abs(leg.cutoff - cutoff) <= SAME_CUTOFF && leg.amp_hours > 0.0;
}

struct Range
{
    double least = 0.0;
    double most = 0.0;
    bool empty = true;

    void add(double value)
    {
        least = empty ? value : std::min(least, value);
        most = empty ? value : std::max(most, value);
        empty = false;
    }
};

/** Amp-hours of the last few whole discharges: a pack grows old. */
Range capacity_in(const QList<Leg>& legs, double cutoff)
{
    constexpr int LAST = 4;
    Range range;
    int taken = 0;
    for (auto leg = legs.rbegin(); leg != legs.rend() && taken < LAST; ++leg) {
        if (!is_whole(*leg, cutoff))
            continue;
        range.add(leg->amp_hours);
        ++taken;
    }
    return range;
}

/** What is not known of a leg does not shrink as it goes on: the error is a share of the whole. */
Expectation widened(double now, double earliest, double latest, double error)
{
    const double margin = std::max(error, LEAST_SHARE) * (earliest + latest) / 2.0 + LINE;
    Expectation end;
    end.earliest = std::max(now, earliest - margin);
    end.latest = std::max(now + LINE, latest + margin);
    return end;
}

Expectation end_of_discharge(const PresentLeg& leg, const QList<Leg>& of_test,
                             const QList<Leg>& of_pack, const QList<Leg>& of_battery, double error)
{
    const double cutoff = leg.parameters.low_voltage_cutoff;
    Range capacity;
    for (const QList<Leg>* legs : {&of_test, &of_pack, &of_battery})
        if (capacity.empty)
            capacity = capacity_in(*legs, cutoff);
    if (capacity.empty || leg.amps < LEAST_CURRENT)
        return Expectation();
    const double an_amp_hour = HOUR / leg.amps;
    const auto at = [&](double amp_hours) {
        return leg.seconds + std::max(amp_hours - leg.amp_hours, 0.0) * an_amp_hour;
    };
    return widened(leg.seconds, at(capacity.least), at(capacity.most), error);
}

/** Whether it ended because its time was over, as far as whole hours tell. */
bool ended_by_time(const Leg& leg)
{
    return leg.kind == SectionKind::Charge && leg.seconds + LINE >= leg.max_charge_time &&
           leg.seconds <= leg.max_charge_time + HOUR;
}

/** The maximum time stands in the log in whole hours; an earlier charge that used it up tells more. */
Range longest_charge(const PresentLeg& leg, const QList<Leg>& of_test)
{
    Range range;
    for (auto earlier = of_test.rbegin(); earlier != of_test.rend(); ++earlier) {
        if (!ended_by_time(*earlier) || earlier->max_charge_time != leg.parameters.max_charge_time)
            continue;
        range.add(earlier->seconds);
        return range;
    }
    range.add(double(leg.parameters.max_charge_time));
    range.add(double(leg.parameters.max_charge_time) + HOUR);
    return range;
}

/** Every five minutes the voltage is looked at; above the final one the test is over. */
double next_check(const PresentLeg& leg)
{
    return (std::floor(leg.seconds / CHARGE_TEST_INTERVAL) + 1.0) * CHARGE_TEST_INTERVAL;
}

Expectation end_of_charge(const PresentLeg& leg, const QList<Leg>& of_test, double error)
{
    const Range longest = longest_charge(leg, of_test);
    if (leg.final_charge && leg.volts > leg.parameters.final_voltage)
        return {std::max(leg.seconds, next_check(leg) - LINE), next_check(leg) + LINE};
    Expectation end;
    end.earliest = std::max(leg.seconds, longest.least - LINE);
    end.latest = std::max(leg.seconds, longest.most + LINE);
    if (leg.final_charge)
        end.earliest = std::min(end.earliest, next_check(leg));
    if (leg.final_charge || !leg.parameters.detect_full_charge)
        return end;
    // By detection it ends earlier: as the earlier ones of this test, or at any time.
    Range earlier;
    for (const Leg& before : of_test)
        if (before.kind == SectionKind::Charge && before.seconds > leg.seconds)
            earlier.add(before.seconds);
    if (earlier.empty) {
        end.earliest = leg.seconds;
        return end;
    }
    const Expectation by_earlier = widened(leg.seconds, earlier.least, earlier.most, error);
    end.earliest = std::min(by_earlier.earliest, end.earliest);
    end.latest = std::min(by_earlier.latest, end.latest);
    return end;
}
}  // namespace

Expectation expected_end(const PresentLeg& leg, const QList<Leg>& of_test,
                         const QList<Leg>& of_pack, const QList<Leg>& of_battery, double error)
{
    return leg.kind == SectionKind::Charge
               ? end_of_charge(leg, of_test, error)
               : end_of_discharge(leg, of_test, of_pack, of_battery, error);
}

void ForecastErrors::add(SectionKind kind, double expected, double ended)
{
    if (!(ended > LINE))
        return;
    QList<double>& shares = shares_of(kind);
    shares << std::abs(ended - expected) / ended;
    if (shares.size() > KEPT)
        shares.removeFirst();
}

double ForecastErrors::share(SectionKind kind) const
{
    QList<double> shares = shares_of(kind);
    if (shares.isEmpty())
        return -1.0;
    std::sort(shares.begin(), shares.end());
    return shares.at(std::min(int(std::ceil(shares.size() * 0.9)), shares.size()) - 1);
}

QList<double>& ForecastErrors::shares_of(SectionKind kind)
{
    return kind == SectionKind::Charge ? charges : discharges;
}

const QList<double>& ForecastErrors::shares_of(SectionKind kind) const
{
    return kind == SectionKind::Charge ? charges : discharges;
}
