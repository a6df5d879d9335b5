#pragma once

#include "station/logs/log_row.h"
#include "station/test_parameters.h"

#include <QDateTime>
#include <QString>

enum class LogGeneration
{
    None,  ///< no data log
    Older,
    Current
};

/** A line of a log, without its end. */
struct LogLine
{
    qint64 number = 0;  ///< 1 for the first of the file
    QString text;
};

/** Where and why a reader refused a log. */
struct LogRefusal
{
    qint64 line = 0;  ///< 1 for the first of the file
    int column = 0;   ///< 1 for the first character of the line
    QString reason;   ///< "'abc' is no number": no sentence, for one to be made with it
};

/**
 * Where a log goes while it is read, in the order of its lines, and without a copy in between.
 *
 * What a reader has understood stays there, also when it refuses a later line; what a log does not
 * tell stays as it was. Listeners take what they need: left alone, each step does nothing.
 */
class LogSink
{
public:
    virtual ~LogSink() = default;

    virtual void begin_log(LogGeneration)
    {
    }
    virtual void begin_charge(const LogLine&)
    {
    }
    /** A discharge, and with it a cycle. */
    virtual void begin_discharge(const LogLine&)
    {
    }
    /** "Test Complete" of an older log: what follows belongs to no section. */
    virtual void end_test(const LogLine&)
    {
    }
    /**
     * The start of a section; in an older log, which knows no other, of the whole test. Invalid if the
     * text is none: nobody looks at the start of a charge.
     */
    virtual void take_charge_start(const QDateTime&)
    {
    }
    virtual void take_discharge_start(const QDateTime&)
    {
    }
    /** A row of a discharge. */
    virtual void take_row(const LogRow&, const LogLine&)
    {
    }
    /** A line that makes no curve: titles and rows of a charge, and an older log's rows outside. */
    virtual void take_other_line(const LogLine&)
    {
    }
    /** The last step, in place of all lines from this one on. */
    virtual void refuse(const LogRefusal&)
    {
    }

    QString profile_name;
    QString serial_number;
    TestParameters parameters;
};
