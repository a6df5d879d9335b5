#include "app/main_window.h"
#include "config/settings.h"
#include "config/tool_tips.h"
#include "dialogs/about.h"
#include "dialogs/edit_settings_dialog.h"
#include "station/test_station.h"
#include "support/help_document.h"
#include "support/help_table.h"
#include "support/station_bench.h"
#include "support/test_program.h"

#include <QLabel>
#include <QtTest>

namespace
{
struct WidgetHelp
{
    int id;
    QStringList widgets;
};

const QList<WidgetHelp> OF_SETTINGS = {
    {16, {"laLogDirectory"}},
    {17, {"pbChangeLogDirectory"}},
    {18, {"laPDFDirectory"}},
    {19, {"pbChangePDFDirectory"}},
    {65, {"cbCopyLogs"}},
    {20, {"laHeaderImageFilename"}},
    {21, {"pbChangeHeaderImageFile"}},
    {22, {"sbChartRefreshRate"}},
    {23, {"cbShowDebugInformation"}},
    {64, {"cbLogAllTelemetry"}},
};

const QList<WidgetHelp> OF_ABOUT = {
    {24, {"laSettingsDir"}}, {25, {"pbCopySettingsDir"}}, {26, {"pbOpenSettingsDir"}},
    {63, {"laLogDir"}},      {60, {"pbCopyLogDir"}},      {61, {"pbOpenLogDir"}},
    {27, {"pbWebpage"}},
};

const QList<WidgetHelp> OF_A_STATION = {
    {28, {"laStationID"}},
    {29, {"laPhase"}},
    {30, {"pbStartSkip"}},
    {31, {"pbNewTest"}},
    {32, {"pbLoadLog"}},
    {33, {"pbGeneratePDF"}},
    {36, {"laSerialNumberCaption", "leSerialNumber"}},
    {35, {"pbExpandCollapse"}},
    {34, {"pbClose"}},
    {37, {"laVoltage"}},
    {57, {"laCurrent"}},
    {39, {"laCycleNumber"}},
    {40, {"laProfileName", "leProfileName"}},
    {41, {"laNumberOfCycles", "sbNumberOfCycles"}},
    {42, {"laMaxChargeTime", "leMaxChargeTime", "laMaxChargeTimeUnits"}},
    {43, {"laLowVoltageCutoff", "leLowVoltageCutoff", "laLowVoltageCutoffUnits"}},
    {44, {"laFinalCharge", "leFinalCharge", "laFinalChargeUnits"}},
    {45, {"cbProfile"}},
    {46, {"pbSaveProfile"}},
    {59, {"pbDeleteProfile"}},
    {48, {"pbDirectory"}},
    {49, {"cbPromptToDischarge"}},
    {50, {"cbDetectFullCharge"}},
    {51, {"cbMeasureInternalResistance"}},
    {52,
     {"laInternalResistanceInterval", "leInternalResistanceTestIntervalAh",
      "laInternalResistanceIntervalUnits"}},
    {53, {"laCummAmpHours2", "laCummAmpHours"}},
    {54, {"laCummWattHours"}},
    {55, {"laIntResistance"}},
    {56, {"laElapsedTime"}},
};

/** Each widget's name and tooltip, as they are to be. */
QMap<QString, QString> expected(const QList<WidgetHelp>& help)
{
    QMap<QString, QString> tooltips;
    for (const WidgetHelp& one : help)
        for (const QString& name : one.widgets)
            tooltips.insert(name, help_tooltip(one.id));
    return tooltips;
}

/** Each widget's name and tooltip, of those that have one. */
QMap<QString, QString> tooltips_in(const QWidget& form)
{
    QMap<QString, QString> tooltips;
    for (const QWidget* widget : form.findChildren<QWidget*>())
        if (!widget->toolTip().isEmpty())
            tooltips.insert(widget->objectName(), widget->toolTip());
    return tooltips;
}
}  // namespace

/** What each control says about itself. */
class WidgetHelpTest : public QObject
{
    Q_OBJECT

private slots:
    void a_panel_explains_each_control_data();
    void a_panel_explains_each_control();
    void the_colour_box_explains_itself();
    void the_current_is_explained_by_phase_data();
    void the_current_is_explained_by_phase();
    void the_explanation_of_the_current_stays_between_legs();
    void the_directory_has_its_full_path_or_nothing();
    void the_settings_explain_themselves();
    void the_about_box_explains_itself();
    void the_window_explains_its_button();
    void every_assigned_id_has_been_handed_out();
    void without_the_document_each_control_asks_in_vain();
};

void WidgetHelpTest::a_panel_explains_each_control_data()
{
    QTest::addColumn<bool>("live");

    QTest::newRow("live") << true;
    QTest::newRow("preview") << false;
}

void WidgetHelpTest::a_panel_explains_each_control()
{
    QFETCH(bool, live);
    StationBench bench;
    TestStation preview(nullptr, nullptr);
    const TestStation& station = live ? *bench.station : preview;
    QMap<QString, QString> tooltips = tooltips_in(station);
    // Its own is the path that did not fit.
    tooltips.remove("laDirectory");
    QCOMPARE(tooltips, expected(OF_A_STATION));
    QVERIFY(bench.answers.seen.empty());
}

void WidgetHelpTest::the_colour_box_explains_itself()
{
    StationBench bench;
    QCOMPARE(bench.station->color_combobox.toolTip(), help_tooltip(5));
    bench.station->color_combobox.setCurrentIndex(3);
    bench.station->slot_id_change();
    QCOMPARE(bench.station->color_combobox.toolTip(), help_tooltip(5));
}

void WidgetHelpTest::the_current_is_explained_by_phase_data()
{
    QTest::addColumn<int>("phase");
    QTest::addColumn<int>("id");

    QTest::newRow("discharging") << int(PHASE_DISCHARGING) << 57;
    QTest::newRow("resistance test") << int(PHASE_IR_TEST) << 57;
    QTest::newRow("recovery") << int(PHASE_IR_RECOVERY) << 57;
    QTest::newRow("charging") << int(PHASE_CHARGING) << 58;
    QTest::newRow("leveled") << int(PHASE_CHARGING_LEVELED) << 58;
    QTest::newRow("final charge") << int(PHASE_FINAL_CHARGE) << 58;
}

void WidgetHelpTest::the_current_is_explained_by_phase()
{
    QFETCH(int, phase);
    QFETCH(int, id);
    StationBench bench;
    auto* label = bench.widget<QLabel>("laCurrent");
    label->setToolTip("before");
    bench.station->phase = Phase(phase);
    bench.station->update_ui();
    QCOMPARE(label->toolTip(), help_tooltip(id));
}

void WidgetHelpTest::the_explanation_of_the_current_stays_between_legs()
{
    StationBench bench;
    auto* label = bench.widget<QLabel>("laCurrent");
    label->setToolTip("before");
    for (const Phase phase : {PHASE_IDLE, PHASE_FULL_CHARGE_TEST, PHASE_READY_FOR_DISCHARGE,
                              PHASE_FINAL_CHARGE_TEST, PHASE_DONE}) {
        bench.station->phase = phase;
        bench.station->update_ui();
        QCOMPARE(label->toolTip(), QString("before"));
    }
}

void WidgetHelpTest::the_directory_has_its_full_path_or_nothing()
{
    StationBench bench;
    Settings::set_log_dir("/short");
    TestStation fits(nullptr, nullptr);
    QCOMPARE(fits.findChild<QLabel*>("laDirectory")->toolTip(), QString());
    const QString path = "/a directory" + QString("/with many directories below").repeated(9);
    Settings::set_log_dir(path);
    TestStation cut(nullptr, nullptr);
    QCOMPARE(cut.findChild<QLabel*>("laDirectory")->toolTip(), path);
    QVERIFY(ToolTips::used_tooltip_ids.contains(47));
}

void WidgetHelpTest::the_settings_explain_themselves()
{
    StationBench bench;
    const EditSettingsDialog dialog(nullptr);
    QCOMPARE(tooltips_in(dialog), expected(OF_SETTINGS));
    QVERIFY(bench.answers.seen.empty());
}

void WidgetHelpTest::the_about_box_explains_itself()
{
    StationBench bench;
    const About dialog(nullptr);
    QCOMPARE(tooltips_in(dialog), expected(OF_ABOUT));
    QVERIFY(bench.answers.seen.empty());
}

void WidgetHelpTest::the_window_explains_its_button()
{
    const QTemporaryDir folder;
    ModalAnswer answers;
    load_test_settings(folder.path());
    forget_help_document();
    const MainWindow window(nullptr);
    QCOMPARE(window.findChild<QWidget*>("pbNewTestStation")->toolTip(), help_tooltip(62));
    QVERIFY(answers.seen.empty());
}

void WidgetHelpTest::every_assigned_id_has_been_handed_out()
{
    forget_help_document();
    ToolTips::used_tooltip_ids.clear();
    QVERIFY(Settings::load());
    // Alone: a window takes all stations with it.
    std::make_unique<MainWindow>(nullptr).reset();
    StationBench bench;
    bench.start();
    const EditSettingsDialog settings(nullptr);
    const About about(nullptr);
    QSet<int> used = {5, 47, 58, 62};
    for (const QList<WidgetHelp>& form : {OF_SETTINGS, OF_ABOUT, OF_A_STATION})
        for (const WidgetHelp& one : form)
            used.insert(one.id);
    QCOMPARE(ToolTips::used_tooltip_ids, used);
}

void WidgetHelpTest::without_the_document_each_control_asks_in_vain()
{
    StationBench bench;
    forget_help_document();
    QStringList errors;
    {
        TestStation preview(nullptr, nullptr);
        QCOMPARE(preview.findChild<QLabel*>("laStationID")->toolTip(), QString("Preview Only"));
        QCOMPARE(preview.findChild<QWidget*>("pbClose")->toolTip(), QString());
        for (const SeenBox& box : bench.answers.seen)
            errors.append(box.text);
    }
    load_help_document();
    int widgets = 2;  // the colour box and the directory
    for (const WidgetHelp& one : OF_A_STATION)
        widgets += one.widgets.size();
    QCOMPARE(errors.size(), widgets);
    QCOMPARE(errors.first(), QString("Tooltip 5 requested but not present in help file."));
    QCOMPARE(errors.last(), QString("Tooltip 56 requested but not present in help file."));
}

KEST_TEST(WidgetHelpTest)
#include "tst_widget_help.moc"
