#include "config/help_ids.h"
#include "support/test_program.h"

#include <QDomDocument>
#include <QFile>
#include <QtTest>

namespace
{
struct NamedEntry
{
    HelpId id;
    const char* heading;
};

/** Every name, with what its entry is headed in the document. */
const NamedEntry ENTRIES[] = {
    {HELP_ADD_STATION, "Add a Test Station (button)"},
    {HELP_COLOR, "Color (unlabeled column of comboboxes containing the test stations' IDs)"},
    {HELP_DEFAULT_LOG_DIR, "Default Log Directory"},
    {HELP_CHANGE_DEFAULT_LOG_DIR, "... (button)"},
    {HELP_PDF_DIR, "PDF Directory"},
    {HELP_CHANGE_PDF_DIR, "... (button)"},
    {HELP_COPY_LOGS, "Also copy logs to PDF directory when PDFs are generated (checkbox)"},
    {HELP_HEADER_IMAGE, "Header Image File"},
    {HELP_CHANGE_HEADER_IMAGE, "... (button)"},
    {HELP_CHART_REFRESH_RATE, "Chart Refresh Rate (Hz) (spinbox)"},
    {HELP_SHOW_DEBUG_INFO, "Show Debug Information (checkbox)"},
    {HELP_LOG_ALL_TELEMETRY, "Log All Kestrometer Telemetry (checkbox)"},
    {HELP_SETTINGS_DIR, "Settings Dir (label)"},
    {HELP_COPY_SETTINGS_DIR, "Copy Settings Dir (button)"},
    {HELP_OPEN_SETTINGS_DIR, "Open Settings Dir (button)"},
    {HELP_LOG_DIR, "Log Dir (label)"},
    {HELP_COPY_LOG_DIR, "Copy Log Dir (button)"},
    {HELP_OPEN_LOG_DIR, "Open Settings Dir (button)"},
    {HELP_WEBPAGE, "Visit Application Webpage (button)"},
    {HELP_STATION_ID, "Station # (label)"},
    {HELP_PHASE, "Phase (label)"},
    {HELP_START_SKIP, "Start / Skip (button)"},
    {HELP_NEW_TEST, "New Test (button)"},
    {HELP_LOAD_LOG, "Load Log (button)"},
    {HELP_GENERATE_PDF, "Gen PDF (button)"},
    {HELP_CLOSE, "X (button)"},
    {HELP_EXPAND_COLLAPSE, "▼ / ▲ (expand / collapse button)"},
    {HELP_SERIAL_NUMBER, "SN (label and line edit)"},
    {HELP_VOLTAGE, "Voltage (label)"},
    {HELP_CURRENT, "Current (label) (when discharging)"},
    {HELP_CHARGE_TIME, "Elapsed Time (label) (when charging)"},
    {HELP_CYCLE_NUMBER, "Cycle # (label)"},
    {HELP_PROFILE_NAME, "Name (line edit)"},
    {HELP_NUMBER_OF_CYCLES, "# Cycles (spin box)"},
    {HELP_MAX_CHARGE_TIME, "Max Charge Time (line edit)"},
    {HELP_LOW_VOLTAGE_CUTOFF, "LV Cutoff (line edit)"},
    {HELP_FINAL_CHARGE, "Final Charge (line edit)"},
    {HELP_PROFILE, "Profile (combobox)"},
    {HELP_SAVE_PROFILE, "Save (button)"},
    {HELP_DELETE_PROFILE, "Delete (button)"},
    {HELP_STATION_LOG_DIR, "Path (label)"},
    {HELP_CHANGE_STATION_LOG_DIR, "... (button)"},
    {HELP_PROMPT_TO_DISCHARGE, "Prompt to Discharge (checkbox)"},
    {HELP_DETECT_FULL_CHARGE, "Detect Full Charge (disabled checkbox)"},
    {HELP_MEASURE_RESISTANCE, "Measure RBatt (checkbox)"},
    {HELP_RESISTANCE_INTERVAL, "Measure RBatt (line edit)"},
    {HELP_AMP_HOURS, "Cummulative Amp Hours (unlabeled label)"},
    {HELP_WATT_HOURS, "Cummulative Watt Hours (unlabeled label)"},
    {HELP_RESISTANCE, "IR (unlabeled label)"},
    {HELP_ELAPSED_TIME, "Elapsed Time (unlabeled label)"},
};

/** Headings by the ids of their texts. */
QMap<int, QString> headings()
{
    QFile file(":/help.html");
    file.open(QIODevice::ReadOnly);
    QDomDocument document;
    document.setContent(&file);
    QMap<int, QString> found;
    const QDomNodeList texts = document.elementsByTagName("dd");
    for (int i = 0; i < texts.size(); ++i) {
        const QDomElement text = texts.at(i).toElement();
        found.insert(text.attribute("id").toInt(), text.previousSiblingElement("dt").text());
    }
    return found;
}
}  // namespace

/** The names of the help texts, held against the document. */
class HelpIdsTest : public QObject
{
    Q_OBJECT

private slots:
    void each_name_stands_for_the_entry_of_its_control();
};

void HelpIdsTest::each_name_stands_for_the_entry_of_its_control()
{
    const QMap<int, QString> in_document = headings();
    for (const NamedEntry& entry : ENTRIES)
        QCOMPARE(in_document.value(entry.id), QString(entry.heading));
}

KEST_GUILESS_TEST(HelpIdsTest)
#include "tst_help_ids.moc"
