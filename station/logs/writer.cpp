#include "station/test_station.h"

#include "ui_test_station.h"

#include "common/date_time.h"
#include "common/file.h"
#include "common/message_boxes.h"
#include "common/number_row.h"
#include "config/settings.h"
#include "device/kestrometer.h"
#include "dialogs/preexisting_log_file_dialog.h"
#include "station/logs/log_format.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <fcntl.h>

namespace
{
/** Where a new test writes, and whether an earlier log there is to be read first. */
struct LogPaths
{
    QString csv;
    QString txt;
    bool append = false;
};

/** In the file when the call returns: the stream lives for this one record. */
void write_record(QFile* file, QStringView text)
{
    if (file == nullptr)
        return;
    QTextStream stream(file);
    stream << text;
}

/** A log cut off in mid-line, as by a loss of power, goes on in a line of its own. */
void end_cut_line(QFile* file)
{
    const qint64 end = file->size();
    if (end == 0 || file->pos() != end || !file->seek(end - 1))
        return;
    char last = '\n';
    file->getChar(&last);
    if (last != '\n')
        write_record(file, u"\n");
}

/** The first pair "base (2)", "base (3)" and so on of which neither file exists. */
void take_free_suffix(const QString& base, LogPaths& paths)
{
    int n = 2;
    do {
        // A place marker in the directory or the name takes the number; that is accepted.
        paths.csv = QString(base + " (%2).csv").arg(n);
        paths.txt = QString(base + " (%2).txt").arg(n);
        ++n;
    } while (QFile::exists(paths.csv) || QFile::exists(paths.txt));
}

/** False if the operator cancels. */
bool choose_log_paths(const TestStation& station, LogPaths& paths)
{
    const QString base =
        QDir(station.log_dir).filePath(station.profile_name + "_" + station.serial_number);
    paths.csv = base + ".csv";
    paths.txt = base + ".txt";
    if (!QFile::exists(paths.csv))
        return true;
    PreexistingLogFileDialog dialog(nullptr);
    switch (dialog.get_choice()) {
    case 'A':
        paths.append = true;
        break;
    case 'O':
        QFile::remove(paths.csv);
        QFile::remove(paths.txt);
        break;
    case 'S':
        take_free_suffix(base, paths);
        break;
    default:
        return false;
    }
    return true;
}

/** A log that is open although none should be is closed, and its instrument writes into it no more. */
void replace_logs(TestStation& station, const LogPaths& paths)
{
    station.set_log_all_telemetry(false);
    delete station.data_log;
    delete station.text_log;
    station.data_log = new QFile(paths.csv);
    station.text_log = new QFile(paths.txt);
}
}  // namespace

bool TestStation::begin_log()
{
    failed_assumption(data_log == nullptr, "data log file already set in begin_log()");
    failed_assumption(text_log == nullptr, "text log file already set in begin_log()");
    LogPaths paths;
    if (!choose_log_paths(*this, paths))
        return false;
    replace_logs(*this, paths);
    if (!ui_safe_open_log())
        return false;
    if (paths.append)
        return ui_safe_read_log();
    write_data_log_header();
    share_data_log();
    return true;
}

/**
 * Another station may be given the same file. Each would write at a place of its own, over the other's
 * records; at the end of the file the system now puts each record behind the last, whoever wrote it.
 */
void TestStation::share_data_log()
{
    const int handle = data_log->handle();
    if (data_log->atEnd())
        fcntl(handle, F_SETFL, fcntl(handle, F_GETFL) | O_APPEND);
}

void TestStation::write_data_log_header()
{
    write_record(data_log, LogFormat::file_header(profile_name, serial_number));
}

void TestStation::write_charge_cycle_header()
{
    if (data_log != nullptr)
        end_cut_line(data_log);
    write_record(data_log, LogFormat::charge_section_header(
                               {get_cycle_number() + 1, leg_start_time, parameters()}));
}

void TestStation::write_discharge_cycle_header()
{
    write_record(data_log, LogFormat::discharge_section_header(
                               {get_cycle_number(), current_cycle->start_time, parameters()}));
}

void TestStation::append_data_log(double time, double voltage)
{
    NumberRow row;
    LogFormat::put_charge_row(row, time, voltage);
    write_record(data_log, row.view());
}

void TestStation::append_data_log(double time, double amp_hours, double voltage, double current,
                                  double ir)
{
    NumberRow row;
    LogFormat::put_discharge_row(row, time, amp_hours, voltage, current, ir);
    write_record(data_log, row.view());
}

void TestStation::append_text_log(const QString& text)
{
    if (text_log != nullptr)
        write_record(text_log, LogFormat::event_line(Time::now(), text));
}

void TestStation::archive_file(QFile* file)
{
    const QString source = file->fileName();
    const QString target = QDir(Settings::get_pdf_dir()).filePath(QFileInfo(source).fileName());
    if (!File::copy_file(source, target, true))
        show_error(QString("Could not copy file to PDF directory.\nSource: %1\nTarget: %2")
                       .arg(source, target));
}

bool TestStation::ui_safe_open_log()
{
    lock_controls();
    const bool opened = data_log->open(QIODevice::ReadWrite | QIODevice::Text) &&
                        text_log->open(QIODevice::Append | QIODevice::Text);
    if (!opened) {
        show_error("Could not open log file with write permission.");
        unload_test_data();
        return false;
    }
    set_log_all_telemetry(Settings::get_log_all_telemetry());
    return true;
}

void TestStation::unload_test_data()
{
    if (kestrometer != nullptr)
        kestrometer->telemetry_log = nullptr;
    delete_cycles();
    for (QFile** log : {&data_log, &text_log}) {
        QFile* closing = *log;
        *log = nullptr;
        delete closing;
    }
    set_phase(PHASE_IDLE, "Unloading test data.");
    serial_number.clear();
    serial_number_edited = false;
    populate_ui();
    update_ui();
    unlock_controls();
    emit sig_max_cycle_change();
}

void TestStation::delete_cycles()
{
    qDeleteAll(cycles);
    cycles.clear();
    current_cycle = nullptr;
}

void TestStation::set_log_all_telemetry(bool on)
{
    if (kestrometer != nullptr)
        kestrometer->telemetry_log = on ? text_log : nullptr;
}
