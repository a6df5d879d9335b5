#pragma once

#include "records/running_log.h"

#include <QList>

/** When a leg is expected to end, in seconds since it began. */
struct Expectation
{
    double earliest = -1.0;  ///< -1: nothing is known
    double latest = -1.0;

    bool is_known() const
    {
        return latest >= 0.0;
    }
    double middle() const
    {
        return (earliest + latest) / 2.0;
    }
};

/** The leg that a test is in, as far as its log tells. */
struct PresentLeg
{
    SectionKind kind = SectionKind::Charge;
    bool final_charge = false;
    double seconds = 0.0;  ///< so far
    double volts = 0.0;
    double amps = 0.0;
    double amp_hours = 0.0;     ///< so far
    TestParameters parameters;  ///< as they stood when it began
};

/**
 * @param of_test legs of the same test before this one
 * @param of_pack those of the same battery with the same serial number
 * @param of_battery those of all batteries of that name
 * @param error what forecasts of this kind were off by, as a share of the leg; -1: not known
 */
Expectation expected_end(const PresentLeg& leg, const QList<Leg>& of_test,
                         const QList<Leg>& of_pack, const QList<Leg>& of_battery, double error);

/** How far earlier forecasts were off: what 9 of 10 have kept to. */
class ForecastErrors
{
public:
    static constexpr int KEPT = 50;

    /** A forecast named `expected` for a leg that then lasted `ended` seconds. */
    void add(SectionKind kind, double expected, double ended);
    /** As a share of the leg; -1 if none has been put to the test yet. */
    double share(SectionKind kind) const;

    QList<double>& shares_of(SectionKind kind);
    const QList<double>& shares_of(SectionKind kind) const;

private:
    QList<double> charges;  ///< the last ones
    QList<double> discharges;
};
