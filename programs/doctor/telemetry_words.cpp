#include "doctor/judge.h"

#include "common/parse_int.h"
#include "device/telemetry_line.h"

namespace
{
constexpr int FIELDS = 7;
constexpr int VOLTS = 1;
constexpr int AMPS = 2;
constexpr int NUMBER = 5;
constexpr int STATE = 6;

bool is_number(const QString& text)
{
    bool ok = false;
    text.toDouble(&ok);
    return ok;
}

QString state_in_words(KestrometerState state)
{
    switch (state) {
    case Off:
        return "off";
    case Charging:
        return "charging";
    case Discharging:
        return "discharging";
    case Unknown:
        break;
    }
    return "in a state that has no name";
}
}  // namespace

QString why_no_telemetry(const QString& line)
{
    const QStringList fields = line.split('\t');
    if (fields.size() == 1)
        return "has no TAB, where telemetry has 7 fields between TABs";
    if (fields.size() != FIELDS)
        return QString("has %1 fields, not 7").arg(fields.size());
    if (!is_number(fields[VOLTS]))
        return "has no number of volts in its 2nd field";
    if (!is_number(fields[AMPS]))
        return "has no number of amps in its 3rd field";
    int number = 0;
    if (!parse_int(QString(fields[NUMBER]).remove("ID="), number))
        return "has no number of the instrument in its 6th field";
    if (fields[STATE].size() != 1)
        return "has no single letter in its 7th field";
    return {};
}

QString telemetry_in_words(const QString& line)
{
    double volts = 0.0;
    double amps = 0.0;
    int number = 0;
    KestrometerState state = Unknown;
    read_telemetry_line(line, volts, amps, number, state);
    return QString("%1 V, %2 A, instrument %3, %4")
        .arg(volts, 0, 'f', 2)
        .arg(amps, 0, 'f', 1)
        .arg(number)
        .arg(state_in_words(state));
}
