#include "simulator/fault_arguments.h"

#include "simulator/fault_state.h"

#include <cmath>

namespace
{
/** What a word of a usage stands for. */
struct ArgumentKind
{
    const char* name;
    const char* description;
    bool whole;
    double min;
    double max;
    const char* word;  ///< a word that stands for itself, or null
};

constexpr ArgumentKind NUMBERS[] = {
    {"lines", "a number of lines from 1 to 1000000, or \"forever\"", true, 1, 1e6, "forever"},
    {"seconds", "a number of seconds from 0.001 to 10000000, or \"forever\"", false, 1e-3, 1e7,
     "forever"},
    {"time", "a number of seconds from 0.001 to 100000", false, 1e-3, 1e5, nullptr},
    {"count", "a whole number from 1 to 1000", true, 1, 1000, nullptr},
    {"delay", "a number of lines from 0 to 1000", true, 0, 1000, nullptr},
    {"bytes", "a number of bytes from 1 to 100000000", true, 1, 1e8, nullptr},
    {"volts", "a number of volts from -1000 to 1000", false, -1000, 1000, nullptr},
    {"amps", "a number of amps from -1000 to 1000", false, -1000, 1000, nullptr},
    {"id", "a whole number from -2147483648 to 2147483647", true, -2147483648.0, 2147483647.0,
     nullptr},
    {"field", "a field's number from 0 to 6", true, 0, 6, nullptr},
};

bool is_number_of_kind(const ArgumentKind& kind, const QString& word)
{
    if (kind.word != nullptr && word == kind.word)
        return true;
    bool ok = false;
    const double number = kind.whole ? double(word.toLongLong(&ok)) : word.toDouble(&ok);
    return ok && number >= kind.min && number <= kind.max;
}

/** Empty if `word` is a value of this kind, else a description of such values. */
QString what_is_missing(const QString& kind_name, const QString& word)
{
    for (const ArgumentKind& kind : NUMBERS)
        if (kind_name == kind.name)
            return is_number_of_kind(kind, word) ? QString() : QString(kind.description);
    if (kind_name == "letter" && (word.size() != 1 || word[0] <= ' ' || word[0] > '~'))
        return "one printable character";
    return {};
}
}  // namespace

double FaultArguments::number(int index) const
{
    return words[index] == "forever" ? INFINITY : words[index].toDouble();
}

int FaultArguments::lines(int index) const
{
    return words[index] == "forever" ? LineSpan::FOREVER : words[index].toInt();
}

bool read_fault_arguments(const FaultRow& row, const QStringList& words, FaultArguments& arguments,
                          QString& error)
{
    const QStringList usage = QString(row.usage).split(' ', Qt::SkipEmptyParts);
    for (int i = 0; i < usage.size(); ++i) {
        const QString kind = usage[i].mid(1, usage[i].size() - 2).section('=', 0, 0);
        const QString preset = usage[i].section('=', 1).chopped(usage[i].contains('=') ? 1 : 0);
        if (i >= words.size() && preset.isEmpty()) {
            error = QString("Fault \"%1\" needs more: %2.").arg(row.name, fault_synopsis(row));
            return false;
        }
        const QString word = words.value(i, preset);
        const QString missing = what_is_missing(kind, word);
        if (!missing.isEmpty()) {
            error = QString("Fault \"%1\": \"%2\" is not %3.").arg(row.name, word, missing);
            return false;
        }
        arguments.words.append(word.toUtf8());
    }
    if (words.size() <= usage.size())
        return true;
    error = QString("Fault \"%1\" takes less: %2.").arg(row.name, fault_synopsis(row));
    return false;
}
