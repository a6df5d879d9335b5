#pragma once

#include <QDateTime>

/** Puts a clock that the test sets by hand behind Time::now(); the real one is back when it dies. */
class TestClock
{
public:
    explicit TestClock(const QDateTime& start = QDateTime(QDate(2020, 4, 3), QTime(9, 15)));
    ~TestClock();
    TestClock(const TestClock&) = delete;
    TestClock& operator=(const TestClock&) = delete;

    void advance_seconds(double seconds);

    QDateTime now;
};
