#include "support/reloaded_log.h"

#include "support/literal_log_reader.h"
#include "support/test_files.h"

#include "station/test_station.h"

#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>

namespace
{
double in_digits(double value, int decimals)
{
    return QString::number(value, 'f', decimals).toDouble();
}

bool equal(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool same_curve(const Series& live, const Series& loaded)
{
    if (live.points.size() != loaded.points.size())
        return false;
    for (int i = 0; i < live.points.size(); ++i)
        if (!equal(in_digits(live.points[i].x(), 3), loaded.points[i].x()) ||
            !equal(in_digits(live.points[i].y(), 2), loaded.points[i].y()))
            return false;
    return true;
}

bool is_row(const Series& live_rows, double logged_amp_hours)
{
    return std::any_of(live_rows.points.begin(), live_rows.points.end(),
                       [logged_amp_hours](const QPointF& point) {
                           return equal(in_digits(point.x(), 3), logged_amp_hours);
                       });
}

/**
 * Those that live test and log have in common: the test keeps no negative resistance, the log none
 * that is exactly zero, and none measured at a current that is no number.
 */
QList<QPointF> shared_points(const Series& resistances, bool live)
{
    QList<QPointF> shared;
    for (const QPointF& point : resistances.points)
        if (live ? point.y() > 0.0 : point.y() >= 0.0)
            shared << point;
    return shared;
}

/**
 * The log keeps three decimals of an ohm, which is whole milliohms, and the amp-hours at the end of
 * the line that completed a resistance test; the live test has those at its start.
 */
bool same_resistances(const TestCycle& live, const TestCycle& loaded)
{
    const QList<QPointF> live_points = shared_points(live.internal_resistance, true);
    const QList<QPointF> loaded_points = shared_points(loaded.internal_resistance, false);
    return std::equal(live_points.begin(), live_points.end(), loaded_points.begin(),
                      loaded_points.end(), [&live](const QPointF& a, const QPointF& b) {
                          return is_row(live.voltage_vs_amphours, b.x()) &&
                                 (a.y() == b.y() || std::fabs(a.y() - b.y()) < 0.5 + 1e-9);
                      });
}

double last_x(const Series& series)
{
    return series.points.isEmpty() ? 0.0 : series.points.last().x();
}

QDateTime to_the_second(const QDateTime& time)
{
    return time.addMSecs(-time.time().msec());
}

QStringList cycle_differences(const TestCycle& live, const TestCycle& loaded, double watt_hours)
{
    QStringList differences;
    if (to_the_second(live.start_time) != loaded.start_time)
        differences << "start";
    if (!same_curve(live.voltage_vs_amphours, loaded.voltage_vs_amphours))
        differences << "voltage";
    if (!same_curve(live.current_vs_amphours, loaded.current_vs_amphours))
        differences << "current";
    if (!same_resistances(live, loaded))
        differences << "resistance";
    if (!equal(loaded.amp_hours, in_digits(last_x(live.voltage_vs_amphours), 3)))
        differences << "amp-hours";
    if (!equal(loaded.watt_hours, watt_hours))
        differences << "watt-hours";
    return differences;
}

QStringList parameter_differences(const TestStation& live, const TestStation& loaded)
{
    QStringList differences;
    if (live.profile_name != loaded.profile_name)
        differences << "name";
    if (live.serial_number != loaded.serial_number)
        differences << "serial number";
    if (live.max_charge_time / 3600 * 3600 != loaded.max_charge_time)
        differences << "max charge time";
    if (live.detect_full_charge != loaded.detect_full_charge ||
        live.prompt_to_discharge != loaded.prompt_to_discharge ||
        live.measure_internal_resistance != loaded.measure_internal_resistance)
        differences << "flags";
    if (live.low_voltage_cutoff != loaded.low_voltage_cutoff ||
        live.final_voltage != loaded.final_voltage)
        differences << "voltages";
    if (live.measure_internal_resistance &&
        live.internal_resistance_test_interval_ah != loaded.internal_resistance_test_interval_ah)
        differences << "interval";
    return differences;
}
}  // namespace

QString difference_after_reload(const TestStation& live, const QByteArray& csv)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("copy.csv");
    write_file(path, csv);
    TestStation preview(nullptr, nullptr);
    preview.data_log = new QFile(path);
    if (!preview.data_log->open(QIODevice::ReadWrite | QIODevice::Text) || !preview.read_data_log())
        return "The log does not load.";
    if (live.data_log == nullptr)
        return QString();  // unloaded by now: there is nothing to compare with
    ReadLog literal{QByteArray()};
    read_literally(csv, literal);
    if (preview.cycles.size() != live.cycles.size() ||
        preview.cycles.size() != int(literal.cycles.size()))
        return QString("%1 cycles of %2").arg(preview.cycles.size()).arg(live.cycles.size());
    QStringList differences = parameter_differences(live, preview);
    for (int i = 0; i < live.cycles.size(); ++i)
        for (const QString& what :
             cycle_differences(*live.cycles[i], *preview.cycles[i], literal.cycle(i).watt_hours))
            differences << QString("%1 of cycle %2").arg(what).arg(i + 1);
    return differences.isEmpty() ? QString() : "Loaded again: " + differences.join(", ");
}
