#include "bench_station.h"
#include "bench_table.h"

#include "app/main_window.h"
#include "charts/paint_box.h"
#include "station/test_station.h"

#include <QApplication>
#include <QCursor>
#include <QElapsedTimer>
#include <QPainter>
#include <QSplitter>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{
constexpr int STATIONS = 5;
constexpr int CYCLES = 10;
constexpr int POINTS = 18000;  // a discharge of five hours, one line a second
constexpr int SECONDS = 20;
const QSize CHART_SIZE(1200, 500);

/** Times what the event loop does in one go, be it by the clock on the wall or by the CPU's. */
class TimedApplication : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        if (depth++ > 0)
            return leave(QApplication::notify(receiver, event));
        const double cpu_before = cpu_seconds();
        QElapsedTimer wall;
        wall.start();
        const bool result = QApplication::notify(receiver, event);
        longest_wall_ms = std::max(longest_wall_ms, double(wall.nsecsElapsed()) / 1e6);
        longest_cpu_ms = std::max(longest_cpu_ms, (cpu_seconds() - cpu_before) * 1e3);
        return leave(result);
    }

    double longest_wall_ms = 0.0;
    double longest_cpu_ms = 0.0;

private:
    bool leave(bool result)
    {
        --depth;
        return result;
    }

    int depth = 0;
};

void run_for(int milliseconds)
{
    QTimer::singleShot(milliseconds, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
}

/** The logs of a week, as previews show them. */
void add_previews(MainWindow& window)
{
    for (int i = 0; i < STATIONS; ++i) {
        auto* station = new TestStation(&window, nullptr);
        window.add_station(station);
        for (int number = 0; number < CYCLES; ++number) {
            auto* cycle = new TestCycle;
            for (int k = 0; k < POINTS; ++k) {
                const double amp_hours = k * 4.0 / 3600.0;
                const double noise = 0.02 * std::sin(k * 0.7 + number);
                const double volts = 25.0 - number * 0.05 - i * 0.2 - k * 0.0002 + noise;
                cycle->voltage_vs_amphours.add(amp_hours, std::round(volts * 100.0) / 100.0);
                cycle->current_vs_amphours.add(amp_hours, 4.0 + 0.1 * (k * 7 % 3) + i * 0.3);
            }
            station->cycles.append(cycle);
            station->current_cycle = cycle;
        }
        station->color_combobox.setCurrentIndex(i + 1);
    }
    window.rebuild_cycle_checkbox_grid();
}
}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    TimedApplication application(argc, argv);
    const QTemporaryDir folder;
    use_bench_settings(folder.path());
    MainWindow window(nullptr);
    add_previews(window);
    window.showNormal();
    run_for(2000);
    auto* charts = window.findChild<QSplitter*>("splitter2");
    auto* upper = qobject_cast<PaintBox*>(charts->widget(0));
    auto* lower = qobject_cast<PaintBox*>(charts->widget(1));
    const QSize missing(CHART_SIZE.width() - upper->width(),
                        2 * CHART_SIZE.height() - upper->height() - lower->height());
    window.resize(window.size() + missing);
    run_for(500);
    QCursor::setPos(upper->mapToGlobal(upper->rect().center()));
    run_for(1000);

    int paints = 0;
    for (PaintBox* box : {upper, lower})
        QObject::connect(box, &PaintBox::sig_paint, [&paints] { ++paints; });
    application.longest_wall_ms = 0.0;
    application.longest_cpu_ms = 0.0;
    const double before = cpu_seconds();
    run_for(SECONDS * 1000);
    const double share = (cpu_seconds() - before) / SECONDS * 100.0;
    std::printf("%d charts of %d x %d pixels painted in %d seconds, %.1f ms of CPU each; under the "
                "mouse: %s\n",
                paints, upper->width(), upper->height(), SECONDS,
                share / 100.0 * SECONDS / paints * 1e3, qPrintable(upper->toolTip().simplified()));
    print_bench_table({
        {"two charts of 900,000 points with hover, 3 a second", share, 0.0, 0.0, "%", 7.5},
        {"longest stall of the event loop", application.longest_wall_ms, 0.0, 0.0, "ms"},
        {"the same by the CPU's clock", application.longest_cpu_ms, 0.0, 0.0, "ms"},
    });
    return 0;
}
