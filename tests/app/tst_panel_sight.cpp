#include "app/panel_sight.h"
#include "support/test_program.h"

#include "app/main_window.h"
#include "chart_window.h"
#include "device/kestrometer.h"
#include "station/test_station.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QtTest>

#include <functional>

/** Panels out of sight ask for no paint, and are as they should be once they come into sight. */
class PanelSightTest : public QObject
{
    Q_OBJECT

private slots:
    void only_panels_in_sight_are_painted();
    void a_label_out_of_sight_wakes_nothing();
    void what_comes_into_sight_is_up_to_date_data();
    void what_comes_into_sight_is_up_to_date();
};

namespace
{
constexpr int STATIONS = 12;

class UpdateCounter : public QObject
{
public:
    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::UpdateRequest ? 1 : 0;
        return false;
    }

    int count = 0;
};

struct Column
{
    Column()
    {
        for (int id = 1; id <= STATIONS; ++id)
            bench.add_station(id);
        bench.settle();
    }

    QScrollBar* bar() const
    {
        return area->verticalScrollBar();
    }

    bool in_sight(const TestStation& station) const
    {
        const QRect place(station.mapTo(area->viewport(), QPoint(0, 0)), station.size());
        return area->viewport()->rect().intersects(place);
    }

    /** The panels on the screen, as they were painted. */
    QImage shown() const
    {
        bench.settle();
        const QWidget* viewport = area->viewport();
        const QPoint corner = viewport->mapTo(bench.window.get(), QPoint(0, 0));
        return QGuiApplication::primaryScreen()
            ->grabWindow(bench.window->winId(), corner.x(), corner.y(), viewport->width(),
                         viewport->height())
            .toImage();
    }

    void write_everywhere(const QString& text) const
    {
        for (TestStation* station : qAsConst(TestStation::all_instances))
            for (const char* label : {"laPhase", "laVoltage", "laElapsedTime"})
                station->findChild<QLabel*>(label)->setText(text);
        bench.settle();
    }

    void press(int panel, const char* button) const
    {
        TestStation::all_instances.at(panel)->findChild<QPushButton*>(button)->click();
    }

    ChartWindow bench;
    QScrollArea* area = bench.widget<QScrollArea>("scrollArea");
};

using Step = std::function<void(Column&)>;
}  // namespace

Q_DECLARE_METATYPE(Step)

void PanelSightTest::only_panels_in_sight_are_painted()
{
    Column column;
    for (const double part : {0.0, 0.3, 1.0, 0.5}) {
        column.bar()->setValue(int(column.bar()->maximum() * part));
        column.bench.settle();
        int seen = 0;
        for (TestStation* station : qAsConst(TestStation::all_instances)) {
            QCOMPARE(station->updatesEnabled(), column.in_sight(*station));
            seen += column.in_sight(*station) ? 1 : 0;
        }
        QVERIFY(seen > 0);
        QVERIFY(seen < STATIONS);
    }
}

void PanelSightTest::a_label_out_of_sight_wakes_nothing()
{
    Column column;
    UpdateCounter counter;
    column.bench.window->installEventFilter(&counter);
    const auto write = [&](TestStation* station) {
        counter.count = 0;
        station->findChild<QLabel*>("laPhase")->setText("other");
        column.bench.settle();
        return counter.count;
    };
    QCOMPARE(write(TestStation::all_instances.last()), 0);
    QVERIFY(write(TestStation::all_instances.first()) > 0);
}

void PanelSightTest::what_comes_into_sight_is_up_to_date_data()
{
    QTest::addColumn<Step>("step");
    const auto row = [](const char* name, const Step& step) {
        QTest::newRow(name) << step;
    };
    row("a line down", [](Column& column) { column.bar()->setValue(20); });
    row("a page down",
        [](Column& column) { column.bar()->triggerAction(QAbstractSlider::SliderPageStepAdd); });
    row("to the end", [](Column& column) { column.bar()->setValue(column.bar()->maximum()); });
    row("to the end and back", [](Column& column) {
        column.bar()->setValue(column.bar()->maximum());
        column.write_everywhere("at the end");
        column.bar()->setValue(0);
    });
    row("there and back unpainted", [](Column& column) {
        column.bar()->setValue(column.bar()->maximum());
        column.bar()->setValue(0);
    });
    row("details folded", [](Column& column) {
        for (int i = 0; i < STATIONS; ++i)
            column.press(i, "pbExpandCollapse");
    });
    row("details folded at the end", [](Column& column) {
        column.bar()->setValue(column.bar()->maximum());
        column.bench.settle();
        for (int i = 0; i < STATIONS; ++i)
            column.press(i, "pbExpandCollapse");
    });
    row("details shown again", [](Column& column) {
        for (int round = 0; round < 2; ++round) {
            for (int i = 0; i < STATIONS; ++i)
                column.press(i, "pbExpandCollapse");
            column.bench.settle();
        }
    });
    row("stations closed", [](Column& column) {
        for (int i = 0; i < STATIONS - 2; ++i)
            column.bench.window->slot_close_request(TestStation::all_instances.first());
    });
    row("a station added", [](Column& column) { column.bench.add_station(0); });
    // Its place is taken by the last panel, and the column stays as high as it was.
    row("sorted anew", [](Column&) {
        TestStation* last = TestStation::all_instances.last();
        last->kestrometer->id = 0;
        emit last->sig_id_change();
    });
    row("a higher window", [](Column& column) {
        column.bench.window->showNormal();
        column.bench.window->resize(column.bench.window->width(), 2000);
    });
    row("hidden and shown", [](Column& column) {
        column.bench.window->hide();
        column.bar()->setValue(column.bar()->maximum());
        for (int i = 0; i < STATIONS; ++i)
            column.press(i, "pbExpandCollapse");
        column.bench.window->show();
    });
}

void PanelSightTest::what_comes_into_sight_is_up_to_date()
{
    QFETCH(Step, step);
    Column column;
    column.write_everywhere("before");
    step(column);
    column.bench.settle();
    for (TestStation* station : qAsConst(TestStation::all_instances))
        QVERIFY(station->updatesEnabled() || !column.in_sight(*station));
    const QImage shown = column.shown();
    for (TestStation* station : qAsConst(TestStation::all_instances))
        station->setUpdatesEnabled(true);
    column.area->viewport()->update();
    QCOMPARE(column.shown(), shown);
    // Every panel can be reached, and the last one is painted, too.
    column.write_everywhere("after");
    column.bar()->setValue(column.bar()->maximum());
    const QImage end = column.shown();
    column.area->viewport()->update();
    for (TestStation* station : qAsConst(TestStation::all_instances))
        station->update();
    QCOMPARE(column.shown(), end);
}

KEST_TEST(PanelSightTest)
#include "tst_panel_sight.moc"
