#include "station/test_station.h"

#include "ui_test_station.h"

#include "config/tool_tips.h"

namespace
{
struct HelpText
{
    int id;
    QList<QWidget*> widgets;
};
}  // namespace

void TestStation::set_tooltips()
{
    const HelpText texts[] = {
        // the station's row above the charts
        {5, {&color_combobox}},
        // the summary
        {28, {ui->laStationID}},
        {29, {ui->laPhase}},
        {30, {ui->pbStartSkip}},
        {31, {ui->pbNewTest}},
        {32, {ui->pbLoadLog}},
        {33, {ui->pbGeneratePDF}},
        {36, {ui->laSerialNumberCaption, ui->leSerialNumber}},
        {35, {ui->pbExpandCollapse}},
        {34, {ui->pbClose}},
        {37, {ui->laVoltage}},
        // Until the first charge: from then on the text follows the phase.
        {57, {ui->laCurrent}},
        {39, {ui->laCycleNumber}},
        // the parameters
        {40, {ui->laProfileName, ui->leProfileName}},
        {41, {ui->laNumberOfCycles, ui->sbNumberOfCycles}},
        {42, {ui->laMaxChargeTime, ui->leMaxChargeTime, ui->laMaxChargeTimeUnits}},
        {43, {ui->laLowVoltageCutoff, ui->leLowVoltageCutoff, ui->laLowVoltageCutoffUnits}},
        {44, {ui->laFinalCharge, ui->leFinalCharge, ui->laFinalChargeUnits}},
        {45, {ui->cbProfile}},
        {46, {ui->pbSaveProfile}},
        {59, {ui->pbDeleteProfile}},
        {47, {ui->laDirectory}},
        {48, {ui->pbDirectory}},
        {49, {ui->cbPromptToDischarge}},
        {50, {ui->cbDetectFullCharge}},
        {51, {ui->cbMeasureInternalResistance}},
        {52,
         {ui->laInternalResistanceInterval, ui->leInternalResistanceTestIntervalAh,
          ui->laInternalResistanceIntervalUnits}},
        // the results
        {53, {ui->laCummAmpHours2, ui->laCummAmpHours}},
        {54, {ui->laCummWattHours}},
        {55, {ui->laIntResistance}},
        {56, {ui->laElapsedTime}},
    };
    for (const HelpText& text : texts)
        for (QWidget* widget : text.widgets)
            ToolTips::assign(widget, text.id);
    shown.current_help.reset();
}
