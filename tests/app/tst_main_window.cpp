#include "app/main_window.h"

#include "config/settings.h"
#include "device/kestrometer.h"
#include "device/serial_ports.h"
#include "dialogs/add_test_station_dialog.h"
#include "station/test_station.h"
#include "support/modal_answer.h"
#include "support/station_bench.h"
#include "support/wire.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QSplitter>
#include <QToolBar>
#include <QtTest>

#include <limits>

namespace
{
const QByteArray LINE = "x\t48.00\t0.0\tx\tx\tID=%1\tO";

QByteArray line_of(int id)
{
    return QByteArray(LINE).replace("%1", QByteArray::number(id));
}

/** The window over settings of its own, with its stations added through the port dialog. */
struct Bench
{
    Bench()
    {
        load_test_settings(folder.path());
        window = std::make_unique<MainWindow>(nullptr);
        // The window has loaded the settings anew.
        Settings::set_log_dir(folder.path());
        Settings::set_pdf_dir(folder.path());
        window->show();
    }

    ~Bench()
    {
        window.reset();
        SerialPorts::set_source(nullptr);
    }

    TestStation* add_station(Wire& wire, int id)
    {
        const QString port = wire.port_name();
        SerialPorts::set_source([port] { return QStringList{port}; });
        answers.handle([&wire, port, id](QWidget* widget) {
            auto* dialog = qobject_cast<AddTestStationDialog*>(widget);
            dialog->findChild<QComboBox*>("cbPort")->setCurrentText(port);
            QVERIFY(wire.send(line_of(id), *dialog->kestrometer));
            dialog->findChild<QPushButton*>("pbOK")->click();
        });
        button("pbNewTestStation")->click();
        return station(QString("Station %1").arg(id));
    }

    void add_preview()
    {
        SerialPorts::set_source([] { return QStringList(); });
        answers.handle([](QWidget* dialog) { dialog->findChild<QPushButton*>("pbOK")->click(); });
        button("pbNewTestStation")->click();
    }

    static TestStation* station(const QString& id)
    {
        for (TestStation* station : qAsConst(TestStation::all_instances))
            if (station->get_id() == id)
                return station;
        return nullptr;
    }

    QPushButton* button(const char* name) const
    {
        return window->findChild<QPushButton*>(name);
    }

    /** The panels from top to bottom, then what else the column holds. */
    QStringList column() const
    {
        QStringList names;
        auto* layout = window->findChild<QBoxLayout*>("verticalLayout");
        for (int i = 0; i < layout->count(); ++i) {
            auto* panel = qobject_cast<TestStation*>(layout->itemAt(i)->widget());
            names.append(panel != nullptr ? panel->get_id() : QString("stretch"));
        }
        return names;
    }

    /** A test under way: the station is charging. */
    static void start_test(TestStation* station)
    {
        station->serial_number_edited = true;
        station->profile_name = "Pack";
        station->serial_number = QString::number(station->kestrometer->id);
        station->update_ui();
        station->findChild<QPushButton*>("pbStartSkip")->click();
        QCOMPARE(station->phase, PHASE_CHARGING);
    }

    QTemporaryDir folder;
    ModalAnswer answers;
    std::unique_ptr<MainWindow> window;
};
}  // namespace

/** The frame of the window, and its stations. */
class MainWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void the_first_blink_is_false_and_the_next_true();
    void the_blink_timer_ticks_once_a_second();
    void the_title_names_build_and_mode();
    void the_window_is_maximised();
    void the_menus_hold_their_actions_in_order();
    void the_widgets_lie_in_their_layouts();
    void every_slot_finds_its_widget();

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
    void the_left_column_is_half_the_window_before_a_panel_was_seen();
    void an_impossible_width_in_the_file_counts_as_not_measured_data();
    void an_impossible_width_in_the_file_counts_as_not_measured();
    void a_rate_of_zero_in_the_file_does_not_end_the_program();
    void closing_the_window_switches_every_instrument_off();
};

void MainWindowTest::init()
{
    TestStation::num_previews = 0;
}

void MainWindowTest::the_first_blink_is_false_and_the_next_true()
{
    Bench bench;
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
    Bench bench;
    QList<QTimer*> running;
    for (QTimer* timer : bench.window->findChildren<QTimer*>())
        if (timer->isActive() && timer->interval() == 1000)
            running.append(timer);
    QCOMPARE(running.size(), 1);
}

void MainWindowTest::the_title_names_build_and_mode()
{
    Bench bench;
    QCOMPARE(bench.window->windowTitle(),
             QString("Kestrometer Suite (build: v1.0.0b1) (mode: Non-Portable)"));
}

void MainWindowTest::the_window_is_maximised()
{
    Bench bench;
    QVERIFY(bench.window->windowState().testFlag(Qt::WindowMaximized));
}

void MainWindowTest::the_menus_hold_their_actions_in_order()
{
    Bench bench;
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
    Bench bench;
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
    Bench bench;
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

void MainWindowTest::unset_directories_are_asked_for()
{
    Bench bench;
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
        QCOMPARE(box.buttons, QMessageBox::Ok | QMessageBox::Cancel);
        QCOMPARE(box.default_button, QMessageBox::Ok);
        QVERIFY(!box.has_parent);
    }
}

void MainWindowTest::a_refused_directory_question_ends_the_operation()
{
    Bench bench;
    Settings::set_pdf_dir("");
    bench.answers.click(QMessageBox::Cancel);
    bench.button("pbNewTestStation")->click();
    QCOMPARE(int(bench.answers.seen.size()), 1);
    QCOMPARE(bench.answers.seen[0].caption, QString("PDF directory not set"));
    QVERIFY(TestStation::all_instances.isEmpty());
}

void MainWindowTest::a_lone_dot_counts_as_no_directory()
{
    Bench bench;
    Settings::set_log_dir(".");
    bench.answers.click(QMessageBox::Cancel);
    bench.window->findChild<QAction*>("actionNew_Test_Station")->trigger();
    QCOMPARE(int(bench.answers.seen.size()), 1);
    QCOMPARE(bench.answers.seen[0].caption, QString("Log directory not set"));
}

void MainWindowTest::a_cancelled_port_dialog_adds_nothing()
{
    Bench bench;
    bench.answers.handle(
        [](QWidget* dialog) { dialog->findChild<QPushButton*>("pbCancel")->click(); });
    bench.button("pbNewTestStation")->click();
    QCOMPARE(bench.answers.pending(), 0);
    QVERIFY(TestStation::all_instances.isEmpty());
}

void MainWindowTest::a_station_of_the_dialog_goes_on_with_its_instrument()
{
    Bench bench;
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

void MainWindowTest::panels_stand_in_text_order()
{
    Bench bench;
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

void MainWindowTest::equal_ids_both_stay()
{
    Bench bench;
    Wire one;
    Wire other;
    bench.add_station(one, 5);
    bench.add_station(other, 5);
    QCOMPARE(bench.column(), (QStringList{"Station 5", "Station 5", "stretch"}));
}

void MainWindowTest::an_id_change_sorts_at_once_but_only_with_a_log()
{
    Bench bench;
    Wire third;
    Wire fifth;
    TestStation* station = bench.add_station(third, 3);
    bench.add_station(fifth, 5);
    QVERIFY(third.send(line_of(7), *station->kestrometer));
    QCOMPARE(bench.column(), (QStringList{"Station 7", "Station 5", "stretch"}));

    Bench::start_test(station);
    QVERIFY(third.send(line_of(8), *station->kestrometer));
    QCOMPARE(bench.column(), (QStringList{"Station 5", "Station 8", "stretch"}));
}

void MainWindowTest::closing_an_idle_or_done_station_asks_nothing()
{
    Bench bench;
    Wire wire;
    TestStation* done = bench.add_station(wire, 3);
    bench.add_preview();
    Bench::start_test(done);
    done->set_phase(PHASE_DONE, "the test says so");
    done->findChild<QPushButton*>("pbClose")->click();
    QCOMPARE(bench.column(), (QStringList{"Preview 1", "stretch"}));
    Bench::station("Preview 1")->findChild<QPushButton*>("pbClose")->click();
    QCOMPARE(bench.column(), QStringList{"stretch"});
    QVERIFY(bench.answers.seen.empty());
}

void MainWindowTest::closing_a_running_station_asks()
{
    Bench bench;
    Wire wire;
    TestStation* station = bench.add_station(wire, 3);
    Bench::start_test(station);
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
        QCOMPARE(box.buttons, QMessageBox::Ok | QMessageBox::Cancel);
        QCOMPARE(box.default_button, QMessageBox::Cancel);
        QVERIFY(!box.has_parent);
    }
}

void MainWindowTest::a_station_closes_by_the_mouse_on_its_x()
{
    Bench bench;
    bench.add_preview();
    QPointer<TestStation> station = TestStation::all_instances.first();
    QTest::mouseClick(station->findChild<QPushButton*>("pbClose"), Qt::LeftButton);
    QTRY_VERIFY(station.isNull());
}

void MainWindowTest::the_left_column_follows_the_panels_width()
{
    Bench bench;
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

void MainWindowTest::the_left_column_is_half_the_window_before_a_panel_was_seen()
{
    Bench bench;
    bench.window->set_lhs_width();
    QCOMPARE(bench.window->findChild<QWidget*>("frNewStation")->minimumWidth(),
             bench.window->width() / 2);
    QCOMPARE(bench.window->findChild<QWidget*>("frNewStation")->maximumWidth(),
             bench.window->width() / 2);
}

void MainWindowTest::an_impossible_width_in_the_file_counts_as_not_measured_data()
{
    QTest::addColumn<int>("width");
    QTest::newRow("negative") << -5;
    QTest::newRow("wider than a widget can be") << QWIDGETSIZE_MAX + 1;
    QTest::newRow("as wide as a number can be") << std::numeric_limits<int>::max();
}

void MainWindowTest::an_impossible_width_in_the_file_counts_as_not_measured()
{
    QFETCH(int, width);
    Bench bench;
    Settings::set_test_station_width_px(width);
    bench.window->set_lhs_width();
    QCOMPARE(bench.window->findChild<QWidget*>("frNewStation")->minimumWidth(),
             bench.window->width() / 2);
}

void MainWindowTest::a_rate_of_zero_in_the_file_does_not_end_the_program()
{
    Bench bench;
    Settings::set_chart_refresh_rate(0);
    bench.answers.handle([](QWidget* dialog) { static_cast<QDialog*>(dialog)->reject(); });
    bench.window->findChild<QAction*>("actionSettings")->trigger();
    QCOMPARE(bench.answers.pending(), 0);
}

void MainWindowTest::closing_the_window_switches_every_instrument_off()
{
    auto bench = std::make_unique<Bench>();
    Wire running;
    Wire waiting;
    TestStation* station = bench->add_station(running, 1);
    bench->add_station(waiting, 2);
    Bench::start_test(station);
    QCOMPARE(running.commands(), QByteArray("OC"));
    bench->window->close();
    QVERIFY(bench->answers.seen.empty());
    bench->window.reset();
    QVERIFY(TestStation::all_instances.isEmpty());
    QCOMPARE(running.commands(), QByteArray("O"));
    // The second was off and commanded off: nothing to say twice.
    QCOMPARE(waiting.commands(), QByteArray("O"));
}

QTEST_MAIN(MainWindowTest)
#include "tst_main_window.moc"
