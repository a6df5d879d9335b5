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

Phase TestStation::phase_after_discharge() const
{
    return get_cycle_number() >= number_of_cycles ? PHASE_FINAL_CHARGE : PHASE_CHARGING;
}

bool TestStation::charging() const
{
    return traits_of(phase).command == Charging;
}

QString TestStation::phase_to_string(Phase which) const
{
    if (which < PHASE_IDLE || which > PHASE_DONE)
        return "?";
    if (which == PHASE_IDLE && kestrometer == nullptr)
        return data_log != nullptr ? "Preview" : "Load Log File";
    const QString text = traits_of(which).text;
    return text.contains("%1") ? text.arg(ordinal_string(get_cycle_number())) : text;
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
