#include "support/log_loading.h"

#include "support/test_files.h"

#include <QtTest>

QByteArray sample_log(const char* name)
{
    return content_of(test_data(QString("logs/") + name));
}

QString place_log(const StationBench& bench, const char* name, const QString& as)
{
    const QString path = bench.path(as);
    if (!write_file(path, sample_log(name)))
        qFatal("No sample at %s", qPrintable(path));
    return path;
}

void load_log(StationBench& bench, const QString& path)
{
    bench.answers.choose_path(path);
    bench.press("pbLoadLog");
}

bool in_start_state(const TestStation& station)
{
    for (const char* name : {"cbProfile", "pbDirectory", "leProfileName", "leSerialNumber"})
        if (!station.findChild<QWidget*>(name)->isEnabled())
            return false;
    return station.phase == PHASE_IDLE && station.data_log == nullptr &&
           station.text_log == nullptr && station.cycles.isEmpty() &&
           station.current_cycle == nullptr && station.serial_number.isEmpty() &&
           !station.serial_number_edited;
}

void choose(StationBench& bench, const char* radio_button)
{
    bench.answers.handle([radio_button](QWidget* dialog) {
        QTest::mouseClick(dialog->findChild<QWidget*>(radio_button), Qt::LeftButton, Qt::NoModifier,
                          QPoint(8, 8));
        QTest::mouseClick(dialog->findChild<QWidget*>("pbConfirm"), Qt::LeftButton);
    });
}

void PreviewStation::load(StationBench& bench, const QString& path)
{
    bench.answers.choose_path(path);
    QTest::mouseClick(find<QPushButton>("pbLoadLog"), Qt::LeftButton);
}
