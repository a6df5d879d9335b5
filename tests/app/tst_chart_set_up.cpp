#include "app/main_window.h"

#include "chart_window.h"
#include "charts/paint_box.h"
#include "config/settings.h"
#include "station/test_station.h"
#include "support/help_document.h"
#include "support/station_bench.h"
#include "support/test_program.h"

#include <QAction>
#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QtTest>

Q_DECLARE_METATYPE(LineChart*)

namespace
{
const QString MILLIOHM = QString("m") + QChar(0x2126);

/** The colours of the desktop, as long as it lives. */
class DesktopColors
{
public:
    explicit DesktopColors(const QPalette& palette) : former(QApplication::palette())
    {
        QApplication::setPalette(palette);
    }

    ~DesktopColors()
    {
        QApplication::setPalette(former);
    }

private:
    const QPalette former;
};

/** Both charts, with either choice of the lower one and room for all controls. */
QList<QImage> looks_of(const ChartWindow& bench)
{
    bench.window->showNormal();
    bench.window->resize(1500, 800);
    QList<QImage> looks;
    for (const char* choice : {"RBatt", "Current"}) {
        bench.widget<QComboBox>("cbBottomChart")->setCurrentText(choice);
        looks << bench.shown(bench.upper) << bench.shown(bench.lower);
    }
    return looks;
}
}  // namespace

/** The charts and their controls as the window makes them, and the rate of their refresh. */
class ChartSetUpTest : public QObject
{
    Q_OBJECT

private slots:
    void the_charts_bear_their_captions_data();
    void the_charts_bear_their_captions();
    void the_boxes_lie_in_their_places();
    void only_the_charts_have_a_rubber_band();
    void the_controls_lie_on_the_charts_data();
    void the_controls_lie_on_the_charts();
    void the_controls_stand_in_their_positions();
    void the_lower_controls_follow_a_new_size();
    void a_second_window_gets_the_label_too();
    void controls_look_the_same_under_every_palette();
    void the_refresh_rate_comes_from_the_settings_data();
    void the_refresh_rate_comes_from_the_settings();
    void the_settings_dialog_sets_the_rate_again();
    void a_refresh_paints_both_charts();
};

void ChartSetUpTest::the_charts_bear_their_captions_data()
{
    QTest::addColumn<LineChart*>("chart");
    add_columns<QString>({"title", "left"});
    add_row("voltage", &TestStation::voltage_vs_amphours_chart, "Voltage vs. Amp-Hours",
            "Voltage (V)");
    add_row("current", &TestStation::current_vs_amphours_chart, "Current vs. Amp-Hours",
            "Current (A)");
    add_row("resistance", &TestStation::internal_resistance_chart,
            "Internal Resistance vs. Amp-Hours", "Internal Resistance (" + MILLIOHM + ")");
}

void ChartSetUpTest::the_charts_bear_their_captions()
{
    QFETCH(LineChart*, chart);
    const ChartWindow bench;
    QTEST(chart->top_axis.caption, "title");
    QTEST(chart->left_axis.caption, "left");
    QCOMPARE(chart->bottom_axis.caption, QString("Amp-Hours (Ah)"));
    QCOMPARE(chart->right_axis.caption, QString());
    QCOMPARE(chart->grid_pen,
             QPen(QBrush(QColor(240, 240, 240)), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    for (const Axis* axis : {&chart->bottom_axis, &chart->left_axis}) {
        QCOMPARE(axis->forced_range.min, 0.0);
        QCOMPARE(axis->forced_range.max, -qInf());
    }
    for (const Axis* axis : {&chart->top_axis, &chart->right_axis})
        QCOMPARE(axis->forced_range.min, qInf());
}

void ChartSetUpTest::the_boxes_lie_in_their_places()
{
    const ChartWindow bench;
    auto* column = bench.window->findChild<QBoxLayout*>("chart_layout");
    QCOMPARE(column->itemAt(0)->widget(), bench.header);
    QCOMPARE(column->itemAt(1)->widget(), bench.widget<QSplitter>("splitter2"));
    auto* splitter = bench.widget<QSplitter>("splitter2");
    QCOMPARE(splitter->count(), 2);
    QVERIFY(bench.upper->mapToGlobal({0, 0}).y() < bench.lower->mapToGlobal({0, 0}).y());
    for (const PaintBox* box : {bench.header, bench.upper, bench.lower})
        QVERIFY(box->isVisible());
}

void ChartSetUpTest::only_the_charts_have_a_rubber_band()
{
    const ChartWindow bench;
    QVERIFY(bench.upper->rubberband_enabled);
    QVERIFY(bench.lower->rubberband_enabled);
    QVERIFY(!bench.header->rubberband_enabled);
}

void ChartSetUpTest::the_controls_lie_on_the_charts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("upper");
    add_columns<QString>({"text", "tooltip"});
    const QString cancel =
        "Restores the chart to the default view so all chart data is visible at once.";
    const QString smooth =
        "Toggles chart smoothing. The Kestrometer's voltage sensor has a resolution of 0.01V and "
        "its current sensor has a resolution of 0.1A. Consequently the data plotted on the chart "
        "will have a visible stairstep effect at some zoom levels. With smoothing enabled, data "
        "points are averaged, resulting in smoother curves. Note that if smoothing is enabled, the "
        "closest data point to the mouse cursor may appear off to one side of the curve it belongs "
        "to.";
    QTest::newRow("cancel, upper") << "pbCancelVoltageZoom" << true << "Cancel Zoom" << cancel;
    QTest::newRow("smooth, upper") << "cbSmoothVoltageChart" << true << "Use Smoothing" << smooth;
    QTest::newRow("cancel, lower") << "pbCancelCurrentZoom" << false << "Cancel Zoom" << cancel;
    QTest::newRow("smooth, lower") << "cbSmoothCurrentChart" << false << "Use Smoothing" << smooth;
    add_row("choice", "cbBottomChart", false, "Current",
            "Selects which chart is displayed: Current vs. Amp-Hours or Internal Resistance vs. "
            "Amp-Hours. If internal resistance measurements are not collected (or <i>were</i> not "
            "collected, in the case of a preview of an pre-existing log file) during the discharge "
            "phase, the IR chart will not display any information.");
}

void ChartSetUpTest::the_controls_lie_on_the_charts()
{
    QFETCH(QString, name);
    QFETCH(bool, upper);
    const ChartWindow bench;
    auto* control = bench.widget<QWidget>(qPrintable(name));
    QCOMPARE(control->parentWidget(), upper ? bench.upper : bench.lower);
    QTEST(control->toolTip(), "tooltip");
    QVERIFY(control->isVisible());
    if (const auto* button = qobject_cast<QPushButton*>(control)) {
        QTEST(button->text(), "text");
        QVERIFY(!button->isEnabled());
    } else if (const auto* check_box = qobject_cast<QCheckBox*>(control)) {
        QTEST(check_box->text(), "text");
        QVERIFY(check_box->isChecked());
        QVERIFY(check_box->isEnabled());
    } else {
        const auto* choice = qobject_cast<QComboBox*>(control);
        QTEST(choice->currentText(), "text");
        QCOMPARE(choice->count(), 2);
        QCOMPARE(choice->itemText(1), QString("RBatt"));
    }
}

void ChartSetUpTest::the_controls_stand_in_their_positions()
{
    const ChartWindow bench;
    const auto* upper_cancel = bench.widget<QPushButton>("pbCancelVoltageZoom");
    const auto* lower_cancel = bench.widget<QPushButton>("pbCancelCurrentZoom");
    QCOMPARE(upper_cancel->pos(), QPoint(0, 0));
    QCOMPARE(lower_cancel->pos(), QPoint(0, 0));
    QVERIFY(upper_cancel->width() >= upper_cancel->minimumSizeHint().width());
    QCOMPARE(bench.widget<QCheckBox>("cbSmoothVoltageChart")->pos(),
             QPoint(upper_cancel->width(), 0));
    QCOMPARE(bench.widget<QCheckBox>("cbSmoothCurrentChart")->pos(),
             QPoint(lower_cancel->width() - 1, 0));

    const auto* choice = bench.widget<QComboBox>("cbBottomChart");
    QCOMPARE(choice->minimumWidth(), choice->maximumWidth());
    QCOMPARE(choice->width(), 8 * QFontMetrics(QComboBox().font()).horizontalAdvance('m'));
}

void ChartSetUpTest::the_lower_controls_follow_a_new_size()
{
    const ChartWindow bench;
    const auto* choice = bench.widget<QComboBox>("cbBottomChart");
    const QLabel* label = nullptr;
    for (const QLabel* found : bench.lower->findChildren<QLabel*>())
        if (found->text() == "Chart to display: ")
            label = found;
    if (label == nullptr)
        QFAIL("The lower chart has no words beside its choice.");
    QVERIFY(label->isVisible());
    const int former_width = bench.lower->width();
    for (const int width : {former_width, 900}) {
        bench.window->showNormal();
        bench.window->resize(width + 700, 700);
        bench.settle();
        QCOMPARE(choice->pos(), QPoint(bench.lower->width() - choice->width(), 0));
        QCOMPARE(label->pos(),
                 QPoint(choice->x() - label->width(), (choice->height() - label->height()) / 2));
    }
    QVERIFY(bench.lower->width() != former_width);
}

void ChartSetUpTest::a_second_window_gets_the_label_too()
{
    for (int i = 0; i < 2; ++i) {
        const ChartWindow bench;
        int labels = 0;
        for (const QLabel* found : bench.lower->findChildren<QLabel*>())
            labels += found->text() == "Chart to display: " && found->isVisible() ? 1 : 0;
        QCOMPARE(labels, 1);
    }
}

/** On the charts' white, the light letters of a dark desktop could not be read. */
void ChartSetUpTest::controls_look_the_same_under_every_palette()
{
    QPalette dark(QColor(45, 45, 48), QColor(30, 30, 30));
    dark.setColor(QPalette::Base, QColor(20, 20, 20));
    QCOMPARE(dark.color(QPalette::WindowText), QColor(Qt::white));
    auto bench = std::make_unique<ChartWindow>();
    const QList<QImage> looks = looks_of(*bench);
    const DesktopColors colors(dark);
    QCOMPARE(bench->header->palette().color(QPalette::WindowText), QColor(Qt::white));
    QCOMPARE(looks_of(*bench), looks);
    // Before the next window, as both have the same label.
    bench.reset();
    QCOMPARE(looks_of(ChartWindow()), looks);
}

void ChartSetUpTest::the_refresh_rate_comes_from_the_settings_data()
{
    add_columns<int>({"rate", "interval"});
    QTest::newRow("default") << 3 << 333;
    QTest::newRow("no divisor") << 7 << 142;
    QTest::newRow("once a second") << 1 << 1000;
    QTest::newRow("none, by hand") << 0 << 1000;
    QTest::newRow("thousands, by hand") << 5000 << 1;
}

void ChartSetUpTest::the_refresh_rate_comes_from_the_settings()
{
    QFETCH(int, rate);
    QFETCH(int, interval);
    const QTemporaryDir folder;
    load_test_settings(folder.path());
    forget_help_document();
    Settings::set_chart_refresh_rate(rate);
    QVERIFY(Settings::save());
    const MainWindow window(nullptr);
    QList<int> intervals;
    for (const QTimer* timer :
         window.findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly)) {
        QVERIFY(timer->isActive());
        intervals.append(timer->interval());
    }
    QCOMPARE(intervals, (QList<int>{interval, 1000}));
}

void ChartSetUpTest::the_settings_dialog_sets_the_rate_again()
{
    ChartWindow bench;
    bench.answers.handle([](QWidget* dialog) {
        Settings::set_chart_refresh_rate(8);
        static_cast<QDialog*>(dialog)->reject();
    });
    bench.window->findChild<QAction*>("actionSettings")->trigger();
    QCOMPARE(bench.refresh_timer->interval(), 125);
}

void ChartSetUpTest::a_refresh_paints_both_charts()
{
    const ChartWindow bench;
    const PaintCounter upper(bench.upper);
    const PaintCounter lower(bench.lower);
    bench.refresh_timer->start(1000000);
    QTimerEvent tick(bench.refresh_timer->timerId());
    QCoreApplication::sendEvent(bench.refresh_timer, &tick);
    bench.window->slot_refresh_charts();
    bench.settle();
    QCOMPARE(upper.count, 1);
    QCOMPARE(lower.count, 1);
}

KEST_TEST(ChartSetUpTest)
#include "tst_chart_set_up.moc"
