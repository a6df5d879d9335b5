#include "charts/point_sweep.h"
#include "support/test_program.h"

#include <QtTest>

#include <cstdlib>
#include <new>
#include <random>
#include <vector>

namespace
{

/**
 * Where the points of this test lie: each behind the one that was made before it, so that the test
 * decides what lies side by side. Nothing is taken back.
 */
struct Arena
{
    static constexpr std::size_t SIZE = 8 * 1024 * 1024;
    static constexpr std::size_t STRIDE = 64;

    bool holds(const void* block) const
    {
        return block >= bytes && block < bytes + SIZE;
    }

    void* next()
    {
        if (used + STRIDE > SIZE)
            throw std::bad_alloc();
        used += STRIDE;
        return bytes + used - STRIDE;
    }

    alignas(STRIDE) char bytes[SIZE];
    std::size_t used = 0;
    bool open = false;
};

Arena arena;

}  // namespace

void* operator new(std::size_t size)
{
    if (arena.open && size == sizeof(QPointF))
        return arena.next();
    if (void* const block = std::malloc(size))
        return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept
{
    if (!arena.holds(block))
        std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}

namespace
{

using Lists = std::vector<QList<QPointF>>;

/** Of which list, and how many points. */
using Run = QPair<int, int>;
using Runs = QVector<Run>;

void append(QList<QPointF>& list, int count = 1)
{
    arena.open = true;
    for (int i = 0; i < count; ++i)
        list.append(QPointF(list.size(), 0.0));
    arena.open = false;
}

/** A point of each in turn, as stations that run at the same time fill them. */
void append_in_turn(const std::vector<QList<QPointF>*>& lists, int count)
{
    for (int i = 0; i < count; ++i) {
        for (QList<QPointF>* const list : lists)
            append(*list);
    }
}

Lists filled_in_turn(int lists_count, int points)
{
    Lists lists(lists_count);
    std::vector<QList<QPointF>*> all;
    for (QList<QPointF>& list : lists)
        all.push_back(&list);
    append_in_turn(all, points);
    return lists;
}

Lists first_ends_early()
{
    Lists lists(2);
    append_in_turn({&lists[0], &lists[1]}, 100);
    append(lists[1], 500);
    return lists;
}

Lists first_pauses()
{
    Lists lists(2);
    append_in_turn({&lists[0], &lists[1]}, 100);
    append(lists[1], 1000);
    append_in_turn({&lists[0], &lists[1]}, 100);
    return lists;
}

/** The last one first. */
Lists filled_one_after_another()
{
    Lists lists(3);
    append(lists[2], 1000);
    append(lists[1], 2000);
    append(lists[0], 3000);
    return lists;
}

Lists of_lengths(const std::vector<int>& lengths)
{
    Lists lists(lengths.size());
    for (std::size_t i = 0; i < lengths.size(); ++i)
        append(lists[i], lengths[i]);
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

Lists backward(Lists lists)
{
    for (QList<QPointF>& list : lists) {
        for (int i = 0; i < list.size() / 2; ++i)
            list.swapItemsAt(i, list.size() - 1 - i);
    }
    return lists;
}

std::vector<PointRun> runs_of(const Lists& lists)
{
    QVector<const QList<QPointF>*> pointers;
    for (const QList<QPointF>& list : lists)
        pointers.append(&list);
    std::vector<PointRun> runs;
    PointSweep sweep(pointers);
    PointRun run{};
    while (sweep.next(run))
        runs.push_back(run);
    return runs;
}

/** So many points of each list in turn, then the next number of each. */
Runs rounds(int lists_count, const std::vector<int>& counts)
{
    Runs runs;
    for (const int count : counts) {
        for (int list = 0; list < lists_count; ++list)
            runs.append({list, count});
    }
    return runs;
}

}  // namespace

Q_DECLARE_METATYPE(Lists)

class PointSweepTest : public QObject
{
    Q_OBJECT

private slots:
    void nothing_has_no_run();
    void runs_follow_the_memory_data();
    void runs_follow_the_memory();
    void every_point_comes_once_and_in_order_data();
    void every_point_comes_once_and_in_order();
};

void PointSweepTest::nothing_has_no_run()
{
    QVERIFY(runs_of({}).empty());
    QVERIFY(runs_of(Lists(3)).empty());
}

void PointSweepTest::runs_follow_the_memory_data()
{
    // A window has room for 512 points, and addresses are looked at every 32 points.
    QTest::addColumn<Lists>("lists");
    QTest::addColumn<Runs>("runs");
    QTest::newRow("one alone") << filled_in_turn(1, 5000) << Runs{{0, 5000}};
    QTest::newRow("two in turn") << filled_in_turn(2, 600) << rounds(2, {256, 256, 88});
    QTest::newRow("three in turn") << filled_in_turn(3, 500) << rounds(3, {192, 192, 116});
    QTest::newRow("the first ends early")
        << first_ends_early() << Runs{{0, 100}, {1, 416}, {1, 184}};
    QTest::newRow("the first pauses")
        << first_pauses() << Runs{{0, 128}, {1, 416}, {1, 512}, {0, 72}, {1, 272}};
    QTest::newRow("one after another")
        << filled_one_after_another() << Runs{{2, 1000}, {1, 2000}, {0, 3000}};
    QTest::newRow("more lists than 32") << filled_in_turn(40, 100) << rounds(40, {40, 40, 20});
    QTest::newRow("against the memory") << backward(filled_in_turn(2, 600)) << rounds(2, {600});
}

void PointSweepTest::runs_follow_the_memory()
{
    QFETCH(Lists, lists);
    Runs runs;
    for (const PointRun& run : runs_of(lists))
        runs.append({run.list, int(run.end - run.begin)});
    QTEST(runs, "runs");
}

void PointSweepTest::every_point_comes_once_and_in_order_data()
{
    QTest::addColumn<Lists>("lists");
    QTest::newRow("one point") << of_lengths({1});
    QTest::newRow("of different lengths") << of_lengths({0, 1, 31, 32, 33, 64, 65, 2500, 0});
    QTest::newRow("in turn") << filled_in_turn(3, 3000);
    QTest::newRow("paused") << first_pauses();
    QTest::newRow("strewn over memory") << strewn(filled_in_turn(3, 2000));
    QTest::newRow("many, strewn over memory") << strewn(filled_in_turn(100, 150));
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

KEST_GUILESS_TEST(PointSweepTest)
#include "tst_point_sweep.moc"
