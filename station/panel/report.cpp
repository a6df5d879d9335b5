#include "station/test_station.h"

#include "common/message_boxes.h"
#include "config/settings.h"
#include "report/report_page.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QPageSize>
#include <QPainter>
#include <QPrinter>
#include <QUrl>

namespace
{
constexpr int DOTS_PER_INCH = 600;

/** Both names in one step: a place marker in the battery's name stays as it is. */
QString report_path(const TestStation& station)
{
    const QString name = QString("%1_%2.pdf").arg(station.profile_name, station.serial_number);
    return QDir(Settings::get_pdf_dir()).filePath(name);
}

/** Null if the file is missing, which is shown, or is no image, which is not. */
QPixmap load_header_image()
{
    QString filename = Settings::get_header_image_filename();
    if (filename.isEmpty())
        filename = ":/kest_pdf_header.png";
    if (!QFile::exists(filename)) {
        show_error(QString("PDF header file (%1) does not exist.").arg(filename));
        return QPixmap();
    }
    return QPixmap(filename);
}

ReportCycle report_cycle(TestCycle* cycle)
{
    ReportCycle seen;
    seen.ticked = cycle->checkbox.checkState() == Qt::Checked;
    seen.start_time = cycle->start_time;
    seen.amp_hours = cycle->amp_hours;
    seen.watt_hours = cycle->watt_hours;
    seen.resistance = cycle->avg_internal_resistance_string();
    seen.voltage_vs_amphours = &cycle->voltage_vs_amphours;
    seen.current_vs_amphours = &cycle->current_vs_amphours;
    seen.internal_resistance = &cycle->internal_resistance;
    return seen;
}

Report report_of(const TestStation& station, const QPixmap& header_image)
{
    Report report;
    report.header_image = header_image;
    report.battery_name = station.profile_name;
    report.serial_number = station.serial_number;
    report.no_data_text = station.no_data_text;
    report.voltage_chart = &TestStation::voltage_vs_amphours_chart;
    report.resistance_chart = &TestStation::internal_resistance_chart;
    for (TestCycle* cycle : station.cycles)
        report.cycles << report_cycle(cycle);
    return report;
}

/** False, without a message on purpose, if the file cannot be begun: its directory is not there, say. */
bool print_report(const TestStation& station, const QString& path)
{
    QPrinter printer(QPrinter::ScreenResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    printer.setPageSize(QPageSize(QPageSize::Letter));
    printer.setResolution(DOTS_PER_INCH);
    QPainter painter;
    if (!painter.begin(&printer))
        return false;

    // The image first: its message lets telemetry in, and only then the figures are taken.
    const QPixmap header_image = load_header_image();
    const ReportLayout layout(printer.resolution(), QSize(printer.width(), printer.height()));
    plot_report(&painter, report_of(station, header_image), layout);
    painter.end();
    return true;
}
}  // namespace

void TestStation::on_pbGeneratePDF_clicked()
{
    if (data_log == nullptr) {
        show_error("No data loaded.");
        return;
    }
    const QString path = report_path(*this);
    if (!print_report(*this, path))
        return;
    if (!Settings::get_pdf_dir().isEmpty() && Settings::get_copy_logs()) {
        archive_file(data_log);
        archive_file(text_log);
    }
    QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}
