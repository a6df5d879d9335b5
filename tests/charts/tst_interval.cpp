#include "charts/interval.h"
#include "support/test_program.h"

#include <QtTest>

using Values = QVector<double>;

Q_DECLARE_METATYPE(Values)

class IntervalTest : public QObject
{
    Q_OBJECT

private slots:
    void values_widen_but_never_narrow_data();
    void values_widen_but_never_narrow();
    void an_interval_is_included_end_by_end();
    void an_empty_interval_widens_to_infinity();
    void clear_makes_it_empty_again();
};

void IntervalTest::values_widen_but_never_narrow_data()
{
    QTest::addColumn<Values>("values");
    QTest::addColumn<double>("min");
    QTest::addColumn<double>("max");
    QTest::newRow("none: empty") << Values{} << qInf() << -qInf();
    QTest::newRow("one: both ends") << Values{-3.5} << -3.5 << -3.5;
    QTest::newRow("several") << Values{2.0, 7.0, 5.0, -1.0} << -1.0 << 7.0;
    QTest::newRow("NaN alone") << Values{qQNaN()} << qInf() << -qInf();
    QTest::newRow("NaN between") << Values{qQNaN(), 1.0, qQNaN()} << 1.0 << 1.0;
}

void IntervalTest::values_widen_but_never_narrow()
{
    QFETCH(Values, values);
    QFETCH(double, min);
    QFETCH(double, max);
    Interval interval;
    for (const double value : values)
        interval.include(value);
    QCOMPARE(interval.min, min);
    QCOMPARE(interval.max, max);
    QCOMPARE(interval.size(), max - min);
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
    Interval interval;
    interval.include(4.0);
    interval.include(Interval());
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
