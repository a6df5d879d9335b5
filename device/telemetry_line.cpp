#include "device/telemetry_line.h"

#include "common/parse_int.h"

#include <QStringList>

namespace
{
constexpr int FIELD_COUNT = 7;

enum FieldIndex
{
    FIELD_VOLTAGE = 1,
    FIELD_CURRENT = 2,
    FIELD_ID = 5,
    FIELD_STATE = 6
};
}  // namespace

bool read_telemetry_line(const QString& line, double& voltage, double& current, int& id,
                         KestrometerState& reported_state)
{
    // Counted first: garbage may hold a million of them.
    if (line.count('\t') != FIELD_COUNT - 1)
        return false;
    const QStringList fields = line.split('\t');
    bool ok = false;
    voltage = fields[FIELD_VOLTAGE].toDouble(&ok);
    if (!ok)
        return false;
    current = fields[FIELD_CURRENT].toDouble(&ok);
    if (!ok)
        return false;
    if (!parse_int(QString(fields[FIELD_ID]).remove("ID="), id))
        return false;
    if (fields[FIELD_STATE].size() != 1)
        return false;
    reported_state = state_from_letter(fields[FIELD_STATE][0]);
    return true;
}
