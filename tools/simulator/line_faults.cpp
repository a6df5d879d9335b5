#include "simulator/line_faults.h"

#include <random>

namespace LineFaults
{
void garbage(TelemetryLine& line, const LineFault& fault)
{
    // Every line has noise of its own, and the same run has the same noise.
    const QByteArray healthy = line.bytes();
    std::minstd_rand noise(qChecksum(healthy.constData(), uint(healthy.size())) + 1u +
                           uint(fault.lines.left + 1));
    QByteArray text;
    for (auto length = 1 + noise() % 60; length > 0; --length)
        text += char(1 + noise() % 255);
    line.fields = {text.replace('\r', '#').replace('\n', '#')};
}

void six_fields(TelemetryLine& line, const LineFault&)
{
    line.fields.removeAt(TelemetryLine::StatusField);
}

void eight_fields(TelemetryLine& line, const LineFault&)
{
    line.fields.insert(TelemetryLine::StatusField, "0");
}

void empty_fields(TelemetryLine& line, const LineFault&)
{
    for (QByteArray& one : line.fields)
        one.clear();
}

void numbers(TelemetryLine& line, const LineFault& fault)
{
    for (const int index : {TelemetryLine::VoltageField, TelemetryLine::CurrentField})
        if (index < line.fields.size())
            line.fields[index] = fault.text;
}

void decimal_comma(TelemetryLine& line, const LineFault&)
{
    for (const int index : {TelemetryLine::VoltageField, TelemetryLine::CurrentField})
        if (index < line.fields.size())
            line.fields[index].replace('.', ',');
}

void field(TelemetryLine& line, const LineFault& fault)
{
    if (fault.field < line.fields.size())
        line.fields[fault.field] = fault.text;
}

void doubled_letter(TelemetryLine& line, const LineFault&)
{
    line.fields.last() += line.fields.last();
}

void line_end(TelemetryLine& line, const LineFault& fault)
{
    line.end = fault.text;
}

void stray_bytes(TelemetryLine& line, const LineFault& fault)
{
    line.fields.first() += fault.text;
}
}  // namespace LineFaults
