#include "station/logs/log_row.h"

#include "common/plain_double.h"

namespace
{
/** Reads a number and the separator behind it, and goes past both. */
bool read_column(const QChar*& at, const QChar* end, QChar separator, double& value)
{
    at = read_plain_double(at, end, value);
    return at != nullptr && at != end && *at++ == separator;
}
}  // namespace

bool read_plain_row(const QString& line, QChar separator, LogRow& row)
{
    const QChar* at = line.constData();
    const QChar* const end = at + line.size();
    if (!read_column(at, end, separator, row.time) ||
        !read_column(at, end, separator, row.amp_hours) ||
        !read_column(at, end, separator, row.voltage))
        return false;
    at = read_plain_double(at, end, row.current);
    if (at == nullptr)
        return false;
    row.has_resistance = at != end;
    if (!row.has_resistance)
        return true;
    return *at++ == separator && read_plain_double(at, end, row.resistance) == end;
}

bool read_first_columns(const QStringList& fields, LogRow& row)
{
    return read_number(fields[0], row.time) && read_number(fields[1], row.amp_hours) &&
           read_number(fields[2], row.voltage) && read_number(fields[3], row.current);
}

bool read_number(const QString& text, double& value)
{
    bool ok = false;
    const double number = text.toDouble(&ok);
    if (ok)
        value = number;
    return ok;
}
