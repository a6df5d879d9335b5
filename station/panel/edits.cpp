#include "station/test_station.h"

#include "ui_test_station.h"

#include "common/truncated_int.h"
#include "common/widget_sizing.h"

#include <QFileDialog>

#include <cmath>

namespace
{
const QString EXPANDED = QString::fromUtf8("▲");
const QString COLLAPSED = QString::fromUtf8("▼");

/**
 * The number typed. A text that does not convert counts as 0 from here on, on purpose: while a field
 * is being cleared for a new value, the running test sees 0.
 */
double typed_number(const QLineEdit* edit, bool& ok)
{
    const double value = edit->text().toDouble(&ok);
    return ok ? value : 0.0;
}

double next_multiple(double amp_hours, double interval)
{
    // While the field is being cleared the interval is 0: due at once, and no NaN to stay behind.
    return interval > 0.0 ? std::ceil(amp_hours / interval) * interval : amp_hours;
}
}  // namespace

void TestStation::on_pbExpandCollapse_clicked()
{
    const bool expand = ui->pbExpandCollapse->text().contains(COLLAPSED);
    ui->pbExpandCollapse->setText(expand ? EXPANDED : COLLAPSED);
    ui->frDetails->setVisible(expand);
}

void TestStation::on_pbDirectory_clicked()
{
    const QString chosen = QFileDialog::getExistingDirectory(nullptr, "Select Log File Directory",
                                                             log_dir, QFileDialog::ShowDirsOnly);
    if (chosen.isEmpty())
        return;
    log_dir = chosen;
    set_elided_text(ui->laDirectory, log_dir, QString());
}

void TestStation::on_leProfileName_textEdited(const QString& text)
{
    profile_name = text.trimmed();
    ui->pbSaveProfile->setEnabled(true);
    update_ui();
}

void TestStation::on_leSerialNumber_textEdited(const QString& text)
{
    serial_number = text.trimmed();
    serial_number_edited = true;
    set_fitting_text(&serial_number_label, serial_number);
    update_ui();
    ui->pbSaveProfile->setEnabled(true);
}

void TestStation::on_leMaxChargeTime_textEdited()
{
    bool ok = false;
    const double hours = typed_number(ui->leMaxChargeTime, ok);
    if (!ok)
        return;
    max_charge_time = truncated_int(hours * 3600.0);
    ui->pbSaveProfile->setEnabled(true);
}

void TestStation::on_leLowVoltageCutoff_textEdited()
{
    bool ok = false;
    low_voltage_cutoff = typed_number(ui->leLowVoltageCutoff, ok);
    if (ok)
        ui->pbSaveProfile->setEnabled(true);
}

void TestStation::on_leFinalCharge_textEdited()
{
    bool ok = false;
    final_voltage = typed_number(ui->leFinalCharge, ok);
    if (ok)
        ui->pbSaveProfile->setEnabled(true);
}

void TestStation::on_leInternalResistanceTestIntervalAh_textEdited()
{
    bool ok = false;
    internal_resistance_test_interval_ah = typed_number(ui->leInternalResistanceTestIntervalAh, ok);
    if (ok)
        ui->pbSaveProfile->setEnabled(true);
}

void TestStation::on_cbDetectFullCharge_stateChanged(int)
{
    detect_full_charge = ui->cbDetectFullCharge->isChecked();
    ui->pbSaveProfile->setEnabled(true);
}

void TestStation::on_cbPromptToDischarge_stateChanged(int)
{
    prompt_to_discharge = ui->cbPromptToDischarge->isChecked();
    ui->pbSaveProfile->setEnabled(true);
}

void TestStation::on_cbMeasureInternalResistance_stateChanged(int)
{
    measure_internal_resistance = ui->cbMeasureInternalResistance->isChecked();
    ui->laInternalResistanceInterval->setEnabled(measure_internal_resistance);
    ui->leInternalResistanceTestIntervalAh->setEnabled(measure_internal_resistance);
    if (measure_internal_resistance && current_cycle != nullptr)
        next_ir_check_ah =
            next_multiple(current_cycle->amp_hours, internal_resistance_test_interval_ah);
    ui->pbSaveProfile->setEnabled(true);
}
