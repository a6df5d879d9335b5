#include "chart_window.h"

#include "app/main_window.h"
#include "charts/paint_box.h"
#include "config/settings.h"
#include "device/kestrometer.h"
#include "station/test_station.h"
#include "support/help_document.h"
#include "support/station_bench.h"

#include <QBoxLayout>
#include <QCursor>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QSplitter>
#include <QTimer>
#include <QtTest>

ChartWindow::ChartWindow()
{
    TestStation::num_previews = 0;
    load_test_settings(folder.path());
    forget_help_document();
    window = std::make_unique<MainWindow>(nullptr);
    // The window has loaded the settings anew.
    Settings::set_log_dir(folder.path());
    Settings::set_pdf_dir(folder.path());
    for (QTimer* timer : window->findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly)) {
        timer->stop();
        if (timer->interval() != 1000)
            refresh_timer = timer;
    }
    header = qobject_cast<PaintBox*>(
        window->findChild<QBoxLayout*>("chart_layout")->itemAt(0)->widget());
    upper = qobject_cast<PaintBox*>(widget<QSplitter>("splitter2")->widget(0));
    lower = qobject_cast<PaintBox*>(widget<QSplitter>("splitter2")->widget(1));
    window->show();
    if (!QTest::qWaitForWindowExposed(window.get()))
        qFatal("The window is not on the screen.");
    hover_nowhere();
    settle();
}

ChartWindow::~ChartWindow() = default;

QWidget* ChartWindow::find(const char* name) const
{
    auto* found = window->findChild<QWidget*>(name);
    if (found == nullptr)
        qFatal("The window has no widget %s.", name);
    return found;
}

TestStation* ChartWindow::add_station(int id)
{
    auto* instrument = new Kestrometer("no such port");
    instrument->id = id;
    auto* station = new TestStation(window.get(), instrument);
    window->add_station(station);
    station->profile_name = "Pack";
    station->serial_number = QString::number(1000 + id);
    station->measure_internal_resistance = false;
    station->populate_ui();
    if (!station->begin_log())
        qFatal("The logs of the test cannot be made.");
    return station;
}

TestCycle* ChartWindow::add_cycle(TestStation* station, const QList<QPointF>& points)
{
    station->set_phase(PHASE_CHARGING, "the test says so");
    station->set_phase(PHASE_DISCHARGING, "the test says so");
    TestCycle* cycle = station->current_cycle;
    for (const QPointF& point : points) {
        cycle->voltage_vs_amphours.add(point.x(), point.y());
        cycle->current_vs_amphours.add(point.x(), 10.0);
        cycle->internal_resistance.add(point.x(), 100.0);
    }
    return cycle;
}

void ChartWindow::hover(const PaintBox* box, QPoint pixel) const
{
    QCursor::setPos(box->mapToGlobal(pixel));
    if (box->mapFromGlobal(QCursor::pos()) != pixel)
        qFatal("The mouse did not move.");
}

void ChartWindow::hover_nowhere() const
{
    hover(header, QPoint(header->width() / 2, 1));
}

QString ChartWindow::told_at(PaintBox* box, const Series& curve, int point) const
{
    box->repaint();
    hover(box, curve.map_point(curve.points.at(point)));
    box->repaint();
    return box->toolTip();
}

void ChartWindow::drag(PaintBox* box, QPoint from, QPoint to)
{
    QTest::mousePress(box, Qt::LeftButton, {}, from);
    QTest::mouseMove(box, (from + to) / 2);
    QTest::mouseMove(box, to);
    QTest::mouseRelease(box, Qt::LeftButton, {}, to);
}

void ChartWindow::settle() const
{
    // A new layout asks for another paint.
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

QImage ChartWindow::shown(const PaintBox* box) const
{
    settle();
    const QPoint corner = box->mapTo(window.get(), QPoint(0, 0));
    QScreen* screen = QGuiApplication::primaryScreen();
    return screen->grabWindow(window->winId(), corner.x(), corner.y(), box->width(), box->height())
        .toImage();
}

PaintCounter::PaintCounter(PaintBox* box)
{
    QObject::connect(box, &PaintBox::sig_paint, &context, [this] { ++count; });
}
