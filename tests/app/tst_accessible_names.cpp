#include "app/main_window.h"
#include "config/settings.h"
#include "device/kestrometer.h"
#include "dialogs/about.h"
#include "dialogs/add_test_station_dialog.h"
#include "dialogs/edit_settings_dialog.h"
#include "dialogs/preexisting_log_file_dialog.h"
#include "dialogs/widget_font_debug_dialog.h"
#include "station/test_station.h"
#include "support/help_document.h"
#include "support/station_bench.h"
#include "support/test_program.h"

#include <QAccessible>
#include <QAction>
#include <QComboBox>
#include <QTextBrowser>
#include <QtTest>

namespace
{
/** Of a combo box the choice is the name on Linux, and its own name stands beside that. */
QString spoken_name(QWidget* widget)
{
    if (!widget->accessibleName().isEmpty())
        return widget->accessibleName();
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget);
    return interface != nullptr ? interface->text(QAccessible::Name) : QString();
}

/** Parts of the toolkit's own widgets, whose owners have the name. */
bool is_inner(const QWidget* widget)
{
    if (widget->objectName().startsWith("qt_"))
        return true;
    const QWidget* parent = widget->parentWidget();
    return parent != nullptr && (qobject_cast<const QComboBox*>(parent) != nullptr ||
                                 parent->inherits("QComboBoxPrivateContainer"));
}

bool takes_focus(const QWidget* widget)
{
    return widget->focusPolicy() != Qt::NoFocus && widget->focusProxy() == nullptr &&
           !is_inner(widget);
}

QList<QWidget*> focusable_in(QWidget* form)
{
    QList<QWidget*> widgets;
    if (takes_focus(form))
        widgets.append(form);
    for (QWidget* widget : form->findChildren<QWidget*>())
        if (takes_focus(widget))
            widgets.append(widget);
    return widgets;
}

/** Those whose name is no word, "X" for one. */
QStringList nameless_in(QWidget* form)
{
    static const QRegularExpression word("[A-Za-z]{2}");
    QStringList nameless;
    for (QWidget* widget : focusable_in(form))
        if (!spoken_name(widget).contains(word))
            nameless.append(widget->objectName() + " (" + widget->metaObject()->className() + ")");
    return nameless;
}

/** A window over settings of its own, with one preview station in it, which has three cycles. */
struct WindowBench
{
    WindowBench()
    {
        load_test_settings(folder.path());
        forget_help_document();
        window = std::make_unique<MainWindow>(nullptr);
        station = new TestStation(window.get(), nullptr);
        for (int i = 0; i < 3; ++i)
            station->cycles.append(new TestCycle);
        station->current_cycle = station->cycles.last();
        window->add_station(station);
    }

    QTemporaryDir folder;
    ModalAnswer answers;
    std::unique_ptr<MainWindow> window;
    TestStation* station = nullptr;
};
}  // namespace

/** What a screen reader calls the controls, above all those whose face says nothing. */
class AccessibleNamesTest : public QObject
{
    Q_OBJECT

private slots:
    void each_control_of_the_window_has_a_name();
    void each_control_of_a_dialog_has_a_name_data();
    void each_control_of_a_dialog_has_a_name();
    void the_manual_has_a_name();
    void a_faceless_control_is_called_by_its_use_data();
    void a_faceless_control_is_called_by_its_use();
    void the_row_above_the_charts_is_called_by_its_headings();
    void names_change_nothing_on_the_screen();
};

void AccessibleNamesTest::each_control_of_the_window_has_a_name()
{
    WindowBench bench;
    QCOMPARE(nameless_in(bench.window.get()), QStringList());
    // The panel's, the row's above the charts and the window's own.
    QVERIFY(focusable_in(bench.window.get()).size() >= 20 + 5 + 5);
}

void AccessibleNamesTest::each_control_of_a_dialog_has_a_name_data()
{
    QTest::addColumn<int>("controls");

    QTest::newRow("about") << 6;
    QTest::newRow("settings") << 9;
    QTest::newRow("port") << 4;
    QTest::newRow("earlier log") << 5;
    QTest::newRow("fonts") << 11;
}

void AccessibleNamesTest::each_control_of_a_dialog_has_a_name()
{
    const QTemporaryDir folder;
    load_test_settings(folder.path());
    const QByteArray name = QTest::currentDataTag();
    std::unique_ptr<QDialog> dialog;
    if (name == "about")
        dialog = std::make_unique<About>(nullptr);
    else if (name == "settings")
        dialog = std::make_unique<EditSettingsDialog>(nullptr);
    else if (name == "port")
        dialog = std::make_unique<AddTestStationDialog>(nullptr);
    else if (name == "earlier log")
        dialog = std::make_unique<PreexistingLogFileDialog>(nullptr);
    else
        dialog = std::make_unique<WidgetFontDebugDialog>(nullptr);
    QCOMPARE(nameless_in(dialog.get()), QStringList());
    QTEST(focusable_in(dialog.get()).size(), "controls");
}

void AccessibleNamesTest::the_manual_has_a_name()
{
    WindowBench bench;
    bench.window->findChild<QAction*>("actionHelp")->trigger();
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (qobject_cast<QTextBrowser*>(widget) == nullptr)
            continue;
        QCOMPARE(nameless_in(widget), QStringList());
        delete widget;
        return;
    }
    QFAIL("no manual");
}

void AccessibleNamesTest::a_faceless_control_is_called_by_its_use_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("pbExpandCollapse") << "Expand / Collapse";
    QTest::newRow("pbClose") << "Close the Test Station";
    QTest::newRow("pbDirectory") << "Change Path for Log File";
    QTest::newRow("leSerialNumber") << "Serial Number";
    QTest::newRow("leProfileName") << "Name";
    QTest::newRow("cbProfile") << "Profile";
    QTest::newRow("sbNumberOfCycles") << "# Cycles";
    QTest::newRow("leMaxChargeTime") << "Max Charge Time";
    QTest::newRow("leLowVoltageCutoff") << "LV Cutoff";
    QTest::newRow("leFinalCharge") << "Final Charge";
    QTest::newRow("leInternalResistanceTestIntervalAh") << "Measure RBatt Interval";
}

void AccessibleNamesTest::a_faceless_control_is_called_by_its_use()
{
    StationBench bench;
    QTEST(spoken_name(bench.widget<QWidget>(QTest::currentDataTag())), "name");
}

void AccessibleNamesTest::the_row_above_the_charts_is_called_by_its_headings()
{
    WindowBench bench;
    QCOMPARE(spoken_name(&bench.station->color_combobox), QString("Color"));
    QCOMPARE(spoken_name(&bench.station->all_cycles_checkbox), QString("All"));
    QStringList names;
    for (TestCycle* cycle : qAsConst(bench.station->cycles))
        names.append(spoken_name(&cycle->checkbox));
    QCOMPARE(names, (QStringList{"Cycle 1", "Cycle 2", "Cycle 3"}));
}

void AccessibleNamesTest::names_change_nothing_on_the_screen()
{
    StationBench bench;
    const QImage named = bench.station->grab().toImage();
    for (QWidget* widget : bench.station->findChildren<QWidget*>())
        widget->setAccessibleName(QString());
    QCOMPARE(bench.station->grab().toImage(), named);
    QCOMPARE(bench.widget<QWidget>("pbClose")->property("text").toString(), QString("X"));
}

KEST_TEST(AccessibleNamesTest)
#include "tst_accessible_names.moc"
