#include "device/telemetry_line.h"

#include "common/parse_int.h"
#include "common/plain_double.h"

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

/** What a line of the usual form says. */
struct Readings
{
    double voltage = 0.0;
    double current = 0.0;
    int id = 0;
    KestrometerState state = Unknown;
};

/** One walk over a line of the usual form; each step is false where the line leaves that form. */
class Walk
{
public:
    explicit Walk(const QString& line) : at(line.constData()), end(at + line.size())
    {
    }

    bool skip_field()
    {
        while (at != end && *at != '\t')
            ++at;
        return skip_tab();
    }

    bool read_number_field(double& value)
    {
        at = read_plain_double(at, end, value);
        return at != nullptr && skip_tab();
    }

    /** "ID=" and one to nine decimal digits. */
    bool read_id_field(int& id)
    {
        if (end - at < 4 || at[0] != 'I' || at[1] != 'D' || at[2] != '=')
            return false;
        at += 3;
        const QChar* const first = at;
        for (id = 0; at != end && at - first < 9 && unsigned(at->unicode()) - '0' <= 9; ++at)
            id = id * 10 + (at->unicode() - '0');
        return at != first && skip_tab();
    }

    bool read_last_field(KestrometerState& state)
    {
        if (end - at != 1 || *at == '\t')
            return false;
        state = state_from_letter(*at);
        return true;
    }

private:
    bool skip_tab()
    {
        return at != end && *at++ == '\t';
    }

    const QChar* at;
    const QChar* const end;
};

bool read_usual_line(const QString& line, Readings& readings)
{
    Walk walk(line);
    return walk.skip_field() && walk.read_number_field(readings.voltage) &&
           walk.read_number_field(readings.current) && walk.skip_field() && walk.skip_field() &&
           walk.read_id_field(readings.id) && walk.read_last_field(readings.state);
}

/** Every other line, step by step. */
bool read_unusual_line(const QString& line, double& voltage, double& current, int& id,
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
}  // namespace

bool read_telemetry_line(const QString& line, double& voltage, double& current, int& id,
                         KestrometerState& reported_state)
{
    Readings readings;
    if (!read_usual_line(line, readings))
        return read_unusual_line(line, voltage, current, id, reported_state);
    voltage = readings.voltage;
    current = readings.current;
    id = readings.id;
    reported_state = readings.state;
    return true;
}
