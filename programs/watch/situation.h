#pragma once

#include "records/condition.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <limits>

/** What is known of a test beside its condition; what is not known is empty or NaN. */
struct TestFacts
{
    QString battery;
    QString serial_number;
    QString phase;   ///< as the event log tells it
    QString reason;  ///< of the last change of phase
    int cycle = 0;   ///< counted from 1; 0 if not known
    double volts = std::numeric_limits<double>::quiet_NaN();
    double amps = std::numeric_limits<double>::quiet_NaN();  ///< delivered
    double amp_hours = std::numeric_limits<double>::quiet_NaN();
    double milliohms = std::numeric_limits<double>::quiet_NaN();
    qint64 row_age = -1;  ///< seconds since the last row; -1 if there is none
    QDateTime end_from;   ///< the present leg is expected to end between these two
    QDateTime end_to;
    double end_error =
        std::numeric_limits<double>::quiet_NaN();  ///< what 9 of 10 such forecasts have
                                                   ///< kept to, of the time left
};

/**
 * A condition that holds at the time of a look. The watch finds all of them at every look; what is told,
 * to whom and how often is worked out from this list and from the memory of what was told.
 */
struct Situation
{
    QByteArray log;  ///< encoded path of the data log; the folder's for the machine's conditions
    Condition condition = Condition::Ended;
    QDateTime since;  ///< UTC
    TestFacts facts;
    QString detail;  ///< a sentence of figures, as "3 hours of writing are left."
};
