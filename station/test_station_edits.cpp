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
    update_ui();
    ui->pbSaveProfile->setEnabled(true);
}

void TestStation::on_leMaxChargeTime_textEdited()
{
    bool ok = false;
    const double hours = ui->leMaxChargeTime->text().toDouble(&ok);
    if (!ok)
        return;
    max_charge_time = truncated_int(hours * 3600.0);
    ui->pbSaveProfile->setEnabled(true);
}

// A text that does not convert counts as 0 from here on, on purpose: while a field is being cleared
// for a new value, the running test sees 0.

void TestStation::on_leLowVoltageCutoff_textEdited()
{
    bool ok = false;
    low_voltage_cutoff = ui->leLowVoltageCutoff->text().toDouble(&ok);
    if (ok)
        ui->pbSaveProfile->setEnabled(true);
}

void TestStation::on_leFinalCharge_textEdited()
{
    bool ok = false;
    final_voltage = ui->leFinalCharge->text().toDouble(&ok);
    if (ok)
        ui->pbSaveProfile->setEnabled(true);
}

void TestStation::on_leInternalResistanceTestIntervalAh_textEdited()
{
    bool ok = false;
    internal_resistance_test_interval_ah =
        ui->leInternalResistanceTestIntervalAh->text().toDouble(&ok);
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
    if (measure_internal_resistance && current_cycle != nullptr) {
        const double interval = internal_resistance_test_interval_ah;
        next_ir_check_ah = std::ceil(current_cycle->amp_hours / interval) * interval;
    }
    ui->pbSaveProfile->setEnabled(true);
}
