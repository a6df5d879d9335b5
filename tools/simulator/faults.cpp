#include "simulator/faults.h"

#include "simulator/fault_arguments.h"

#include <QStringList>

namespace
{
const FaultRow* find_row(const QString& name)
{
    for (const FaultRow& row : fault_rows())
        if (name == row.name)
            return &row;
    return nullptr;
}

const FaultRow* read_fault(const QString& line, FaultArguments& arguments, QString& error)
{
    QStringList words = line.simplified().split(' ', Qt::SkipEmptyParts);
    if (words.isEmpty()) {
        error = "No fault is named.";
        return nullptr;
    }
    const QString name = words.takeFirst();
    const FaultRow* row = find_row(name);
    if (row == nullptr)
        error = QString("There is no fault \"%1\"; --help lists them.").arg(name);
    else if (!read_fault_arguments(*row, words, arguments, error))
        return nullptr;
    return row;
}
}  // namespace

QString fault_group_title(FaultGroup group)
{
    switch (group) {
    case FaultGroup::Text:
        return "Text";
    case FaultGroup::Time:
        return "Time";
    case FaultGroup::Instrument:
        return "Instrument";
    case FaultGroup::Port:
        return "Port";
    case FaultGroup::General:
        return "General";
    }
    return {};
}

QString fault_synopsis(const FaultRow& row)
{
    return QString("%1 %2").arg(row.name, row.usage).trimmed();
}

QString fault_help()
{
    QString text;
    QString title;
    for (const FaultRow& row : fault_rows()) {
        if (title != fault_group_title(row.group))
            text += (title = fault_group_title(row.group)) + ":\n";
        text += QString("  %1\n      %2\n").arg(fault_synopsis(row), row.effect);
    }
    return text;
}

bool set_fault(SimulatedInstrument& instrument, const QString& line, QString& error)
{
    FaultArguments arguments;
    const FaultRow* row = read_fault(line, arguments, error);
    if (row != nullptr)
        row->set(instrument, arguments, *row);
    return row != nullptr;
}

bool check_fault(const QString& line, QString& error)
{
    FaultArguments arguments;
    return read_fault(line, arguments, error) != nullptr;
}
