#include "station/test_station.h"

#include "ui_test_station.h"

#include "common/unicode.h"
#include "common/wheel_focus.h"
#include "common/widget_sizing.h"
#include "config/battery_profiles.h"
#include "config/settings.h"
#include "device/kestrometer.h"
#include "station/panel/combobox_items.h"

#include <QDoubleValidator>

namespace
{
int text_width(const QWidget* widget, const QString& text)
{
    return QFontMetrics(widget->font()).horizontalAdvance(text);
}

void pin_width(const QList<QWidget*>& widgets, int width)
{
    for (QWidget* widget : widgets)
        widget->setFixedWidth(width);
}

/** What can be typed is what the conversion reads, also where a comma is the decimal point. */
QLocale conversion_locale()
{
    QLocale locale = QLocale::c();
    locale.setNumberOptions(QLocale::OmitGroupSeparator | QLocale::RejectGroupSeparator);
    return locale;
}

void make_square(QWidget* button)
{
    const int side = button->minimumSizeHint().height();
    button->setFixedSize(side, side);
}

void set_up_validators(TestStation& station)
{
    struct Range
    {
        QLineEdit* edit;
        double most;
        int decimals;
    };
    const Range ranges[] = {
        {station.ui->leMaxChargeTime, 1000.0, 1},
        {station.ui->leLowVoltageCutoff, 100.0, 3},
        {station.ui->leInternalResistanceTestIntervalAh, 100.0, 1},
    };
    for (const Range& range : ranges) {
        auto* validator = new QDoubleValidator(0.0, range.most, range.decimals, &station);
        validator->setLocale(conversion_locale());
        range.edit->setValidator(validator);
    }
}

void set_up_parameters(const TestStation& station)
{
    station.ui->cbDetectFullCharge->setChecked(station.detect_full_charge);
    station.ui->cbPromptToDischarge->setChecked(station.prompt_to_discharge);
    station.ui->cbMeasureInternalResistance->setChecked(station.kestrometer != nullptr &&
                                                        station.measure_internal_resistance);
    station.ui->leInternalResistanceTestIntervalAh->setText(
        QString::number(station.internal_resistance_test_interval_ah, 'g', 6));
    station.ui->leInternalResistanceTestIntervalAh->setEnabled(
        station.measure_internal_resistance && station.kestrometer != nullptr);
}

void set_summary_fonts(const Ui::TestStation& ui)
{
    const int points = int(1.2 * ui.laNotCharging->font().pointSize());
    for (QLabel* label : {ui.laStationID, ui.laPhase, ui.laVoltage, ui.laCurrent,
                          ui.laCummAmpHours2, ui.laCycleNumber})
        label->setFont(QFont(label->font().family(), points));
}

// What changes with every line costs nothing but its own text: with width and height pinned it asks
// for no new layout, and with a ground of its own nothing below it is painted again.
void set_up_readouts(const Ui::TestStation& ui)
{
    for (QLabel* label : {ui.laStationID, ui.laPhase, ui.laVoltage, ui.laCurrent,
                          ui.laCummAmpHours2, ui.laCycleNumber, ui.laCummAmpHours,
                          ui.laCummWattHours, ui.laIntResistance, ui.laElapsedTime}) {
        // Or each text would ask the window, past all that lies between, where its screen is cut out.
        label->setAttribute(Qt::WA_ContentsMarginsRespectsSafeArea, false);
        // Before the height is asked for: a change of the format has the label measured anew.
        label->setTextFormat(Qt::PlainText);
        label->setFixedHeight(label->minimumSizeHint().height());
        label->setAutoFillBackground(true);
    }
}

// Both captions and the rules below them stand on one line across the two frames.
void align_captions(const Ui::TestStation& ui)
{
    const QGridLayout* parameters = ui.gridLayout_5;
    const int row_height =
        qMax(ui.frSaveDelete->sizeHint().height(), ui.cbProfile->sizeHint().height());
    const int top = parameters->contentsMargins().top() + parameters->verticalSpacing();
    ui.laTestResults->setFixedHeight(top + row_height - ui.gridLayout_10->contentsMargins().top());
}

// The blinking limits the status to the width that it has, and no layout has one for a hidden label.
void widen_hidden_status(const TestStation& station)
{
    const QMargins margins = station.ui->verticalLayout->contentsMargins();
    const int inner_width =
        station.minimumWidth() - 2 * station.frameWidth() - margins.left() - margins.right();
    station.ui->laKestrometerStatus->resize(inner_width, station.ui->laKestrometerStatus->height());
}
}  // namespace

// The order is meant: the check boxes' slots are connected from the start, so that setting a box
// to the other state enables Save, whatever was disabled before.
void TestStation::set_up_panel()
{
    ui->pbNewTest->setEnabled(kestrometer != nullptr);
    ui->laStationID->setToolTip(get_port_name());
    ui->laKestrometerStatus->setVisible(kestrometer != nullptr && Settings::get_show_debug_info());
    if (kestrometer != nullptr)
        ui->laKestrometerStatus->setText(kestrometer->get_status());
    for (QLabel* label : {ui->laKestrometerIsStuck, ui->laLostCommunication, ui->laNotCharging,
                          ui->laNotDischarging})
        label->setVisible(false);
    ui->pbSaveProfile->setEnabled(false);
    ui->pbDeleteProfile->setEnabled(false);
    set_combobox_items(ui->cbProfile,
                       QStringList(no_profile_text) + BatteryProfiles::get_all_descriptions());
    set_up_validators(*this);
    ui->cbDetectFullCharge->setEnabled(false);
    ui->pbStartSkip->setEnabled(false);
    if (kestrometer != nullptr) {
        connect(kestrometer, &Kestrometer::sig_measurement, this, &TestStation::slot_measurement);
        connect(kestrometer, &Kestrometer::sig_id_change, this, &TestStation::slot_id_change);
    }
    set_up_parameters(*this);
    // A number from a log may hold anything.
    serial_number_label.setTextFormat(Qt::PlainText);
    populate_ui();
    update_ui();
    set_up_color_combobox();
    if (kestrometer == nullptr)
        ui->leSerialNumber->setEnabled(false);
    set_summary_fonts(*ui);
    set_widget_sizes();
    leave_wheel_without_focus(this);
    leave_wheel_without_focus(&color_combobox);
    set_tooltips();
    log_dir = Settings::get_log_dir();
    set_elided_text(ui->laDirectory, log_dir, QString());
}

void TestStation::set_widget_sizes()
{
    const int w = text_width(ui->laTestParameters, "12345678901234567890123");
    const int h = ui->laTestParameters->minimumSizeHint().height();
    const int c = ui->laMaxChargeTime->minimumSizeHint().width();
    const int i = w - c - ui->gridLayout->spacing();
    const int t = ui->horizontalLayout_7->spacing();
    const int b = text_width(ui->laStationID,
                             Unicode::thin_space + QString("Preview 00") + Unicode::thin_space);

    setFixedWidth(4 * w + 78);
    pin_width({ui->laTestParameters, ui->laProfileName, ui->leProfileName, ui->frDirectory,
               ui->laDirectory, ui->cbProfile, ui->frSaveDelete, ui->cbPromptToDischarge,
               ui->cbDetectFullCharge, ui->cbMeasureInternalResistance, ui->frInternalResistance,
               ui->laTestResults, ui->laCummAmpHours, ui->laCummWattHours, ui->laIntResistance,
               ui->laElapsedTime, ui->laPhase, ui->leSerialNumber},
              w);
    pin_width(
        {ui->laNumberOfCycles, ui->laMaxChargeTime, ui->laLowVoltageCutoff, ui->laFinalCharge}, c);
    pin_width(
        {ui->sbNumberOfCycles, ui->frMaxChargeTime, ui->frLowVoltageCutoff, ui->frFinalCharge}, i);
    pin_width({ui->laMaxChargeTimeUnits, ui->laLowVoltageCutoffUnits, ui->laFinalChargeUnits}, h);
    pin_width(
        {ui->laInternalResistanceInterval},
        text_width(ui->laInternalResistanceInterval, ui->laInternalResistanceInterval->text()) +
            ui->cbMeasureInternalResistance->minimumSizeHint().height());
    pin_width({ui->leInternalResistanceTestIntervalAh}, w - (2 * w) / 3 - h - 2 * t);
    pin_width({ui->laStationID, ui->laSerialNumberCaption}, b);
    pin_width({ui->pbStartSkip, ui->pbNewTest, ui->pbLoadLog, ui->pbGeneratePDF, ui->laVoltage,
               ui->laCurrent, ui->laCummAmpHours2, ui->laCycleNumber},
              w / 2);
    pin_width({&color_combobox}, text_width(&color_combobox, "Preview 000") +
                                     color_combobox.minimumSizeHint().height());
    // A box that has a size is not asked for one when it is first shown: it would measure each of its
    // items for a width that is pinned.
    color_combobox.resize(color_combobox.minimumWidth(), color_combobox.minimumSizeHint().height());
    for (QWidget* button : {ui->pbDirectory, ui->pbClose, ui->pbExpandCollapse})
        make_square(button);
    set_up_readouts(*ui);
    align_captions(*ui);
    widen_hidden_status(*this);
}
