#include "window_bench.h"
#include "support/test_program.h"

#include <QLabel>
#include <QMenuBar>
#include <QScrollArea>
#include <QSplitter>
#include <QTimer>
#include <QToolBar>

/** The frame of the window. */
class MainWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void the_first_blink_is_false_and_the_next_true();
    void the_blink_timer_ticks_once_a_second();
    void a_tick_of_the_timer_is_a_blink();
    void the_title_names_build_and_mode();
    void the_window_is_maximised();
    void a_new_window_takes_up_the_width_of_the_last_one();
    void the_menus_hold_their_actions_in_order();
    void the_widgets_lie_in_their_layouts();
    void every_slot_finds_its_widget();
};

void MainWindowTest::the_first_blink_is_false_and_the_next_true()
{
    WindowBench bench;
    QSignalSpy blinks(bench.window.get(), &MainWindow::sig_blink);
    for (int i = 0; i < 4; ++i)
        bench.window->slot_blink();
    QList<bool> seen;
    for (const QList<QVariant>& blink : blinks)
        seen.append(blink.first().toBool());
    QCOMPARE(seen, (QList<bool>{false, true, false, true}));
}

void MainWindowTest::the_blink_timer_ticks_once_a_second()
{
    WindowBench bench;
    QList<QTimer*> running;
    for (QTimer* timer : bench.window->findChildren<QTimer*>())
        if (timer->isActive() && timer->interval() == 1000)
            running.append(timer);
    QCOMPARE(running.size(), 1);
}

void MainWindowTest::a_tick_of_the_timer_is_a_blink()
{
    WindowBench bench;
    QSignalSpy blinks(bench.window.get(), &MainWindow::sig_blink);
    for (QTimer* timer : bench.window->findChildren<QTimer*>())
        QVERIFY(QMetaObject::invokeMethod(timer, "timeout"));
    QCOMPARE(blinks.size(), 1);
}

void MainWindowTest::the_title_names_build_and_mode()
{
    WindowBench bench;
    QCOMPARE(bench.window->windowTitle(),
             QString("Kestrometer Suite (build: v1.0.0b1) (mode: Non-Portable)"));
}

void MainWindowTest::the_window_is_maximised()
{
    WindowBench bench;
    QVERIFY(bench.window->windowState().testFlag(Qt::WindowMaximized));
}

void MainWindowTest::a_new_window_takes_up_the_width_of_the_last_one()
{
    WindowBench bench;
    Settings::set_test_station_width_px(432);
    QVERIFY(Settings::save());
    bench.window.reset();
    bench.window = std::make_unique<MainWindow>(nullptr);
    const auto* row = bench.window->findChild<QFrame*>("frNewStation");
    QCOMPARE(row->minimumWidth(), 432);
    QCOMPARE(row->maximumWidth(), 432);
}

void MainWindowTest::the_menus_hold_their_actions_in_order()
{
    WindowBench bench;
    QStringList entries;
    for (const QAction* menu : bench.window->menuBar()->actions())
        for (const QAction* action : menu->menu()->actions())
            entries.append(menu->text() + ": " + action->objectName() + " " + action->text());
    QCOMPARE(entries, (QStringList{"File: actionNew_Test_Station New Test Station",
                                   "File: actionSettings Settings", "Help: actionHelp Help",
                                   "Help: actionAbout About"}));
    auto* unlisted = bench.window->findChild<QAction*>("actionWidget_Font_Debug_Dialog");
    QCOMPARE(unlisted->text(), QString("Widget Font Debug Dialog"));
    QVERIFY(bench.window->findChild<QToolBar*>("mainToolBar")->actions().isEmpty());
}

void MainWindowTest::the_widgets_lie_in_their_layouts()
{
    WindowBench bench;
    auto* central = bench.window->centralWidget();
    QCOMPARE(central->objectName(), QString("centralWidget"));
    auto* row = qobject_cast<QHBoxLayout*>(central->layout());
    QCOMPARE(row->objectName(), QString("horizontalLayout"));
    QCOMPARE(row->itemAt(0)->widget()->objectName(), QString("fr_left"));
    QCOMPARE(row->itemAt(1)->layout()->objectName(), QString("chart_layout"));

    auto* left = row->itemAt(0)->widget()->layout();
    auto* scroll = qobject_cast<QScrollArea*>(left->itemAt(0)->widget());
    QCOMPARE(scroll->objectName(), QString("scrollArea"));
    QCOMPARE(scroll->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QVERIFY(scroll->widgetResizable());
    QCOMPARE(scroll->widget()->objectName(), QString("scrollAreaWidgetContents"));
    QCOMPARE(scroll->widget()->layout()->objectName(), QString("verticalLayout"));
    QCOMPARE(left->itemAt(1)->widget()->objectName(), QString("frNewStation"));
    QCOMPARE(bench.button("pbNewTestStation")->text(), QString("Add a Test Station"));
    QCOMPARE(bench.button("pbNewTestStation")->parentWidget()->objectName(),
             QString("frNewStation"));
    QCOMPARE(bench.column(), QStringList{"stretch"});

    auto* splitter = bench.window->findChild<QSplitter*>("splitter2");
    QCOMPARE(splitter->orientation(), Qt::Vertical);
    QCOMPARE(splitter->handleWidth(), 10);
}

void MainWindowTest::every_slot_finds_its_widget()
{
    WindowBench bench;
    const QMetaObject* meta = bench.window->metaObject();
    int found = 0;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        const QString name = meta->method(i).name();
        if (!name.startsWith("on_"))
            continue;
        const QString widget = name.mid(3, name.lastIndexOf('_') - 3);
        QVERIFY2(bench.window->findChild<QObject*>(widget) != nullptr, qPrintable(name));
        ++found;
    }
    QVERIFY(found >= 3);
}

KEST_TEST(MainWindowTest)
#include "tst_main_window.moc"
