#include "station/test_station.h"

#include "common/file.h"
#include "common/message_boxes.h"

#include <QFile>
#include <QFileDialog>
#include <QMessageBox>

namespace
{
/** By name as it stands: the same file reached by another path is not recognised. */
QStringList logs_in_use()
{
    QStringList names;
    for (const TestStation* station : TestStation::all_instances)
        if (station->data_log != nullptr)
            names << station->data_log->fileName();
    return names;
}

/** A log that no station of `in_use` has open; empty if the operator cancels. */
QString choose_log(const QString& directory, const QStringList& in_use)
{
    for (;;) {
        QString filter = "CSV Files (*.csv)";
        QString chosen = QFileDialog::getOpenFileName(
            nullptr, "Select Log File", directory, "All Files (*.*);;CSV Files (*.csv)", &filter);
        if (!in_use.contains(chosen))
            return chosen;
        show_error("That log file is currently in use.");
    }
}

/** False, with a message and without logs, if the path has no "." for the event log's to replace. */
bool create_logs(TestStation& station, const QString& csv_path)
{
    station.data_log = new QFile(csv_path);
    QString txt_path;
    if (!File::change_extension(station.data_log->fileName(), ".txt", txt_path)) {
        show_error(QString("Could not create new filename by changing extension of '%1' to '%2'.")
                       .arg(station.data_log->fileName(), ".txt"));
        delete station.data_log;
        station.data_log = nullptr;
        return false;
    }
    station.text_log = new QFile(txt_path);
    return true;
}
}  // namespace

void TestStation::on_pbLoadLog_clicked()
{
    if (phase != PHASE_IDLE &&
        QMessageBox::question(
            nullptr, "Confirmation",
            "Loading a log file will terminate the current test. Continue anyway?",
            QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes)
        return;
    const QString chosen = choose_log(log_dir, logs_in_use());
    if (chosen.isEmpty())
        return;
    unload_test_data();
    if (!create_logs(*this, chosen) || !ui_safe_open_log() || !ui_safe_read_log())
        return;
    emit sig_max_cycle_change();
    emit sig_repaint_chart_request();
    update_ui();
}
