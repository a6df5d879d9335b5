#include "window_bench.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QScrollArea>
#include <QScrollBar>

#include <limits>

/** Stations come into the window, stand in order, and go. */
class WindowStationsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void only_the_first_tick_of_the_process_measures_without_a_panel();
    void unset_directories_are_asked_for();
    void a_refused_directory_question_ends_the_operation();
    void a_lone_dot_counts_as_no_directory();
    void a_cancelled_port_dialog_adds_nothing();
    void a_station_of_the_dialog_goes_on_with_its_instrument();
    void panels_stand_in_text_order();
    void equal_ids_both_stay();
    void an_id_change_sorts_at_once_but_only_with_a_log();
    void closing_an_idle_or_done_station_asks_nothing();
    void closing_a_running_station_asks();
    void a_station_closes_by_the_mouse_on_its_x();
    void the_left_column_follows_the_panels_width();
    void a_scroll_bar_that_comes_or_goes_leaves_the_panels_their_width();
    void the_left_column_is_half_the_window_before_a_panel_was_seen();
    void an_impossible_width_in_the_file_counts_as_not_measured_data();
    void an_impossible_width_in_the_file_counts_as_not_measured();
    void a_rate_of_zero_in_the_file_does_not_end_the_program();
    void closing_the_window_switches_every_instrument_off();
    void the_cycles_of_a_log_are_laid_out_once();
};

namespace
{
class MoveCounter : public QObject
{
public:
    bool eventFilter(QObject*, QEvent* event) override
    {
        moves += event->type() == QEvent::Move ? 1 : 0;
        return false;
    }

    int moves = 0;
};

QList<QRect> places_in(const QWidget* parent)
{
    QList<QRect> places;
    for (const QWidget* child :
         parent->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        places += child->geometry();
    return places;
}
}  // namespace

void WindowStationsTest::init()
{
    TestStation::num_previews = 0;
}

// Must stay the first of all cases: there is one first tick in a process.
void WindowStationsTest::only_the_first_tick_of_the_process_measures_without_a_panel()
{
    WindowBench bench;
    const auto* column = bench.window->findChild<QWidget*>("frNewStation");
    Settings::set_test_station_width_px(321);
    bench.window->slot_blink();
    QCOMPARE(column->minimumWidth(), 321);
    Settings::set_test_station_width_px(432);
    bench.window->slot_blink();
    QCOMPARE(column->minimumWidth(), 321);
}

void WindowStationsTest::unset_directories_are_asked_for()
{
    WindowBench bench;
    Settings::set_log_dir("");
    Settings::set_pdf_dir("");
    const auto choose = [](void (*set)(QString), const QString& path) {
        return [set, path](QWidget* settings_dialog) {
            set(path);
            static_cast<QDialog*>(settings_dialog)->reject();
        };
    };
    bench.answers.click(QMessageBox::Ok);
    bench.answers.handle([](QWidget* dialog) { static_cast<QDialog*>(dialog)->reject(); });
    bench.answers.click(QMessageBox::Ok);  // asked again, as it is still unset
    bench.answers.handle(choose(Settings::set_log_dir, bench.folder.path()));
    bench.answers.click(QMessageBox::Ok);
    bench.answers.handle(choose(Settings::set_pdf_dir, bench.folder.path()));
    bench.add_preview();

    QCOMPARE(bench.answers.pending(), 0);
    QCOMPARE(TestStation::all_instances.size(), 1);
    QCOMPARE(int(bench.answers.seen.size()), 3);
    for (int i : {0, 1, 2}) {
        const SeenBox& box = bench.answers.seen[size_t(i)];
        const QString which = i < 2 ? "log" : "PDF";
        QCOMPARE(box.caption, QString(i < 2 ? "Log directory not set" : "PDF directory not set"));
        QCOMPARE(box.text,
                 QString("Before a test station can be created, a %1 directory must be chosen.\n"
                         "The settings dialog will now be opened.")
                     .arg(which));
        QCOMPARE(box.icon, QMessageBox::Question);
        QCOMPARE(int(box.buttons), int(QMessageBox::Ok | QMessageBox::Cancel));
        QCOMPARE(box.default_button, QMessageBox::Ok);
        QVERIFY(!box.has_parent);
    }
}

void WindowStationsTest::a_refused_directory_question_ends_the_operation()
{
    WindowBench bench;
    Settings::set_pdf_dir("");
    bench.answers.click(QMessageBox::Cancel);
    bench.button("pbNewTestStation")->click();
    QCOMPARE(int(bench.answers.seen.size()), 1);
    QCOMPARE(bench.answers.seen[0].caption, QString("PDF directory not set"));
    QVERIFY(TestStation::all_instances.isEmpty());
}

void WindowStationsTest::a_lone_dot_counts_as_no_directory()
{
    WindowBench bench;
    Settings::set_log_dir(".");
    bench.answers.click(QMessageBox::Cancel);
    bench.window->findChild<QAction*>("actionNew_Test_Station")->trigger();
    QCOMPARE(int(bench.answers.seen.size()), 1);
    QCOMPARE(bench.answers.seen[0].caption, QString("Log directory not set"));
}

void WindowStationsTest::a_cancelled_port_dialog_adds_nothing()
{
    WindowBench bench;
    bench.answers.handle(
        [](QWidget* dialog) { dialog->findChild<QPushButton*>("pbCancel")->click(); });
    bench.button("pbNewTestStation")->click();
    QCOMPARE(bench.answers.pending(), 0);
    QVERIFY(TestStation::all_instances.isEmpty());
}

void WindowStationsTest::a_station_of_the_dialog_goes_on_with_its_instrument()
{
    WindowBench bench;
    Wire wire;
    TestStation* station = bench.add_station(wire, 31);
    QVERIFY(station != nullptr);
    QCOMPARE(station->get_port_name(), wire.port_name());
    QCOMPARE(bench.column(), (QStringList{"Station 31", "stretch"}));
    QVERIFY(wire.send("x\t47.31\t0.0\tx\tx\tID=31\tO", *station->kestrometer));
    QCOMPARE(station->findChild<QLabel*>("laVoltage")->text(), QString("47.3 V"));
    QCOMPARE(wire.commands(), QByteArray("O"));
    bench.window->slot_blink();
    QVERIFY(!station->findChild<QLabel*>("laLostCommunication")->isVisible());
}

void WindowStationsTest::panels_stand_in_text_order()
{
    WindowBench bench;
    Wire second;
    Wire tenth;
    Wire first;
    bench.add_station(second, 2);
    bench.add_station(tenth, 10);
    bench.add_preview();
    bench.add_station(first, 1);
    QCOMPARE(bench.column(),
             (QStringList{"Preview 1", "Station 1", "Station 10", "Station 2", "stretch"}));
}

void WindowStationsTest::equal_ids_both_stay()
{
    WindowBench bench;
    Wire one;
    Wire other;
    bench.add_station(one, 5);
    bench.add_station(other, 5);
    QCOMPARE(bench.column(), (QStringList{"Station 5", "Station 5", "stretch"}));
}

void WindowStationsTest::an_id_change_sorts_at_once_but_only_with_a_log()
{
    WindowBench bench;
    Wire third;
    Wire fifth;
    TestStation* station = bench.add_station(third, 3);
    bench.add_station(fifth, 5);
    QVERIFY(third.send(line_of(7), *station->kestrometer));
    QCOMPARE(bench.column(), (QStringList{"Station 7", "Station 5", "stretch"}));

    WindowBench::start_test(station);
    QVERIFY(third.send(line_of(8), *station->kestrometer));
    QCOMPARE(bench.column(), (QStringList{"Station 5", "Station 8", "stretch"}));
}

void WindowStationsTest::closing_an_idle_or_done_station_asks_nothing()
{
    WindowBench bench;
    Wire wire;
    TestStation* done = bench.add_station(wire, 3);
    bench.add_preview();
    WindowBench::start_test(done);
    done->set_phase(PHASE_DONE, "the test says so");
    done->findChild<QPushButton*>("pbClose")->click();
    QCOMPARE(bench.column(), (QStringList{"Preview 1", "stretch"}));
    WindowBench::station("Preview 1")->findChild<QPushButton*>("pbClose")->click();
    QCOMPARE(bench.column(), QStringList{"stretch"});
    QVERIFY(bench.answers.seen.empty());
}

void WindowStationsTest::closing_a_running_station_asks()
{
    WindowBench bench;
    Wire wire;
    TestStation* station = bench.add_station(wire, 3);
    WindowBench::start_test(station);
    auto* close = station->findChild<QPushButton*>("pbClose");
    bench.answers.click(QMessageBox::Cancel);
    close->click();
    QCOMPARE(bench.column(), (QStringList{"Station 3", "stretch"}));
    QCOMPARE(station->phase, PHASE_CHARGING);

    bench.answers.click(QMessageBox::Ok);
    close->click();
    QCOMPARE(bench.column(), QStringList{"stretch"});
    QVERIFY(TestStation::all_instances.isEmpty());
    QCOMPARE(wire.commands(), QByteArray("OCO"));
    QCOMPARE(int(bench.answers.seen.size()), 2);
    for (const SeenBox& box : bench.answers.seen) {
        QCOMPARE(box.caption, QString("Are you sure?"));
        QCOMPARE(box.text, QString("This will abort the test in progress."));
        QCOMPARE(box.icon, QMessageBox::Question);
        QCOMPARE(int(box.buttons), int(QMessageBox::Ok | QMessageBox::Cancel));
        QCOMPARE(box.default_button, QMessageBox::Cancel);
        QVERIFY(!box.has_parent);
    }
}

void WindowStationsTest::a_station_closes_by_the_mouse_on_its_x()
{
    WindowBench bench;
    bench.add_preview();
    QPointer<TestStation> station = TestStation::all_instances.first();
    QTest::mouseClick(station->findChild<QPushButton*>("pbClose"), Qt::LeftButton);
    QTRY_VERIFY(station.isNull());
}

void WindowStationsTest::the_left_column_follows_the_panels_width()
{
    WindowBench bench;
    bench.add_preview();
    const int panel = TestStation::all_instances.first()->width();
    bench.window->slot_blink();
    QCOMPARE(Settings::get_test_station_width_px(), panel);
    QTRY_COMPARE(bench.window->findChild<QScrollArea*>("scrollArea")->viewport()->width(), panel);
    QCOMPARE(bench.window->findChild<QWidget*>("frNewStation")->width(), panel);
    QFile file(Settings::get_settings_filename());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("test_station_width_px=" + QByteArray::number(panel) + "\n"));
}

void WindowStationsTest::a_scroll_bar_that_comes_or_goes_leaves_the_panels_their_width()
{
    WindowBench bench;
    bench.add_preview();
    bench.window->slot_blink();
    const int panel = TestStation::all_instances.first()->width();
    const auto* area = bench.window->findChild<QScrollArea*>("scrollArea");
    QTRY_COMPARE(area->viewport()->width(), panel);
    QVERIFY(!area->verticalScrollBar()->isVisible());

    for (int i = 0; i < 9; ++i)
        bench.add_preview();
    QTRY_VERIFY(area->verticalScrollBar()->isVisible());
    QTRY_COMPARE(area->viewport()->width(), panel);

    while (TestStation::all_instances.size() > 1)
        bench.window->slot_close_request(TestStation::all_instances.last());
    QTRY_VERIFY(!area->verticalScrollBar()->isVisible());
    QTRY_COMPARE(area->viewport()->width(), panel);
}

void WindowStationsTest::the_left_column_is_half_the_window_before_a_panel_was_seen()
{
    WindowBench bench;
    bench.window->set_lhs_width();
    QCOMPARE(bench.window->findChild<QWidget*>("frNewStation")->minimumWidth(),
             bench.window->width() / 2);
    QCOMPARE(bench.window->findChild<QWidget*>("frNewStation")->maximumWidth(),
             bench.window->width() / 2);
}

void WindowStationsTest::an_impossible_width_in_the_file_counts_as_not_measured_data()
{
    QTest::addColumn<int>("width");
    QTest::newRow("negative") << -5;
    QTest::newRow("wider than a widget can be") << QWIDGETSIZE_MAX + 1;
    QTest::newRow("as wide as a number can be") << std::numeric_limits<int>::max();
}

void WindowStationsTest::an_impossible_width_in_the_file_counts_as_not_measured()
{
    QFETCH(int, width);
    WindowBench bench;
    Settings::set_test_station_width_px(width);
    bench.window->set_lhs_width();
    QCOMPARE(bench.window->findChild<QWidget*>("frNewStation")->minimumWidth(),
             bench.window->width() / 2);
}

void WindowStationsTest::a_rate_of_zero_in_the_file_does_not_end_the_program()
{
    WindowBench bench;
    Settings::set_chart_refresh_rate(0);
    bench.answers.handle([](QWidget* dialog) { static_cast<QDialog*>(dialog)->reject(); });
    bench.window->findChild<QAction*>("actionSettings")->trigger();
    QCOMPARE(bench.answers.pending(), 0);
}

void WindowStationsTest::closing_the_window_switches_every_instrument_off()
{
    auto bench = std::make_unique<WindowBench>();
    Wire running;
    Wire waiting;
    TestStation* station = bench->add_station(running, 1);
    bench->add_station(waiting, 2);
    WindowBench::start_test(station);
    QCOMPARE(running.commands(), QByteArray("OC"));
    bench->window->close();
    QVERIFY(bench->answers.seen.empty());
    bench->window.reset();
    QVERIFY(TestStation::all_instances.isEmpty());
    QCOMPARE(running.commands(), QByteArray("O"));
    // The second was off and commanded off: nothing to say twice.
    QCOMPARE(waiting.commands(), QByteArray("O"));
}

void WindowStationsTest::the_cycles_of_a_log_are_laid_out_once()
{
    WindowBench bench;
    auto* station = new TestStation(bench.window.get(), nullptr);
    bench.window->add_station(station);
    MoveCounter counter;
    station->serial_number_label.installEventFilter(&counter);
    bench.answers.choose_path(test_data("whole/three_cycles.csv"));
    station->findChild<QPushButton*>("pbLoadLog")->click();
    QCOMPARE(station->cycles.size(), 3);
    // Behind the last cycle, and not behind each of them in turn.
    QCOMPARE(counter.moves, 1);

    const auto* header = station->serial_number_label.parentWidget();
    const QList<QRect> places = places_in(header);
    bench.window->rebuild_cycle_checkbox_grid();
    QCOMPARE(places_in(header), places);
}

KEST_TEST(WindowStationsTest)
#include "tst_window_stations.moc"
