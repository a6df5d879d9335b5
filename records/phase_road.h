#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

/** A change of phase as the event log tells it. */
struct PhaseChange
{
    QDateTime time;  ///< local time without a zone, whole seconds
    QString phase;   ///< "Discharging"
    QString reason;
};

/** Phases by what may come next; those of one name are told apart by the reason. */
enum class RoadPhase
{
    Unknown,
    Charging,
    ChargingLeveled,
    FullChargeTest,
    Ready,
    Discharging,
    IrTest,
    IrRecovery,
    FinalCharge,
    FinalChargeTest,
    Done
};

/**
 * Follows the changes of phase in an event log, and tells when two tests go on in it at once.
 *
 * A start by hand may come at any time: a test is taken up again after whatever happened. If the test
 * before it goes on nevertheless, another station writes. A change that fits neither is no proof, as
 * lines are lost on a full disk: the road goes on from there.
 */
class PhaseRoad
{
public:
    /** False if this change belongs to a test that began before the last start by hand. */
    bool take(const PhaseChange& change);

    /** Where the road has come to. */
    RoadPhase now() const
    {
        return phase;
    }

private:
    bool goes_on(const PhaseChange& change, RoadPhase from) const;

    RoadPhase phase = RoadPhase::Unknown;
    QList<RoadPhase> left;   ///< where the tests before stood when another was started
    double amp_hours = 0.0;  ///< at which resistance was tested last in this discharge
};

/** Whether the operator began a charge, as at the start of a test or when one is taken up again. */
bool is_start_by_hand(const PhaseChange& change);
