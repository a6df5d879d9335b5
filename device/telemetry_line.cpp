#include "device/telemetry_line.h"

#include "common/parse_int.h"
#include "common/read_double.h"

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

/** A piece of the line, which outlives it. */
struct Field
{
    const QChar* begin = nullptr;
    const QChar* end = nullptr;

    int size() const
    {
        return int(end - begin);
    }
};

bool split_at_tabs(const QString& line, Field (&fields)[FIELD_COUNT])
{
    int count = 0;
    const QChar* begin = line.constData();
    const QChar* const line_end = begin + line.size();
    for (const QChar* at = begin; at != line_end; ++at) {
        if (*at != '\t')
            continue;
        if (count == FIELD_COUNT - 1)
            return false;
        fields[count++] = {begin, at};
        begin = at + 1;
    }
    fields[count++] = {begin, line_end};
    return count == FIELD_COUNT;
}

bool read_number(const Field& field, double& value)
{
    bool ok = false;
    value = read_double(field.begin, field.size(), ok);
    return ok;
}

/** The usual "ID=123" without a detour; false leaves the field to the general way. */
bool read_plain_id(const Field& field, int& id)
{
    constexpr int MAX_DIGITS = 9;
    const int digits = field.size() - 3;
    if (digits < 1 || digits > MAX_DIGITS || field.begin[0] != 'I' || field.begin[1] != 'D' ||
        field.begin[2] != '=')
        return false;
    int number = 0;
    for (const QChar* at = field.begin + 3; at != field.end; ++at) {
        const int digit = at->unicode() - '0';
        if (digit < 0 || digit > 9)
            return false;
        number = number * 10 + digit;
    }
    id = number;
    return true;
}

bool read_id(const Field& field, int& id)
{
    if (read_plain_id(field, id))
        return true;
    return parse_int(QString(field.begin, field.size()).remove("ID="), id);
}
}  // namespace

bool read_telemetry_line(const QString& line, double& voltage, double& current, int& id,
                         KestrometerState& reported_state)
{
    Field fields[FIELD_COUNT];
    if (!split_at_tabs(line, fields))
        return false;
    if (!read_number(fields[FIELD_VOLTAGE], voltage) ||
        !read_number(fields[FIELD_CURRENT], current) || !read_id(fields[FIELD_ID], id))
        return false;
    if (fields[FIELD_STATE].size() != 1)
        return false;
    reported_state = state_from_letter(*fields[FIELD_STATE].begin);
    return true;
}
