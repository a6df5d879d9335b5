#include "guard/frozen_watch.h"

#include "support/test_program.h"

Q_DECLARE_METATYPE(QVector<QVector<int>>)

namespace
{
constexpr int STOPPED = -1;   // in place of the bytes of the first line: the program is stopped
constexpr int ASLEEP = -2;    // an hour passes before the next look
constexpr int NOT_HELD = -3;  // the line is closed

/** A look a second at the lines "a", "b", ...; whether the program counts as frozen at the end. */
bool frozen_after(const QVector<QVector<int>>& looks)
{
    FrozenWatch watch(5000, 5000);
    qint64 now = 0;
    for (const QVector<int>& look : looks) {
        now += look.first() == ASLEEP ? 3600000 : 1000;
        QMap<QString, int> waiting;
        for (int i = 0; i < look.size(); ++i)
            if (look[i] >= 0)
                waiting[QString(QChar('a' + i))] = look[i];
        if (look.first() != ASLEEP)
            watch.look(now, waiting, look.first() == STOPPED);
    }
    return watch.is_frozen();
}

/** Looks at one line on which bytes pile up: 30 more each second. */
QVector<QVector<int>> pile(int looks, int first = 30)
{
    QVector<QVector<int>> all;
    for (int i = 0; i < looks; ++i)
        all << QVector<int>{first + 30 * i};
    return all;
}
}  // namespace

class FrozenWatchTest : public QObject
{
    Q_OBJECT

private slots:
    void it_tells_a_frozen_program_data();
    void it_tells_a_frozen_program();
};

void FrozenWatchTest::it_tells_a_frozen_program_data()
{
    QTest::addColumn<QVector<QVector<int>>>("looks");
    QTest::addColumn<bool>("frozen");
    const auto row = [](const char* name, const QVector<QVector<int>>& looks, bool frozen) {
        QTest::newRow(name) << looks << frozen;
    };
    const QVector<QVector<int>> nothing = {{0}};
    row("nothing ever waits", {{0}, {0}, {0}, {0}, {0}, {0}, {0}, {0}}, false);
    row("no line is held", {{NOT_HELD}, {NOT_HELD}, {NOT_HELD}, {NOT_HELD}, {NOT_HELD}, {NOT_HELD}},
        false);
    row("bytes pile up", nothing + pile(6), true);
    row("not for long enough yet", nothing + pile(4), false);
    row("a full line grows no more",
        nothing + pile(3) + QVector<QVector<int>>{{4095}, {4095}, {4095}, {4095}}, true);
    row("the same few bytes all the time", {{0}, {30}, {30}, {30}, {30}, {30}, {30}, {30}, {30}},
        false);
    row("a line caught on its way each time", {{0}, {4}, {9}, {14}, {20}, {25}, {30}, {30}, {30}},
        false);
    row("somebody takes some", nothing + pile(4) + pile(4, 90), false);
    row("somebody takes all", nothing + pile(4) + nothing + pile(4), false);
    row("again after that", nothing + pile(4) + nothing + pile(6), true);
    row("one line stands, the other is read",
        {{0, 0}, {30, 30}, {60, 0}, {90, 30}, {120, 0}, {150, 30}, {180, 0}, {210, 30}}, false);
    row("one line stands, the other is empty",
        {{0, 0}, {30, 0}, {60, 0}, {90, 0}, {120, 0}, {150, 0}, {180, 0}, {210, 0}}, true);
    row("both stand", {{0, 0}, {30, 9}, {60, 9}, {90, 9}, {120, 9}, {150, 9}, {180, 9}}, true);
    row("a line is closed",
        {{30, 30},
         {60, 60},
         {90, 90},
         {120, 120},
         {150, NOT_HELD},
         {180, NOT_HELD},
         {210, NOT_HELD}},
        false);
    row("stopped",
        {{STOPPED, 30},
         {STOPPED, 60},
         {STOPPED, 90},
         {STOPPED, 120},
         {STOPPED, 150},
         {STOPPED, 180},
         {STOPPED, 210}},
        false);
    row("asleep", nothing + pile(4) + QVector<QVector<int>>{{ASLEEP}} + pile(3, 150), false);
    row("frozen on after a sleep",
        nothing + pile(4) + QVector<QVector<int>>{{ASLEEP}} + pile(7, 150), true);
}

void FrozenWatchTest::it_tells_a_frozen_program()
{
    QFETCH(QVector<QVector<int>>, looks);
    QTEST(frozen_after(looks), "frozen");
}

KEST_GUILESS_TEST(FrozenWatchTest)
#include "tst_frozen_watch.moc"
