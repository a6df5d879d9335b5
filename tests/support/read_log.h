#pragma once

#include "charts/series.h"
#include "station/logs/log_sink.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <list>

/** One discharge as a reader gave it. */
struct ReadCycle
{
    QDateTime start_time;
    Series voltage_vs_amphours;
    Series current_vs_amphours;
    Series internal_resistance;
    double amp_hours = 0.0;
    double watt_hours = 0.0;
};

/** What a reader made of a log, without a station; the parameters start as a new station's. */
struct ReadLog
{
    /** Puts the bytes behind the mark through the reader of its generation, as a station does. */
    explicit ReadLog(const QByteArray& bytes);
    ReadLog(const ReadLog&) = delete;
    ReadLog& operator=(const ReadLog&) = delete;

    /** The same test, point by point and bit by bit. */
    bool same_as(const ReadLog& other) const;

    bool accepted = false;
    QString profile_name;
    QString serial_number;
    TestParameters parameters;
    LogRefusal refusal;  ///< the reader's; nobody compares it
    std::list<ReadCycle> cycles;

    const ReadCycle& cycle(int index) const;
    /** Rows of all discharges. */
    int row_count() const;
};

bool same_parameters(const TestParameters& a, const TestParameters& b);

/** Whether both hold the same bits: other than with ==, 0.0 is not -0.0 and NaN is itself. */
bool same_bits(double a, double b);
