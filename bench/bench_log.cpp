#include "bench_log.h"

#include "common/number_row.h"
#include "station/logs/log_format.h"

#include <QFile>
#include <QTextStream>

namespace
{
constexpr int ROWS_PER_RESISTANCE = 180;
}

QString bench_log_header()
{
    LogFormat::Section section;
    section.number = 1;
    section.start = QDateTime(QDate(2020, 4, 3), QTime(10, 2, 44));
    section.parameters.measure_internal_resistance = true;
    section.parameters.internal_resistance_test_interval_ah = 0.5;
    return LogFormat::file_header("Pack A", "1042") + LogFormat::discharge_section_header(section);
}

void write_bench_log(const QString& path, int rows)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("The log cannot be written.");
    QTextStream stream(&file);
    stream << bench_log_header();
    for (int row = 0; row < rows; ++row) {
        const double ir = row % ROWS_PER_RESISTANCE == 0 ? 0.014 : 0.0;
        NumberRow text;
        LogFormat::put_discharge_row(text, row * 1.003, row * 0.0027731, 41.0 - 0.01 * (row % 700),
                                     9.8 + 0.1 * (row % 4), ir);
        stream << text.view();
    }
}
