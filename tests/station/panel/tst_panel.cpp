#include "ui_test_station.h"
#include "support/test_program.h"

#include <QtTest>

/** The panel's form as it is drawn, before code touches it. */
class PanelTest : public QObject
{
    Q_OBJECT

private slots:
    void the_frame_is_a_raised_panel();
    void each_layout_has_its_margins_and_spacings_data();
    void each_layout_has_its_margins_and_spacings();
    void each_widget_stands_in_its_place_data();
    void each_widget_stands_in_its_place();
    void there_is_nothing_else();
    void a_spacer_parts_the_phase_from_the_buttons();
    void a_test_has_one_to_99_cycles();
    void texts_from_outside_are_shown_as_they_are();
};

namespace
{
/** The form on a bare frame. */
struct Form
{
    Form()
    {
        ui.setupUi(&frame);
    }

    QFrame frame;
    Ui::TestStation ui;
};

struct Layout
{
    const char* name;
    const char* kind;
    const char* owner;
    QMargins margins;
    int across;  // spacing in pixels; -1 leaves it to the style
    int down;
};

const Layout LAYOUTS[] = {
    // name              kind           owner                  margins       across down
    {"verticalLayout", "QVBoxLayout", "TestStation", {3, 3, 3, 3}, -1, -1},
    {"gridLayout_8", "QGridLayout", "frSummary", {0, 0, 0, 0}, -1, 0},
    {"horizontalLayout", "QHBoxLayout", "frame", {0, 3, 0, 3}, -1, -1},
    {"horizontalLayout_6", "QHBoxLayout", "frDetails", {0, 0, 0, 0}, -1, -1},
    {"gridLayout_5", "QGridLayout", "frTestParameters", {3, 3, 3, 3}, 6, -1},
    {"horizontalLayout_10", "QHBoxLayout", "frSaveDelete", {0, 0, 0, 0}, -1, -1},
    {"gridLayout", "QGridLayout", "frMaxChargeTime", {0, 0, 0, 0}, -1, -1},
    {"horizontalLayout_9", "QHBoxLayout", "frDirectory", {0, 0, 0, 0}, -1, -1},
    {"horizontalLayout_8", "QHBoxLayout", "frLowVoltageCutoff", {0, 0, 0, 0}, -1, -1},
    {"horizontalLayout_7", "QHBoxLayout", "frFinalCharge", {0, 0, 0, 0}, -1, -1},
    {"horizontalLayout_2", "QHBoxLayout", "frInternalResistance", {0, 0, 0, 0}, 0, 0},
    {"gridLayout_10", "QGridLayout", "frTestResults", {3, 7, 3, 3}, -1, -1},
};

struct Place
{
    const char* name;
    const char* kind;
    const char* layout;
    int row;  // in a box: the place from the top
    int column;
    int rows;
    int columns;
    const char* text;
    const char* look;
};

const Place PLACES[] = {
    // the panel
    {"frSummary", "QFrame", "verticalLayout", 0, 0, 1, 1, "", "bare"},
    {"laKestrometerStatus", "QLabel", "verticalLayout", 1, 0, 1, 1, "laKestrometerStatus", ""},
    {"laKestrometerIsStuck", "QLabel", "verticalLayout", 2, 0, 1, 1,
     "Kestrometer is not responding to commands.", ""},
    {"laLostCommunication", "QLabel", "verticalLayout", 3, 0, 1, 1,
     "Lost communication with Kestrometer. Check data cable and Kestrometer power cable.", ""},
    {"laBlankSerialNumber", "QLabel", "verticalLayout", 4, 0, 1, 1, "Serial number is blank.", ""},
    {"laBadSerialNumber", "QLabel", "verticalLayout", 5, 0, 1, 1,
     "Serial number contains characters not allowed in filenames.", ""},
    {"laBlankName", "QLabel", "verticalLayout", 6, 0, 1, 1, "Name is blank.", ""},
    {"laBadName", "QLabel", "verticalLayout", 7, 0, 1, 1,
     "Name contains characters not allowed in filenames.", ""},
    {"laNotCharging", "QLabel", "verticalLayout", 8, 0, 1, 1,
     "Battery may be either fully charged or disconnected (charge voltage is not increasing).", ""},
    {"laNotDischarging", "QLabel", "verticalLayout", 9, 0, 1, 1,
     "Battery does not seem to be discharging. Check connection.", ""},
    {"frDetails", "QFrame", "verticalLayout", 10, 0, 1, 1, "", "bare"},

    // the summary
    {"laStationID", "QLabel", "gridLayout_8", 0, 0, 1, 1, "Station #", "centred"},
    {"laPhase", "QLabel", "gridLayout_8", 0, 1, 1, 1, "laPhase", ""},
    {"pbStartSkip", "QPushButton", "gridLayout_8", 0, 3, 1, 1, "Start", "disabled"},
    {"pbNewTest", "QPushButton", "gridLayout_8", 0, 4, 1, 1, "New Test", ""},
    {"pbLoadLog", "QPushButton", "gridLayout_8", 0, 5, 1, 1, "Load Log", ""},
    {"pbGeneratePDF", "QPushButton", "gridLayout_8", 0, 6, 1, 1, "Gen. PDF", ""},
    {"pbExpandCollapse", "QPushButton", "gridLayout_8", 0, 7, 1, 1, "▲", ""},
    {"pbClose", "QPushButton", "gridLayout_8", 0, 8, 1, 1, "X", ""},
    {"laSerialNumberCaption", "QLabel", "gridLayout_8", 1, 0, 1, 1, "Serial #", "bold"},
    {"leSerialNumber", "QLineEdit", "gridLayout_8", 1, 1, 1, 1, "", ""},
    {"frame", "QFrame", "gridLayout_8", 1, 3, 1, 6, "", "plain box 1"},
    {"laVoltage", "QLabel", "horizontalLayout", 0, 0, 1, 1, "00.0 V", "14 point centred"},
    {"laCurrent", "QLabel", "horizontalLayout", 1, 0, 1, 1, "00.0 A", "14 point centred"},
    {"laCummAmpHours2", "QLabel", "horizontalLayout", 2, 0, 1, 1, "00.0 Ah", "14 point centred"},
    {"laCycleNumber", "QLabel", "horizontalLayout", 3, 0, 1, 1, "Cycle 00/00", "14 point centred"},

    // the details
    {"frTestParameters", "QFrame", "horizontalLayout_6", 0, 0, 1, 1, "", "sunken panel 3"},
    {"frTestResults", "QFrame", "horizontalLayout_6", 1, 0, 1, 1, "", "sunken panel 3"},

    // the parameters
    {"frame_2", "QFrame", "gridLayout_5", 0, 3, 1, 1, "", "bare"},
    {"laTestParameters", "QLabel", "gridLayout_5", 1, 0, 1, 1, "Test Parameters", "bold centred"},
    {"cbProfile", "QComboBox", "gridLayout_5", 1, 2, 1, 2, "Select...", ""},
    {"frSaveDelete", "QFrame", "gridLayout_5", 1, 5, 1, 1, "", "bare"},
    {"pbSaveProfile", "QPushButton", "horizontalLayout_10", 0, 0, 1, 1, "Save", ""},
    {"pbDeleteProfile", "QPushButton", "horizontalLayout_10", 1, 0, 1, 1, "Delete", ""},
    {"line_9", "QFrame", "gridLayout_5", 2, 0, 1, 6, "", "horizontal rule"},
    {"frame_3", "QFrame", "gridLayout_5", 3, 3, 1, 1, "", "bare"},
    {"laProfileName", "QLabel", "gridLayout_5", 6, 0, 1, 1, "Profile Name", "bold"},
    {"line", "QFrame", "gridLayout_5", 6, 1, 1, 1, "", "vertical rule"},
    {"laNumberOfCycles", "QLabel", "gridLayout_5", 6, 2, 1, 1, "# Cycles", ""},
    {"sbNumberOfCycles", "QSpinBox", "gridLayout_5", 6, 3, 1, 1, "1", ""},
    {"line_5", "QFrame", "gridLayout_5", 6, 4, 1, 1, "", "vertical rule"},
    {"cbPromptToDischarge", "QCheckBox", "gridLayout_5", 6, 5, 1, 1, "Prompt to Discharge", ""},
    {"leProfileName", "QLineEdit", "gridLayout_5", 7, 0, 1, 1, "", ""},
    {"line_2", "QFrame", "gridLayout_5", 7, 1, 1, 1, "", "vertical rule"},
    {"laMaxChargeTime", "QLabel", "gridLayout_5", 7, 2, 1, 1, "Max Charge Time", ""},
    {"frMaxChargeTime", "QFrame", "gridLayout_5", 7, 3, 1, 1, "", "bare"},
    {"leMaxChargeTime", "QLineEdit", "gridLayout", 0, 0, 1, 1, "", ""},
    {"laMaxChargeTimeUnits", "QLabel", "gridLayout", 0, 1, 1, 1, "h", ""},
    {"line_6", "QFrame", "gridLayout_5", 7, 4, 1, 1, "", "vertical rule"},
    {"cbDetectFullCharge", "QCheckBox", "gridLayout_5", 7, 5, 1, 1, "Detect Full Charge",
     "disabled"},
    {"frDirectory", "QFrame", "gridLayout_5", 9, 0, 1, 1, "", "bare"},
    {"laPathForLogFile", "QLabel", "horizontalLayout_9", 0, 0, 1, 1, "Path for Log File", "bold"},
    {"pbDirectory", "QPushButton", "horizontalLayout_9", 1, 0, 1, 1, "...", ""},
    {"line_3", "QFrame", "gridLayout_5", 9, 1, 1, 1, "", "vertical rule"},
    {"laLowVoltageCutoff", "QLabel", "gridLayout_5", 9, 2, 1, 1, "LV Cutoff", ""},
    {"frLowVoltageCutoff", "QFrame", "gridLayout_5", 9, 3, 1, 1, "", "bare"},
    {"leLowVoltageCutoff", "QLineEdit", "horizontalLayout_8", 0, 0, 1, 1, "", ""},
    {"laLowVoltageCutoffUnits", "QLabel", "horizontalLayout_8", 1, 0, 1, 1, "V", ""},
    {"line_7", "QFrame", "gridLayout_5", 9, 4, 1, 1, "", "vertical rule"},
    {"cbMeasureInternalResistance", "QCheckBox", "gridLayout_5", 9, 5, 1, 1, "Measure RBatt", ""},
    {"laDirectory", "QLabel", "gridLayout_5", 10, 0, 1, 1, "laDirectory laDirectory laDirect", ""},
    {"line_4", "QFrame", "gridLayout_5", 10, 1, 1, 1, "", "vertical rule"},
    {"laFinalCharge", "QLabel", "gridLayout_5", 10, 2, 1, 1, "Final Charge", ""},
    {"frFinalCharge", "QFrame", "gridLayout_5", 10, 3, 1, 1, "", "bare"},
    {"leFinalCharge", "QLineEdit", "horizontalLayout_7", 0, 0, 1, 1, "", ""},
    {"laFinalChargeUnits", "QLabel", "horizontalLayout_7", 1, 0, 1, 1, "V", ""},
    {"line_8", "QFrame", "gridLayout_5", 10, 4, 1, 1, "", "vertical rule"},
    {"frInternalResistance", "QFrame", "gridLayout_5", 10, 5, 1, 1, "", "bare"},
    {"laInternalResistanceInterval", "QLabel", "horizontalLayout_2", 0, 0, 1, 1, "every ", "right"},
    {"leInternalResistanceTestIntervalAh", "QLineEdit", "horizontalLayout_2", 1, 0, 1, 1, "", ""},
    {"laInternalResistanceIntervalUnits", "QLabel", "horizontalLayout_2", 2, 0, 1, 1, " Ah", ""},

    // the results
    {"laTestResults", "QLabel", "gridLayout_10", 0, 0, 1, 1, "Test Results", "bold centred"},
    {"line_10", "QFrame", "gridLayout_10", 1, 0, 1, 1, "", "horizontal rule"},
    {"laCummAmpHours", "QLabel", "gridLayout_10", 2, 0, 1, 1, "laCummAmpHours", "centred"},
    {"laCummWattHours", "QLabel", "gridLayout_10", 3, 0, 1, 1, "laCummWattHours", "centred"},
    {"laIntResistance", "QLabel", "gridLayout_10", 5, 0, 1, 1, "laIntResistance", "centred"},
    {"laElapsedTime", "QLabel", "gridLayout_10", 6, 0, 1, 1, "laElapsedTime", "centred"},
};

QString look_of_label(const QLabel& label)
{
    QStringList look;
    if (label.font().pointSize() == 14)
        look += "14 point";
    if (label.font().bold())
        look += "bold";
    if (label.alignment() == Qt::AlignCenter)
        look += "centred";
    else if ((label.alignment() & Qt::AlignRight) != 0)
        look += "right";
    if (label.frameShape() != QFrame::NoFrame || label.wordWrap())
        look += "odd";
    return look.join(' ');
}

QString look_of_frame(const QFrame& frame)
{
    switch (frame.frameShape()) {
    case QFrame::NoFrame:
        return "bare";
    case QFrame::HLine:
        return "horizontal rule";
    case QFrame::VLine:
        return "vertical rule";
    default:
        break;
    }
    const QString shadow = frame.frameShadow() == QFrame::Plain    ? "plain"
                           : frame.frameShadow() == QFrame::Raised ? "raised"
                                                                   : "sunken";
    const QString shape = frame.frameShape() == QFrame::Box ? "box" : "panel";
    return QString("%1 %2 %3").arg(shadow, shape).arg(frame.lineWidth());
}

QString look_of(const QWidget* widget)
{
    if (const auto* label = qobject_cast<const QLabel*>(widget))
        return look_of_label(*label);
    if (const auto* frame = qobject_cast<const QFrame*>(widget))
        return look_of_frame(*frame);
    return widget->isEnabled() ? "" : "disabled";
}

QString text_of(const QWidget* widget)
{
    const char* property =
        qobject_cast<const QComboBox*>(widget) != nullptr ? "currentText" : "text";
    return widget->property(property).toString();
}

QRect place_in(const QLayout* layout, const QWidget* widget)
{
    QRect place(0, layout->indexOf(const_cast<QWidget*>(widget)), 1, 1);
    if (const auto* grid = qobject_cast<const QGridLayout*>(layout)) {
        int row = 0;
        int column = 0;
        int rows = 0;
        int columns = 0;
        grid->getItemPosition(grid->indexOf(const_cast<QWidget*>(widget)), &row, &column, &rows,
                              &columns);
        place = QRect(column, row, columns, rows);
    }
    return place;
}
}  // namespace

void PanelTest::the_frame_is_a_raised_panel()
{
    Form form;
    QCOMPARE(form.frame.objectName(), QString("TestStation"));
    QCOMPARE(form.frame.windowTitle(), QString("Frame"));
    QCOMPARE(look_of(&form.frame), QString("raised panel 3"));
}

void PanelTest::each_layout_has_its_margins_and_spacings_data()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const Layout& layout : LAYOUTS)
        QTest::newRow(layout.name) << index++;
}

void PanelTest::each_layout_has_its_margins_and_spacings()
{
    QFETCH(int, index);
    const Layout& wanted = LAYOUTS[index];
    Form form;
    auto* layout = form.frame.findChild<QLayout*>(wanted.name);
    QVERIFY(layout != nullptr);
    QCOMPARE(layout->metaObject()->className(), wanted.kind);
    QCOMPARE(layout->parentWidget()->objectName(), QString(wanted.owner));
    QCOMPARE(layout->parentWidget()->layout(), layout);
    QCOMPARE(layout->contentsMargins(), wanted.margins);

    const QStyle* style = form.frame.style();
    const int across =
        wanted.across >= 0 ? wanted.across : style->pixelMetric(QStyle::PM_LayoutHorizontalSpacing);
    const int down =
        wanted.down >= 0 ? wanted.down : style->pixelMetric(QStyle::PM_LayoutVerticalSpacing);
    if (const auto* grid = qobject_cast<const QGridLayout*>(layout)) {
        QCOMPARE(grid->horizontalSpacing(), across);
        QCOMPARE(grid->verticalSpacing(), down);
    } else {
        QCOMPARE(layout->spacing(), across);
    }
}

void PanelTest::each_widget_stands_in_its_place_data()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const Place& place : PLACES)
        QTest::newRow(place.name) << index++;
}

void PanelTest::each_widget_stands_in_its_place()
{
    QFETCH(int, index);
    const Place& wanted = PLACES[index];
    Form form;
    auto* widget = form.frame.findChild<QWidget*>(wanted.name);
    QVERIFY(widget != nullptr);
    QCOMPARE(widget->metaObject()->className(), wanted.kind);
    const QLayout* layout = widget->parentWidget()->layout();
    QCOMPARE(layout->objectName(), QString(wanted.layout));
    QCOMPARE(place_in(layout, widget),
             QRect(wanted.column, wanted.row, wanted.columns, wanted.rows));
    QCOMPARE(text_of(widget), QString::fromUtf8(wanted.text));
    QCOMPARE(look_of(widget), QString(wanted.look));
}

void PanelTest::there_is_nothing_else()
{
    Form form;
    QStringList wanted;
    for (const Place& place : PLACES)
        wanted += place.name;
    wanted.sort();
    QStringList found;
    for (const QWidget* widget : form.frame.findChildren<QWidget*>())
        if (widget->parentWidget()->layout() != nullptr)
            found += widget->objectName();
    found.sort();
    QCOMPARE(found, wanted);
}

void PanelTest::a_spacer_parts_the_phase_from_the_buttons()
{
    Form form;
    const QLayoutItem* item = form.ui.gridLayout_8->itemAtPosition(0, 2);
    QVERIFY(item != nullptr);
    QCOMPARE(item->expandingDirections(), Qt::Orientations(Qt::Horizontal));
    QVERIFY(form.ui.frame_2->layout()->isEmpty());
    QCOMPARE(form.ui.frame_2->layout()->metaObject()->className(), "QHBoxLayout");
    QVERIFY(form.ui.frame_3->layout()->isEmpty());
    QCOMPARE(form.ui.frame_3->layout()->metaObject()->className(), "QHBoxLayout");
}

void PanelTest::a_test_has_one_to_99_cycles()
{
    Form form;
    QCOMPARE(form.ui.sbNumberOfCycles->minimum(), 1);
    QCOMPARE(form.ui.sbNumberOfCycles->maximum(), 99);
}

void PanelTest::texts_from_outside_are_shown_as_they_are()
{
    // An instrument's babble or the name of a directory may look like markup.
    Form form;
    QCOMPARE(form.ui.laKestrometerStatus->textFormat(), Qt::PlainText);
    QCOMPARE(form.ui.laDirectory->textFormat(), Qt::PlainText);
}

KEST_TEST(PanelTest)
#include "tst_panel.moc"
