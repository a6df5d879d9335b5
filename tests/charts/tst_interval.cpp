#include "charts/interval.h"
#include "support/test_program.h"

#include <QtTest>

class IntervalTest : public QObject
{
    Q_OBJECT

private slots:
    void a_fresh_interval_is_empty();
    void one_value_makes_both_ends_equal();
    void values_widen_but_never_narrow();
    void nan_changes_nothing();
    void an_interval_is_included_end_by_end();
    void an_empty_interval_widens_to_infinity();
    void clear_makes_it_empty_again();
};

void IntervalTest::a_fresh_interval_is_empty()
{
    const Interval interval;
    QCOMPARE(interval.min, qInf());
    QCOMPARE(interval.max, -qInf());
    QCOMPARE(interval.size(), -qInf());
}

void IntervalTest::one_value_makes_both_ends_equal()
{
    Interval interval;
    interval.include(-3.5);
    QCOMPARE(interval.min, -3.5);
    QCOMPARE(interval.max, -3.5);
    QCOMPARE(interval.size(), 0.0);
}

void IntervalTest::values_widen_but_never_narrow()
{
    Interval interval;
    for (const double value : {2.0, 7.0, 5.0, -1.0})
        interval.include(value);
    QCOMPARE(interval.min, -1.0);
    QCOMPARE(interval.max, 7.0);
    QCOMPARE(interval.size(), 8.0);
}

void IntervalTest::nan_changes_nothing()
{
    Interval interval;
    interval.include(qQNaN());
    QCOMPARE(interval.min, qInf());
    QCOMPARE(interval.max, -qInf());
    interval.include(1.0);
    interval.include(qQNaN());
    QCOMPARE(interval.min, 1.0);
    QCOMPARE(interval.max, 1.0);
}

void IntervalTest::an_interval_is_included_end_by_end()
{
    Interval other;
    other.include(2.0);
    other.include(9.0);
    Interval interval;
    interval.include(4.0);
    interval.include(other);
    QCOMPARE(interval.min, 2.0);
    QCOMPARE(interval.max, 9.0);
}

void IntervalTest::an_empty_interval_widens_to_infinity()
{
    Interval empty;
    Interval interval;
    interval.include(4.0);
    interval.include(empty);
    QCOMPARE(interval.min, -qInf());
    QCOMPARE(interval.max, qInf());
}

void IntervalTest::clear_makes_it_empty_again()
{
    Interval interval;
    interval.include(4.0);
    interval.clear();
    QCOMPARE(interval.min, qInf());
    QCOMPARE(interval.max, -qInf());
}

KEST_GUILESS_TEST(IntervalTest)
#include "tst_interval.moc"
