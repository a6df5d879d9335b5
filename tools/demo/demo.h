#pragma once

#include "app/main_window.h"
#include "demo/demo_options.h"
#include "demo/simulator_process.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <array>
#include <functional>
#include <memory>

/** The application's own window with simulated instruments. */
class Demo : public QObject
{
    Q_OBJECT

public:
    explicit Demo(const DemoOptions& demo_options);
    ~Demo() override;

    /** Starts the instruments and shows the window; false, with the reason in `error`. */
    bool start(QString& error);

    /** Where logs and pages go. */
    QString folder() const;
    /** What runs, where its files lie, and which port is free, in lines. */
    QString introduction() const;

    std::function<void(const QString&)> tell;  ///< says something to whoever started the demo

public slots:
    /** Takes the address of a page and opens nothing. */
    void ignore_page(const QUrl& address);

private:
    struct Preparation;

    bool start_instruments(QString& error);
    void choose_directories() const;
    TestStation* add_station(const SimulatorProcess& simulator, const Preparation& preparation);
    bool show_earlier_test(QString& error);
    void press_start_when_ready();
    void watch_unattended_test();
    void take_screenshot();
    QString print_page();
    void finish_unattended();
    void give_up(const QString& reason);

    DemoOptions options;
    std::array<SimulatorProcess, 3> simulators;  ///< a test runs, one is prepared, one is free
    std::unique_ptr<MainWindow> window;
    QPointer<TestStation> running;  ///< owned by the window; null once its panel was closed
    QTimer poll;
    QString screenshot;  ///< its file, once taken
    qint64 started_at = 0;
};
