#pragma once

#include <QtGlobal>

/** Time that never goes back and goes on while the machine is asleep, in milliseconds. */
class GuardClock
{
public:
    /** `speed` seconds pass in one, for instruments that are simulated in time lapse. */
    explicit GuardClock(double speed);

    qint64 now_ms() const;
    /** The same in real time: what other processes take does not run faster with the instruments. */
    qint64 real_now_ms() const;
    /** The real time in which `ms` pass, but not below `least` and not above `ms`. */
    int real_ms(int ms, int least) const;

private:
    double speed;
};
