#include "support/station_bench.h"

#include "config/settings.h"
#include "device/kestrometer.h"
#include "station/test_station.h"
#include "support/help_document.h"
#include "support/profile_file.h"

#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

void load_test_settings(const QString& directory)
{
    QFile::remove(Settings::get_settings_filename());
    if (!Settings::load())
        qFatal("The settings of the test cannot be made.");
    forget_profiles();
    load_help_document();
    Settings::set_log_dir(directory);
    Settings::set_pdf_dir(directory);
}

StationBench::StationBench(const QByteArray& profiles)
{
    load_test_settings(folder.path());
    if (!profiles.isEmpty())
        load_test_profiles(profiles);
    instrument = new Kestrometer(wire.port_name());
    station = std::make_unique<TestStation>(nullptr, instrument);
    station->show();
}

StationBench::~StationBench() = default;

QWidget* StationBench::find(const char* name) const
{
    auto* found = station->findChild<QWidget*>(name);
    if (found == nullptr)
        qFatal("The panel has no widget %s.", name);
    return found;
}

void StationBench::type_names(const QString& name, const QString& serial_number)
{
    type("leProfileName", name);
    type("leSerialNumber", serial_number);
}

void StationBench::start(const QString& name, const QString& serial_number)
{
    type_names(name, serial_number);
    press("pbStartSkip");
    remember_logs();
}

void StationBench::type(const char* edit, const QString& text)
{
    auto* line_edit = widget<QLineEdit>(edit);
    line_edit->selectAll();
    QTest::keyClick(line_edit, Qt::Key_Delete);
    // The keyboard of a test is ASCII; other letters are pasted.
    if (text.toUtf8().size() == text.size())
        QTest::keyClicks(line_edit, text);
    else
        line_edit->insert(text);
}

void StationBench::press(const char* button)
{
    QTest::mouseClick(widget<QPushButton>(button), Qt::LeftButton);
}

void StationBench::receive(const char* voltage, const char* current, const char* state)
{
    receive_after(1.0, voltage, current, state);
}

void StationBench::receive_after(double seconds, const char* voltage, const char* current,
                                 const char* state)
{
    clock.advance_seconds(seconds);
    const QByteArray line = QByteArray("x\t") + voltage + '\t' + current + "\tx\tx\tID=7\t" + state;
    if (!wire.send(line, *instrument))
        qFatal("A line did not arrive: %s", line.constData());
    remember_logs();
}

QByteArray StationBench::csv()
{
    remember_logs();
    return file(csv_path);
}

QByteArray StationBench::txt()
{
    remember_logs();
    return file(txt_path);
}

QByteArray StationBench::file(const QString& name) const
{
    QFile source(path(name));
    return !name.isEmpty() && source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
}

QStringList StationBench::files() const
{
    return QDir(folder.path()).entryList({"*.csv", "*.txt"}, QDir::Files, QDir::Name);
}

QStringList StationBench::boxes() const
{
    QStringList texts;
    for (const SeenBox& box : answers.seen)
        texts << box.caption + ": " + box.text;
    return texts;
}

QString StationBench::text(const char* label) const
{
    return static_cast<QLabel*>(find(label))->text();
}

QString StationBench::path(const QString& name) const
{
    return QDir(folder.path()).filePath(name);
}

/** The logs stay readable after the test has been unloaded. */
void StationBench::remember_logs()
{
    if (station->data_log != nullptr)
        csv_path = station->data_log->fileName();
    if (station->text_log != nullptr)
        txt_path = station->text_log->fileName();
}
