#include "station/test_station.h"

#include "ui_test_station.h"

#include "config/help_ids.h"
#include "config/tool_tips.h"

namespace
{
struct HelpText
{
    HelpId id;
    QList<QWidget*> widgets;
};
}  // namespace

void TestStation::set_tooltips()
{
    const HelpText texts[] = {
        // the station's row above the charts
        {HELP_COLOR, {&color_combobox}},
        // the summary
        {HELP_STATION_ID, {ui->laStationID}},
        {HELP_PHASE, {ui->laPhase}},
        {HELP_START_SKIP, {ui->pbStartSkip}},
        {HELP_NEW_TEST, {ui->pbNewTest}},
        {HELP_LOAD_LOG, {ui->pbLoadLog}},
        {HELP_GENERATE_PDF, {ui->pbGeneratePDF}},
        {HELP_SERIAL_NUMBER, {ui->laSerialNumberCaption, ui->leSerialNumber}},
        {HELP_EXPAND_COLLAPSE, {ui->pbExpandCollapse}},
        {HELP_CLOSE, {ui->pbClose}},
        {HELP_VOLTAGE, {ui->laVoltage}},
        // Until the first charge: from then on the text follows the phase.
        {HELP_CURRENT, {ui->laCurrent}},
        {HELP_CYCLE_NUMBER, {ui->laCycleNumber}},
        // the parameters
        {HELP_PROFILE_NAME, {ui->laProfileName, ui->leProfileName}},
        {HELP_NUMBER_OF_CYCLES, {ui->laNumberOfCycles, ui->sbNumberOfCycles}},
        {HELP_MAX_CHARGE_TIME,
         {ui->laMaxChargeTime, ui->leMaxChargeTime, ui->laMaxChargeTimeUnits}},
        {HELP_LOW_VOLTAGE_CUTOFF,
         {ui->laLowVoltageCutoff, ui->leLowVoltageCutoff, ui->laLowVoltageCutoffUnits}},
        {HELP_FINAL_CHARGE, {ui->laFinalCharge, ui->leFinalCharge, ui->laFinalChargeUnits}},
        {HELP_PROFILE, {ui->cbProfile}},
        {HELP_SAVE_PROFILE, {ui->pbSaveProfile}},
        {HELP_DELETE_PROFILE, {ui->pbDeleteProfile}},
        {HELP_STATION_LOG_DIR, {ui->laDirectory}},
        {HELP_CHANGE_STATION_LOG_DIR, {ui->pbDirectory}},
        {HELP_PROMPT_TO_DISCHARGE, {ui->cbPromptToDischarge}},
        {HELP_DETECT_FULL_CHARGE, {ui->cbDetectFullCharge}},
        {HELP_MEASURE_RESISTANCE, {ui->cbMeasureInternalResistance}},
        {HELP_RESISTANCE_INTERVAL,
         {ui->laInternalResistanceInterval, ui->leInternalResistanceTestIntervalAh,
          ui->laInternalResistanceIntervalUnits}},
        // the results
        {HELP_AMP_HOURS, {ui->laCummAmpHours2, ui->laCummAmpHours}},
        {HELP_WATT_HOURS, {ui->laCummWattHours}},
        {HELP_RESISTANCE, {ui->laIntResistance}},
        {HELP_ELAPSED_TIME, {ui->laElapsedTime}},
    };
    for (const HelpText& text : texts)
        for (QWidget* widget : text.widgets)
            ToolTips::assign(widget, text.id);
    readouts.forget_current_help();
}
