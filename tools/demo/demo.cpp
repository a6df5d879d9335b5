#include "demo/demo.h"

#include "common/console.h"
#include "common/date_time.h"
#include "config/settings.h"
#include "demo/time_lapse.h"
#include "device/kestrometer.h"
#include "device/serial_ports.h"
#include "station/test_station.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QSpinBox>
#include <QUrl>

/** What tells one station of the demo from the other. */
struct Demo::Preparation
{
    QString pack;
    int color;  ///< place in the list of colours
};

namespace
{
constexpr int POLL_MS = 100;
const char* const EARLIER_TEST = "Earlier Pack_0041";
constexpr int FIRST_ID = 7;
const char* const LOAD_AMPS = "4.8";  // on a gridline its curve would lie under the chart's frame
// Whoever switches the instruments off after a demo that was killed still finds them.
const char* const LINGER_SECONDS = "5";
constexpr double LONGEST_TEST_S = 6 * 3600.0;  // of the test's own time, for a run nobody watches

/** Types `text` as the operator would, so that the panel's own slots take it over. */
void type(const TestStation& station, const char* name, const QString& text)
{
    auto* edit = station.findChild<QLineEdit*>(name);
    edit->setText(text);
    emit edit->textEdited(text);
}

/** No window manager maximises it on a virtual screen, which may be smaller than the program wants. */
QSize window_size()
{
    const QSize available = QGuiApplication::primaryScreen()->availableSize();
    const bool is_virtual = QGuiApplication::platformName() == "offscreen";
    return is_virtual ? available.expandedTo(QSize(1600, 1000)) : available;
}
}  // namespace

Demo::Demo(const DemoOptions& demo_options) : tell(print_to_console), options(demo_options)
{
}

Demo::~Demo() = default;

bool Demo::start(QString& error)
{
    if (!start_instruments(error))
        return false;
    start_time_lapse(options.speed);
    window = std::make_unique<MainWindow>(nullptr);
    choose_directories();
    window->setWindowTitle(
        QString("%1 - Demo, %2 times as fast").arg(window->windowTitle()).arg(options.speed));
    window->resize(window_size());
    window->show();
    running = add_station(simulators[0], {"Demo Pack", 6});
    add_station(simulators[1], {"Spare Pack", 5});
    if (!show_earlier_test(error))
        return false;
    tell(introduction());
    started_at = Time::now().toSecsSinceEpoch();
    connect(&poll, &QTimer::timeout, this, &Demo::press_start_when_ready);
    poll.start(POLL_MS);
    return true;
}

bool Demo::start_instruments(QString& error)
{
    QStringList names;
    int id = FIRST_ID;
    for (SimulatorProcess& simulator : simulators) {
        if (!simulator.start({"--id", QString::number(id++), "--speed",
                              QString::number(options.speed), "--load", LOAD_AMPS,
                              "--exit-with-stdin", "--linger", LINGER_SECONDS},
                             error))
            return false;
        names.append(simulator.port_name());
    }
    SerialPorts::set_source([names] { return names + SerialPorts::names_of_this_machine(); });
    return true;
}

void Demo::choose_directories() const
{
    QDir().mkpath(folder());
    Settings::set_log_dir(folder());
    Settings::set_pdf_dir(folder());
}

QString Demo::folder() const
{
    return options.unattended_folder.isEmpty() ? QDir(Settings::get_settings_dir()).filePath("logs")
                                               : QDir(options.unattended_folder).absolutePath();
}

QString Demo::introduction() const
{
    return QString(
               "This is a demo: the Kest Battery Tester with simulated instruments, %1 times as "
               "fast.\n"
               "  A test of two cycles runs on %2; beside it an earlier test is shown.\n"
               "  The station on %3 waits for its Start.\n"
               "  An instrument on %4 waits for a station: Add a Test Station.\n"
               "  Logs and pages: %5\n"
               "  Settings:       %6\n")
        .arg(options.speed)
        .arg(simulators[0].port_name(), simulators[1].port_name(), simulators[2].port_name(),
             folder(), Settings::get_settings_dir());
}

/** A finished test in a preview, from a copy of its logs, as loading opens them for writing. */
bool Demo::show_earlier_test(QString& error)
{
    const QString name = QDir(folder()).filePath(EARLIER_TEST);
    for (const char* ending : {".csv", ".txt"}) {
        const QString source = QString(":/samples/%1%2").arg(EARLIER_TEST, ending);
        QFile::remove(name + ending);
        if (!QFile::copy(source, name + ending)) {
            error = QString("%1%2 cannot be written.").arg(name, ending);
            return false;
        }
        QFile::setPermissions(name + ending, QFile::Permissions(0x6644));
    }
    auto* preview = new TestStation(window.get(), nullptr);
    window->add_station(preview);
    preview->data_log = new QFile(name + ".csv");
    preview->text_log = new QFile(name + ".txt");
    if (preview->ui_safe_open_log() && preview->ui_safe_read_log()) {
        emit preview->sig_max_cycle_change();
        emit preview->sig_repaint_chart_request();
        preview->update_ui();
    }
    return true;
}

TestStation* Demo::add_station(const SimulatorProcess& simulator, const Preparation& preparation)
{
    auto* instrument = new Kestrometer(simulator.port_name());
    instrument->set_state(Off);
    auto* station = new TestStation(window.get(), instrument);
    window->add_station(station);
    station->color_combobox.setCurrentIndex(preparation.color);
    type(*station, "leProfileName", preparation.pack);
    // A number of its own for each run: a log that exists already would raise a question.
    type(*station, "leSerialNumber", QDateTime::currentDateTime().toString("yyyyMMdd-hhmmss"));
    type(*station, "leMaxChargeTime", "0.5");
    station->findChild<QSpinBox*>("sbNumberOfCycles")->setValue(2);
    return station;
}

void Demo::press_start_when_ready()
{
    if (running.isNull()) {
        give_up("The station of the test was closed.\n");
        return;
    }
    auto* button = running->findChild<QPushButton*>("pbStartSkip");
    if (running->kestrometer->id == -1 || !button->isEnabled())
        return;
    poll.stop();
    poll.disconnect();
    button->click();
    if (options.unattended_folder.isEmpty())
        return;
    connect(&poll, &QTimer::timeout, this, &Demo::watch_unattended_test);
    poll.start(POLL_MS);
}

void Demo::watch_unattended_test()
{
    if (running.isNull()) {
        give_up("The station of the test was closed.\n");
        return;
    }
    const bool second_discharge =
        running->phase == PHASE_DISCHARGING && running->get_cycle_number() == 2;
    if (screenshot.isEmpty() && second_discharge && running->current_cycle->amp_hours > 1.0)
        take_screenshot();
    if (running->phase == PHASE_DONE)
        finish_unattended();
    else if (double(Time::now().toSecsSinceEpoch() - started_at) > LONGEST_TEST_S)
        give_up("The test has not come to its end; the logs show how far it got.\n");
}

/** A window that somebody works in goes on; an unattended run has nothing left to wait for. */
void Demo::give_up(const QString& reason)
{
    poll.stop();
    if (options.unattended_folder.isEmpty())
        return;
    tell(reason);
    QApplication::exit(1);
}

void Demo::take_screenshot()
{
    screenshot = QDir(options.unattended_folder).absoluteFilePath("screenshot.png");
    window->grab().save(screenshot);
}

/** The page for the customer, as the button makes it; nobody is there to look at it. */
QString Demo::print_page()
{
    QDesktopServices::setUrlHandler("file", this, "ignore_page");
    running->findChild<QPushButton*>("pbGeneratePDF")->click();
    QDesktopServices::unsetUrlHandler("file");
    return QString(running->data_log->fileName()).replace(QRegularExpression("csv$"), "pdf");
}

void Demo::ignore_page(const QUrl&)
{
}

void Demo::finish_unattended()
{
    poll.stop();
    const QStringList files = {running->data_log->fileName(), running->text_log->fileName(),
                               print_page(), screenshot};
    bool complete = true;
    tell("The test is done. It left:\n");
    for (const QString& file : files) {
        complete = complete && QFile::exists(file);
        tell("  " + file + "\n");
    }
    QApplication::exit(complete ? 0 : 1);
}
