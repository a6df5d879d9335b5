#pragma once

#include "simulator/fault_state.h"

#include <QByteArray>
#include <QString>
#include <QVector>

class SimulatedInstrument;

enum class FaultGroup
{
    Text,
    Time,
    Instrument,
    Port,
    General,
};

/** The words behind a fault's name, checked against its usage and with the defaults filled in. */
struct FaultArguments
{
    double number(int index) const;
    /** A count; -1 for "forever". */
    int lines(int index) const;

    QVector<QByteArray> words;
};

/** One fault that can be asked for. */
struct FaultRow
{
    FaultGroup group;
    const char* name;
    const char* usage;   ///< "<seconds>" must be given, "[lines=1]" has a default
    const char* effect;  ///< for --help and the manual
    void (*set)(SimulatedInstrument& instrument, const FaultArguments& arguments,
                const FaultRow& row);
    LineFault line_fault =
        {};  ///< what becomes of a line; the lines are counted by the first argument
};

/** All faults, group by group. */
const QVector<FaultRow>& fault_rows();

QString fault_group_title(FaultGroup group);

/** "silence <seconds>": what is to be typed. */
QString fault_synopsis(const FaultRow& row);

/** The table as text for --help. */
QString fault_help();

/**
 * Sets a fault by a line such as "silence 10".
 *
 * @return false, with the reason in `error` and the instrument as it was, if the line makes no sense
 */
bool set_fault(SimulatedInstrument& instrument, const QString& line, QString& error);

/** As set_fault, but only looks whether the line makes sense. */
bool check_fault(const QString& line, QString& error);
