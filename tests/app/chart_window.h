#pragma once

#include "support/modal_answer.h"
#include "support/test_clock.h"

#include <QImage>
#include <QList>
#include <QPointF>
#include <QTemporaryDir>

#include <memory>

class MainWindow;
class PaintBox;
class QTimer;
class Series;
class TestCycle;
class TestStation;

/**
 * The window on the screen, with stations in the middle of a discharge. Its timers stand still, so
 * that a chart is painted when the test or the operator asks for it.
 */
class ChartWindow
{
public:
    ChartWindow();
    ~ChartWindow();
    ChartWindow(const ChartWindow&) = delete;
    ChartWindow& operator=(const ChartWindow&) = delete;

    /** "Station 31" with the serial number 1031; its instrument's port cannot be opened. */
    TestStation* add_station(int id);
    /** The next discharge of a station, whose volts are `points`, over 10 A and 100 milliohms. */
    TestCycle* add_cycle(TestStation* station, const QList<QPointF>& points);

    /** A widget of the window by its object name. */
    template <typename Widget> Widget* widget(const char* name) const
    {
        return static_cast<Widget*>(find(name));
    }

    /** Moves the mouse to a pixel of a box. */
    void hover(const PaintBox* box, QPoint pixel) const;
    /** Moves the mouse off the window. */
    void hover_nowhere() const;
    /** The tooltip of a box with the mouse at a point of a curve, in the latest layout. */
    QString told_at(PaintBox* box, const Series& curve, int point) const;
    /** Presses, moves and releases the mouse over a box. */
    static void drag(PaintBox* box, QPoint from, QPoint to);

    /** Lets everything happen that has been asked for. */
    void settle() const;
    /** What a box of the window looks like on the screen. */
    QImage shown(const PaintBox* box) const;

    QTemporaryDir folder;
    TestClock clock;
    ModalAnswer answers;
    std::unique_ptr<MainWindow> window;
    PaintBox* header = nullptr;
    PaintBox* upper = nullptr;
    PaintBox* lower = nullptr;
    QTimer* refresh_timer = nullptr;  ///< of the charts

private:
    QWidget* find(const char* name) const;
};

/** Counts how often a box is painted from now on. */
class PaintCounter
{
public:
    explicit PaintCounter(PaintBox* box);

    int count = 0;

private:
    QObject context;
};

/** The curve of a discharge in few points. */
const QList<QPointF> CURVE = {{0.0, 42.0}, {1.0, 41.0}, {2.0, 40.5}, {3.0, 39.0}};
