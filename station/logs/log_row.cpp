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

int read_columns(const QStringList& fields, LogRow& row)
{
    double* const columns[] = {&row.time, &row.amp_hours, &row.voltage, &row.current,
                               &row.resistance};
    int read = 0;
    while (read < fields.size() && read_number(fields[read], *columns[read]))
        ++read;
    row.has_resistance = read == MOST_COLUMNS;
    return read;
}

bool read_number(const QString& text, double& value)
{
    bool ok = false;
    const double number = text.toDouble(&ok);
    if (ok)
        value = number;
    return ok;
}
