#pragma once

#include "station/logs/log_sink.h"

#include <QDateTime>
#include <QList>

enum class SectionKind
{
    Charge,
    Discharge
};

/** A time without rows inside a section. */
struct Gap
{
    qint64 line = 0;       ///< of the row behind it
    double begin = 0.0;    ///< seconds since the section began
    double seconds = 0.0;  ///< its length
};

/** A moment at which the clock, or its zone, was set. */
struct ClockStep
{
    qint64 line = 0;       ///< of the row or the head behind it
    double seconds = 0.0;  ///< forwards; below zero back
};

/** How the rows of a section follow each other. */
struct RowCount
{
    qint64 rows = 0;
    double first_seconds = 0.0;
    double last_seconds = 0.0;
    qint64 gap_count = 0;          ///< longer than LONGEST_INTERVAL
    double gap_seconds = 0.0;      ///< of all gaps
    QList<Gap> gaps;               ///< the first MOST_GAPS of them
    qint64 clock_steps = 0;        ///< between the section before and the end of this one
    qint64 clock_steps_back = 0;   ///< of these
    QList<ClockStep> steps;        ///< the first MOST_GAPS of them
    qint64 rows_out_of_order = 0;  ///< rows with fewer amp-hours than the one before

    static constexpr double LONGEST_INTERVAL = 5.0;  ///< seconds; more is a gap
    static constexpr int MOST_GAPS = 100;

    void add_step(const ClockStep& step);
    /** Rows a second; 0 if that is not known. */
    double rate() const;
};

/** A charge or a discharge, and what is known of it as a whole. */
struct Section
{
    SectionKind kind = SectionKind::Charge;
    int number = 0;   ///< as the log counts; the charge before discharge 1 has number 1, too
    qint64 line = 0;  ///< of its head in the file
    QDateTime start;  ///< local time without a zone; invalid where the log tells none
    TestParameters parameters;
    RowCount count;
    double first_volts = 0.0;
    double lowest_volts = 0.0;
    double last_volts = 0.0;
};
