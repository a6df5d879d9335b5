#include "station/test_station.h"

#include "common/text.h"

int TestStation::get_cycle_number() const
{
    return cycles.indexOf(current_cycle) + 1;
}

Phase TestStation::get_phase() const
{
    return phase;
}

bool TestStation::charging() const
{
    return phase == PHASE_CHARGING || phase == PHASE_CHARGING_LEVELED ||
           phase == PHASE_FINAL_CHARGE;
}

QString TestStation::phase_to_string(Phase which) const
{
    switch (which) {
    case PHASE_IDLE:
        if (kestrometer != nullptr)
            return "Configure Test";
        return data_log != nullptr ? "Preview" : "Load Log File";
    case PHASE_CHARGING:
    case PHASE_CHARGING_LEVELED:
        return "Charging";
    case PHASE_FULL_CHARGE_TEST:
        return "Full Charge Test";
    case PHASE_READY_FOR_DISCHARGE:
        return "Ready for " + ordinal_string(get_cycle_number()) + " Discharge";
    case PHASE_DISCHARGING:
        return "Discharging";
    case PHASE_IR_TEST:
        return "IR Test";
    case PHASE_IR_RECOVERY:
        return "Recovering from IR Test";
    case PHASE_FINAL_CHARGE:
        return "Charging (final)";
    case PHASE_FINAL_CHARGE_TEST:
        return "Final Charge Test";
    case PHASE_DONE:
        return "Done";
    }
    return "?";
}

QString TestStation::get_avg_internal_resistance_string() const
{
    double sum = 0.0;
    int count = 0;
    for (const TestCycle* cycle : cycles) {
        const QList<QPointF>& points = cycle->internal_resistance.points;
        for (const QPointF& point : points)
            sum += point.y();
        count += points.size();
    }
    return milliohms_string(count != 0, count != 0 ? sum / count : 0.0);
}
