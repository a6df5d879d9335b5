#include "support/modal_answer.h"
#include "support/no_viewer.h"

#include "app/main_window.h"
#include "config/settings.h"
#include "common/number_row.h"
#include "station/logs/log_format.h"
#include "station/test_station.h"

#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <functional>

// What a very long test costs the operator: start, scroll, tick, page and close of its station.

namespace
{
constexpr int REPEATS = 5;
constexpr double AMPS = 4.0;

double processor_seconds()
{
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

QByteArray cycle_text(int number, int points)
{
    LogFormat::Section section;
    section.number = number;
    section.start = QDateTime(QDate(2020, 4, 3), QTime(9, 15)).addDays(number);
    QString text = LogFormat::discharge_section_header(section);
    for (int i = 0; i < points; ++i) {
        NumberRow row;
        const double volts = 25.0 - i * 3.0 / points + 0.02 * std::sin(i * 0.7 + number);
        const double amp_hours = i * AMPS / 3600.0;
        LogFormat::put_discharge_row(row, i, amp_hours, volts, AMPS, i % 450 == 449 ? 0.06 : 0.0);
        text += row.view();
    }
    return text.toUtf8();
}

void write_log(const QString& path, int cycles, int points)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("The log cannot be made.");
    file.write(LogFormat::file_header("Pack", "1").toUtf8());
    for (int number = 1; number <= cycles; ++number)
        file.write(cycle_text(number, points));
}

void settle()
{
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
}

double seconds_of(const std::function<void()>& work)
{
    const double before = processor_seconds();
    work();
    settle();
    return processor_seconds() - before;
}

/** The least of some: the rest is others' work. */
double least_of(const std::function<void()>& work)
{
    double least = seconds_of(work);
    for (int i = 1; i < REPEATS; ++i)
        least = std::min(least, seconds_of(work));
    return least;
}

void scroll_all_ways(MainWindow& window)
{
    for (QScrollArea* area : window.findChildren<QScrollArea*>()) {
        for (QScrollBar* bar : {area->verticalScrollBar(), area->horizontalScrollBar()}) {
            bar->setValue(bar->maximum());
            settle();
            bar->setValue(bar->minimum());
            settle();
        }
    }
}
}  // namespace

/** long CYCLES POINTS: seconds of the processor to start, scroll, tick, page and close. */
int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    if (!Settings::load())
        return 1;
    Settings::set_log_dir(folder.path());
    Settings::set_pdf_dir(folder.path());
    if (!Settings::save())  // the window loads them anew
        return 1;
    const NoViewer no_viewer;
    const int cycles = QByteArray(argv[1]).toInt();
    const int points = QByteArray(argv[2]).toInt();
    const QString log = folder.filePath("Pack_1.csv");
    write_log(log, cycles, points);
    if (!qEnvironmentVariableIsEmpty("KEST_ENDURANCE_BROKEN"))
        write_log(log, cycles - 1, points);

    MainWindow window(nullptr);
    window.show();
    auto* station = new TestStation(&window, nullptr);
    window.add_station(station);
    settle();
    const auto press = [station](const char* button) {
        station->findChild<QPushButton*>(button)->click();
    };
    ModalAnswer answers;
    const double start = seconds_of([&] {
        answers.choose_path(log);
        press("pbLoadLog");
        window.slot_refresh_charts();
    });
    if (station->cycles.size() != cycles)
        qFatal("The log has not been loaded.");
    const double scroll = least_of([&] { scroll_all_ways(window); });
    const double tick = least_of([&] {
        station->cycles.last()->checkbox.click();
        window.slot_refresh_charts();
    });
    const double page = least_of([&] { press("pbGeneratePDF"); });
    const double close = seconds_of([&] { press("pbClose"); });
    std::printf("%.6f %.6f %.6f %.6f %.6f\n", start, scroll, tick, page, close);
    return 0;
}
