#include "charts/point_sweep.h"

#include <QtTest>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

namespace
{

using Lists = std::vector<QList<QPointF>>;

quintptr address(const QPointF& point)
{
    return reinterpret_cast<quintptr>(&point);
}

/** Lists of so many points each, filled a point each in turn. */
Lists filled_in_turn(const std::vector<int>& counts)
{
    Lists lists(counts.size());
    for (int i = 0; i < *std::max_element(counts.begin(), counts.end()); ++i) {
        for (std::size_t list = 0; list < counts.size(); ++list) {
            if (i < counts[list])
                lists[list].append(QPointF(i, list));
        }
    }
    return lists;
}

Lists filled_one_after_another(int lists_count, int points)
{
    Lists lists(lists_count);
    for (QList<QPointF>& list : lists) {
        for (int i = 0; i < points; ++i)
            list.append(QPointF(i, 0.0));
    }
    return lists;
}

/** The first one records, waits while the second one goes on, and records again. */
Lists one_paused()
{
    Lists lists(2);
    for (int i = 0; i < 6000; ++i) {
        if (i < 100 || i > 4000)
            lists[0].append(QPointF(i, 0.0));
        lists[1].append(QPointF(i, 1.0));
    }
    return lists;
}

/** Puts the nodes of each list in the order of their addresses, whatever the allocator did. */
Lists in_order_of_memory(Lists lists)
{
    for (QList<QPointF>& list : lists) {
        for (int i = 1; i < list.size(); ++i) {
            for (int j = i;
                 j > 0 && address(qAsConst(list).at(j)) < address(qAsConst(list).at(j - 1)); --j)
                list.swapItemsAt(j, j - 1);
        }
    }
    return lists;
}

Lists strewn(Lists lists)
{
    std::mt19937 random(7);
    for (QList<QPointF>& list : lists) {
        for (int i = 1; i < list.size(); ++i)
            list.swapItemsAt(i, std::uniform_int_distribution<int>(0, i)(random));
    }
    return lists;
}

QVector<const QList<QPointF>*> pointers_to(const Lists& lists)
{
    QVector<const QList<QPointF>*> pointers;
    for (const QList<QPointF>& list : lists)
        pointers.append(&list);
    return pointers;
}

std::vector<PointRun> runs_of(const Lists& lists)
{
    std::vector<PointRun> runs;
    PointSweep sweep(pointers_to(lists));
    PointRun run{};
    while (sweep.next(run))
        runs.push_back(run);
    return runs;
}

/** Where the points begin that no run has had yet, but for those of one list. */
quintptr lowest_but_for(int list, const std::vector<PointIterator>& rests, const Lists& lists)
{
    quintptr lowest = std::numeric_limits<quintptr>::max() - PointSweep::WINDOW;
    for (int i = 0; i < int(lists.size()); ++i) {
        if (i != list && rests[i] != lists[i].constEnd())
            lowest = std::min(lowest, address(*rests[i]));
    }
    return lowest;
}

}  // namespace

Q_DECLARE_METATYPE(Lists)

class PointSweepTest : public QObject
{
    Q_OBJECT

private slots:
    void nothing_has_no_run();
    void every_point_comes_once_and_in_order_data();
    void every_point_comes_once_and_in_order();
    void no_list_runs_ahead_in_memory_data();
    void no_list_runs_ahead_in_memory();
    void a_run_goes_on_to_the_end_of_its_piece_of_memory();
    void lists_that_lie_apart_are_one_run_each();
};

void PointSweepTest::nothing_has_no_run()
{
    QVERIFY(runs_of({}).empty());
    QVERIFY(runs_of(Lists(3)).empty());
}

void PointSweepTest::every_point_comes_once_and_in_order_data()
{
    QTest::addColumn<Lists>("lists");
    QTest::newRow("one point") << Lists{{QPointF(1.0, 2.0)}};
    QTest::newRow("in turn") << filled_in_turn({3000, 3000, 3000});
    QTest::newRow("of different lengths") << filled_in_turn({0, 1, 31, 32, 33, 64, 65, 2500, 0});
    QTest::newRow("one after another") << filled_one_after_another(4, 2000);
    QTest::newRow("strewn over memory") << strewn(filled_in_turn({2000, 500, 2000}));
    QTest::newRow("more lists than a step has points")
        << strewn(filled_in_turn(std::vector<int>(100, 150)));
}

void PointSweepTest::every_point_comes_once_and_in_order()
{
    QFETCH(Lists, lists);
    const Lists& constant = lists;
    std::vector<PointIterator> rests;
    for (const QList<QPointF>& list : constant)
        rests.push_back(list.constBegin());
    for (const PointRun& run : runs_of(constant)) {
        QVERIFY(run.begin != run.end);
        QVERIFY(run.begin == rests.at(run.list));
        rests[run.list] = run.end;
    }
    for (std::size_t i = 0; i < constant.size(); ++i)
        QVERIFY(rests[i] == constant[i].constEnd());
}

void PointSweepTest::no_list_runs_ahead_in_memory_data()
{
    QTest::addColumn<Lists>("lists");
    QTest::newRow("in turn") << in_order_of_memory(filled_in_turn({3000, 3000, 3000}));
    QTest::newRow("begun and ended at different times")
        << in_order_of_memory(filled_in_turn({500, 3000, 1500}));
    QTest::newRow("one after another") << in_order_of_memory(filled_one_after_another(3, 2000));
    QTest::newRow("one paused") << in_order_of_memory(one_paused());
}

void PointSweepTest::no_list_runs_ahead_in_memory()
{
    QFETCH(Lists, lists);
    const Lists& constant = lists;
    std::vector<PointIterator> rests;
    for (const QList<QPointF>& list : constant)
        rests.push_back(list.constBegin());
    for (const PointRun& run : runs_of(constant)) {
        const quintptr limit = lowest_but_for(run.list, rests, constant) + PointSweep::WINDOW;
        QVERIFY(address(*run.begin) < limit);
        // Addresses are looked at now and then only.
        if (run.end - run.begin > 32)
            QVERIFY(address(run.end[-33]) < limit);
        rests[run.list] = run.end;
    }
}

void PointSweepTest::a_run_goes_on_to_the_end_of_its_piece_of_memory()
{
    const Lists lists = in_order_of_memory(filled_in_turn({3000, 3000, 3000}));
    quintptr lowest = std::numeric_limits<quintptr>::max();
    quintptr highest = 0;
    for (const QList<QPointF>& list : lists) {
        lowest = std::min(lowest, address(list.first()));
        highest = std::max(highest, address(list.last()));
    }
    const std::size_t pieces = (highest - lowest) / PointSweep::WINDOW + 1;
    const std::size_t runs = runs_of(lists).size();
    QVERIFY(pieces > 5);
    QVERIFY(runs > pieces);
    QVERIFY(runs <= 3 * (pieces + 1));
}

void PointSweepTest::lists_that_lie_apart_are_one_run_each()
{
    const Lists lists = in_order_of_memory(filled_one_after_another(3, 5000));
    std::vector<int> order{0, 1, 2};
    const auto begins_lower = [&lists](int a, int b) {
        return address(lists[a].first()) < address(lists[b].first());
    };
    std::sort(order.begin(), order.end(), begins_lower);
    for (int i = 1; i < 3; ++i)
        QVERIFY(address(lists[order[i - 1]].last()) < address(lists[order[i]].first()));

    const std::vector<PointRun> runs = runs_of(lists);
    QCOMPARE(runs.size(), std::size_t(3));
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(runs[i].list, order[i]);
        QVERIFY(runs[i].end == lists[order[i]].constEnd());
    }
}

QTEST_GUILESS_MAIN(PointSweepTest)
#include "tst_point_sweep.moc"
