#pragma once

#include "support/modal_answer.h"
#include "support/test_clock.h"
#include "support/wire.h"

#include "station/phase.h"

#include <QByteArray>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

class Kestrometer;
class QWidget;
class TestStation;

/**
 * A live station on its cable: logs and settings in folders of their own, the clock in the test's
 * hand, every box answered by the test. The clock starts at 2020-04-03 09:15:00.
 *
 *     StationBench bench;
 *     bench.start("Pack A", "1042");
 *     bench.receive("41.52", "0.0", "C");
 *     QCOMPARE(bench.wire.commands(), QByteArray("OC"));
 *     QCOMPARE(bench.csv(), QByteArray("Kestrometer Log\n..."));
 */
class StationBench
{
public:
    /** @param profiles the profile file; without one there are none */
    explicit StationBench(const QByteArray& profiles = QByteArray());
    ~StationBench();

    /** Types the name and the number as the operator would. */
    void type_names(const QString& name, const QString& serial_number);
    /** Types the names and presses Start, without a warning to answer. */
    void start(const QString& name = "Pack A", const QString& serial_number = "1042");
    /** Types `text` into a line edit of the panel, in place of what stood there. */
    void type(const char* edit, const QString& text);
    /** Presses a button of the panel with the mouse. */
    void press(const char* button);

    /** One second later a valid line of instrument 7 arrives, with these fields as they are. */
    void receive(const char* voltage, const char* current, const char* state);
    /** The same after any number of seconds. */
    void receive_after(double seconds, const char* voltage, const char* current, const char* state);

    /** The station's present logs, byte for byte; empty when none is open or was ever opened. */
    QByteArray csv();
    QByteArray txt();
    /** A file of the log folder. */
    QByteArray file(const QString& name) const;
    QString path(const QString& name) const;

    /** The names of all logs in their folder. */
    QStringList files() const;

    /** What the message boxes showed, "Error: That log file is currently in use." */
    QStringList boxes() const;
    /** What a label of the panel says. */
    QString text(const char* label) const;
    /** A widget of the panel by its object name. */
    template <typename Widget> Widget* widget(const char* name);

    QTemporaryDir folder;
    TestClock clock;
    ModalAnswer answers;
    Wire wire;
    std::unique_ptr<TestStation> station;
    Kestrometer* instrument = nullptr;  ///< the station's

private:
    QWidget* find(const char* name) const;
    void remember_logs();

    QString csv_path;
    QString txt_path;
};

template <typename Widget> Widget* StationBench::widget(const char* name)
{
    return static_cast<Widget*>(find(name));
}

/** Makes the process's settings anew, with this log and PDF directory, and takes all profiles away. */
void load_test_settings(const QString& directory);
