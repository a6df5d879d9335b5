#include "app/termination_signals.h"
#include "app/wayland_end.h"

#include "simulator/pseudo_terminal.h"
#include "window_bench.h"

#include "support/test_program.h"

#include <QApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>
#include <unistd.h>

namespace
{
const char* const DISCHARGE = "--discharge";

/** The station on `port`, added through the port dialog as soon as its instrument is heard. */
TestStation* add_station(WindowBench& bench, const QString& port)
{
    SerialPorts::set_source([port] { return QStringList{port}; });
    bench.answers.handle([port](QWidget* widget) {
        auto* dialog = qobject_cast<AddTestStationDialog*>(widget);
        dialog->findChild<QComboBox*>("cbPort")->setCurrentText(port);
        if (!spin_until([dialog] { return dialog->kestrometer->id == 7; }))
            qFatal("The instrument is not heard.");
        dialog->findChild<QPushButton*>("pbOK")->click();
    });
    bench.button("pbNewTestStation")->click();
    return TestStation::all_instances.first();
}

/** What ends the process from inside, once the instrument discharges. */
void end(const QString& ending)
{
    if (ending == "exit")
        std::exit(1);
    if (ending == "wayland") {
        qWarning("The Wayland connection broke. Did the Wayland compositor die?");
        ::_exit(1);
    }
    if (ending == "box")
        QMessageBox::information(nullptr, "Notice", "Somebody is asked.");
}

/** The program of main, with a station that goes into a discharge by itself. */
int discharge(int argc, char** argv)
{
    QApplication application(argc, argv);
    close_on_termination_signals(application);
    command_off_at_the_end_of_wayland();
    const QStringList arguments = QCoreApplication::arguments();
    WindowBench bench;
    TestStation* const station = add_station(bench, arguments.at(2));
    const QString ending = arguments.value(3);
    bool ended = false;
    QObject::connect(station->kestrometer, &Kestrometer::sig_measurement, station, [&] {
        if (station->phase == PHASE_CHARGING)
            station->findChild<QPushButton*>("pbStartSkip")->click();
        if (station->kestrometer->state == Discharging && !ended) {
            ended = true;
            bench.answers.handle([](QWidget*) { QEventLoop().exec(); });
            end(ending);
        }
    });
    WindowBench::start_test(station);
    return QApplication::exec();
}

/** An instrument that obeys at once, and remembers what it was told: "OCDO", repeats left out. */
class Instrument
{
public:
    Instrument()
    {
        QString error;
        if (!line.open(error))
            qFatal("%s", qPrintable(error));
        QObject::connect(&pace, &QTimer::timeout, &pace, [this] { tell(); });
        pace.start(20);
    }

    QString port_name() const
    {
        return line.port_name();
    }

    QByteArray told()
    {
        for (const char command : line.read())
            if (!commands.endsWith(command))
                commands += command;
        return commands;
    }

    int lines_of_the_discharge = 0;  ///< sent since it was commanded

private:
    void tell()
    {
        const QByteArray letter = told().isEmpty() ? QByteArray("O") : commands.right(1);
        line.write("x\t48.00\t5.0\tx\tx\tID=7\t" + letter + "\r\n");
        if (letter == "D")
            ++lines_of_the_discharge;
    }

    PseudoTerminal line;
    QByteArray commands;
    QTimer pace;
};

/** An X server of the test's own. */
class Display
{
public:
    Display()
    {
        server.start("Xvfb",
                     {"-displayfd", "1", "-nolisten", "tcp", "-screen", "0", "1280x800x24"});
        while (!server.canReadLine() && server.waitForReadyRead(60000)) {
        }
        name = ":" + server.readLine().trimmed();
    }

    ~Display()
    {
        die();
    }

    void die()
    {
        server.terminate();
        server.waitForFinished(60000);
    }

    QString name;

private:
    QProcess server;
};
}  // namespace

/** How the process ends in the middle of a discharge, and what the instrument is told. */
class EndingsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void what_ends_the_process_from_inside_data();
    void what_ends_the_process_from_inside();
    void a_signal_data();
    void a_signal();
    void a_display_that_dies();

private:
    void start(const QString& ending = QString(), const QString& display = QString());
    bool ends_with(int status);

    std::unique_ptr<QTemporaryDir> home;
    std::unique_ptr<Instrument> instrument;
    std::unique_ptr<QProcess> program;
};

void EndingsTest::init()
{
    home = std::make_unique<QTemporaryDir>();
    instrument = std::make_unique<Instrument>();
    program = std::make_unique<QProcess>();
}

void EndingsTest::cleanup()
{
    program.reset();
    instrument.reset();
    home.reset();
}

/** Returns when the instrument discharges. */
void EndingsTest::start(const QString& ending, const QString& display)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_DATA_HOME", home->path());
    environment.insert("TMPDIR", home->path());
    if (!display.isEmpty()) {
        environment.insert("QT_QPA_PLATFORM", "xcb");
        environment.insert("DISPLAY", display);
    }
    program->setProcessEnvironment(environment);
    program->setProcessChannelMode(QProcess::MergedChannels);
    program->start(QCoreApplication::applicationFilePath(),
                   {"tst_endings", DISCHARGE, instrument->port_name(), ending});
    QTRY_VERIFY_WITH_TIMEOUT(
        instrument->lines_of_the_discharge > 2 || program->state() == QProcess::NotRunning, 60000);
}

bool EndingsTest::ends_with(int status)
{
    const bool ended = program->state() == QProcess::NotRunning || program->waitForFinished(60000);
    if (ended && program->exitStatus() == QProcess::NormalExit && program->exitCode() == status)
        return true;
    qWarning("%d: %s", program->exitCode(), program->readAll().constData());
    return false;
}

void EndingsTest::what_ends_the_process_from_inside_data()
{
    QTest::addColumn<QString>("ending");
    QTest::newRow("exit") << "exit";
    QTest::newRow("a Wayland desktop dies") << "wayland";
}

void EndingsTest::what_ends_the_process_from_inside()
{
    QFETCH(QString, ending);
    start(ending);
    QVERIFY(ends_with(1));
    QCOMPARE(instrument->told(), QByteArray("OCDO"));
}

void EndingsTest::a_signal_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<QString>("box");
    QTest::newRow("Ctrl-C") << SIGINT << "";
    QTest::newRow("end of the session") << SIGTERM << "";
    QTest::newRow("the terminal goes") << SIGHUP << "";
    QTest::newRow("end of the session, under a box") << SIGTERM << "box";
}

void EndingsTest::a_signal()
{
    QFETCH(int, signal);
    QFETCH(QString, box);
    start(box);
    QCOMPARE(::kill(pid_t(program->processId()), signal), 0);
    QVERIFY(ends_with(0));
    QCOMPARE(instrument->told(), QByteArray("OCDO"));
}

void EndingsTest::a_display_that_dies()
{
    Display display;
    start(QString(), display.name);
    QCOMPARE(program->state(), QProcess::Running);
    display.die();
    QVERIFY(ends_with(1));
    QCOMPARE(instrument->told(), QByteArray("OCDO"));
}

static int tests_or_child(int argc, char** argv)
{
    if (argc > 2 && qstrcmp(argv[1], DISCHARGE) == 0)
        return discharge(argc, argv);
    return run_tests<QApplication, EndingsTest>(argc, argv);
}

KEST_TEST_MAIN(tests_or_child)
#include "tst_endings.moc"
