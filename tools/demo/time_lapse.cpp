#include "demo/time_lapse.h"

#include "common/date_time.h"

#include <QElapsedTimer>

#include <cmath>

void start_time_lapse(double speed)
{
    const QDateTime start = QDateTime::currentDateTime();
    QElapsedTimer since_start;
    since_start.start();
    Time::set_clock([start, since_start, speed] {
        return start.addMSecs(std::llround(double(since_start.elapsed()) * speed));
    });
}
