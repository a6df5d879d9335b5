#pragma once

#include "records/cycle.h"
#include "records/event_log.h"
#include "records/section.h"

/** Something about a log that does not keep it from loading. */
struct Warning
{
    qint64 line = 0;  ///< 0 for the file as a whole
    QString text;
};

/** What a data log holds, without its rows. */
struct LogFile
{
    QString path;
    LogGeneration generation = LogGeneration::None;
    bool accepted = false;  ///< the application would load the content
    LogRefusal refusal;     ///< if not accepted
    QString battery;
    QString serial_number;
    TestParameters parameters;  ///< the last ones
    QList<Section> sections;    ///< up to the refusal
    QList<Cycle> cycles;
    EventLog events;
    QList<Warning> warnings;  ///< of each kind the first few

    /** Sections that have the kind and number of one before. */
    int repeated_sections() const;
    /** Of all discharges. */
    double amp_hours() const;
};
