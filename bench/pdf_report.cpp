#include "bare_page.h"
#include "bench_station.h"
#include "bench_table.h"
#include "config/settings.h"
#include "report/report_layout.h"
#include "station/test_station.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QUrl>

#include <cmath>
#include <cstdio>

namespace
{
constexpr int CYCLES = 5;
constexpr int POINTS = 18000;  // a discharge of five hours, one line a second
constexpr double AMPS = 4.0;
constexpr int SECONDS_PER_READING = 450;

const QSize PAGE(4934, 6434);
constexpr int TABLE_HEIGHT = 600;

/** Takes the place of the viewer. */
class NoViewer : public QObject
{
    Q_OBJECT

public slots:
    void slot_open(const QUrl&)
    {
    }
};

void add_cycle(TestStation& station, int number)
{
    auto* cycle = new TestCycle;
    cycle->start_time = QDateTime(QDate(2020, 4, 3 + number), QTime(9, 15));
    for (int i = 0; i < POINTS; ++i) {
        const double amp_hours = i * AMPS / 3600.0;
        const double volts = 25.0 - number * 0.05 - i * 0.0002 + 0.02 * std::sin(i * 0.7 + number);
        cycle->voltage_vs_amphours.add(amp_hours, std::round(volts * 100.0) / 100.0);
        cycle->current_vs_amphours.add(amp_hours, AMPS);
        if (i % SECONDS_PER_READING == SECONDS_PER_READING - 1)
            cycle->internal_resistance.add(amp_hours, 60.0 + number + 0.001 * i);
    }
    cycle->amp_hours = POINTS * AMPS / 3600.0;
    cycle->watt_hours = cycle->amp_hours * 23.0;
    station.cycles.append(cycle);
}

void dress(LineChart& chart, const QString& title, const QString& y_caption)
{
    chart.top_axis.caption = title;
    chart.bottom_axis.caption = "Amp-Hours (Ah)";
    chart.left_axis.caption = y_caption;
    chart.bottom_axis.forced_range.min = 0.0;
    chart.left_axis.forced_range.min = 0.0;
}

/** A station without an instrument that has five discharges on record. */
struct Bench
{
    Bench() : bare_path(folder.filePath("bare.pdf")), path(folder.filePath("Pack A_1042.pdf"))
    {
        use_bench_settings(folder.path());
        load_bench_help();
        QDesktopServices::setUrlHandler("file", &no_viewer, "slot_open");
        dress(TestStation::voltage_vs_amphours_chart, "Voltage vs. Amp-Hours", "Voltage (V)");
        dress(TestStation::internal_resistance_chart, "Internal Resistance vs. Amp-Hours",
              "Internal Resistance (mOhm)");
        station = std::make_unique<TestStation>(nullptr, nullptr);
        station->profile_name = "Pack A";
        station->serial_number = "1042";
        if (!station->begin_log())
            qFatal("The logs of the bench cannot be made.");
        for (int i = 0; i < CYCLES; ++i)
            add_cycle(*station, i);
    }

    ~Bench()
    {
        QDesktopServices::unsetUrlHandler("file");
    }

    void generate() const
    {
        QMetaObject::invokeMethod(station.get(), "on_pbGeneratePDF_clicked", Qt::DirectConnection);
    }

    /** After a report, whose layout it takes over. */
    BarePage bare_page() const;

    QTemporaryDir folder;
    NoViewer no_viewer;
    QString bare_path;
    QString path;
    std::unique_ptr<TestStation> station;
};

void add_table(BarePage& page)
{
    const char* const rows[] = {"Discharge # 1", "2020-04-03", "20.00 Ah",
                                "460.00 Wh",     "4.00 A",     "69 mOhm"};
    const char* const labels[] = {"",
                                  "Date",
                                  "Discharge Capacity",
                                  "Discharge Energy",
                                  "Avg. Discharge Current",
                                  "Avg. Int. Resistance"};
    for (int row = 0; row <= 6; ++row)
        page.lines << QLine(450, 1500 + 100 * row, 4000, 1500 + 100 * row);
    for (int col = 0; col <= CYCLES + 1; ++col)
        page.lines << QLine(450 + 600 * col, 1500, 450 + 600 * col, 2100);
    for (int row = 0; row < 6; ++row) {
        page.texts << BareText{QPointF(471, 1573 + 100 * row), labels[row]};
        for (int col = 1; col <= CYCLES; ++col)
            page.texts << BareText{QPointF(471 + 600 * col, 1573 + 100 * row), rows[row]};
    }
}

BarePage Bench::bare_page() const
{
    const ReportLayout layout(600, PAGE);
    BarePage page;
    page.texts << BareText{layout.title() + QPointF(-1000, 100), "Battery Discharge Test Results",
                           16}
               << BareText{layout.subtitle() + QPointF(-500, 100), "Pack A SN: 1042", 16};
    add_table(page);
    page.add_chart(TestStation::voltage_vs_amphours_chart, layout.upper_chart(TABLE_HEIGHT));
    page.add_chart(TestStation::internal_resistance_chart, layout.lower_chart(TABLE_HEIGHT));
    page.texts << BareText{layout.footer() + QPointF(-1000, 0),
                           "Software Version: v1.0.0b1, Apr 03 2020", 6};
    for (const TestCycle* cycle : station->cycles) {
        page.curves << &cycle->voltage_vs_amphours;
        page.dots << &cycle->internal_resistance;
        page.currents << &cycle->current_vs_amphours;
    }
    return page;
}

BenchRow size_row(const char* work, const QString& path, double target)
{
    return {work, QFileInfo(path).size() / 1000.0, 0.0, 0.0, "kB", target};
}

/** Without an image: a header file that is none is left out. */
std::vector<BenchRow> page_without_image(const Bench& bench)
{
    const QString no_image = bench.folder.filePath("no image.png");
    QFile(no_image).open(QIODevice::WriteOnly);
    Settings::set_header_image_filename(no_image);
    bench.generate();
    const BarePage bare = bench.bare_page();
    const BenchRow time = measure(
        "a page of 5 x 18000 points, no image", 1, 1.6, [&] { bench.generate(); },
        [&] { bare.print(bench.bare_path); });
    return {time, size_row("its file", bench.path, 60.0),
            size_row("the plain loop's file", bench.bare_path, 0.0)};
}

std::vector<BenchRow> page_with_image(const Bench& bench)
{
    Settings::set_header_image_filename("");
    bench.generate();
    BarePage bare = bench.bare_page();
    bare.image = ":/kest_pdf_header.png";
    bare.image_rect = ReportLayout(600, PAGE).header_image(QSize(2400, 240));
    const BenchRow time = measure(
        "the same with the header image", 1, 1.6, [&] { bench.generate(); },
        [&] { bare.print(bench.bare_path); });
    return {time, size_row("its file", bench.path, 0.0),
            size_row("the plain loop's file", bench.bare_path, 0.0)};
}
}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const Bench bench;
    std::printf("From the button to the file; the limit draws the same page by plain loops\n\n");
    std::vector<BenchRow> rows = page_without_image(bench);
    for (const BenchRow& row : page_with_image(bench))
        rows.push_back(row);
    print_bench_table(rows);
    return 0;
}

#include "pdf_report.moc"
