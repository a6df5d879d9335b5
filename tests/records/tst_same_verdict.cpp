#include "records/log_check.h"
#include "support/mutated_log.h"
#include "support/station_bench.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include "station/test_station.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

/** The check says yes exactly when the application would load the log, with the same cycles in it. */
class SameVerdictTest : public QObject
{
    Q_OBJECT

private slots:
    void on_all_that_fuzzing_has_found_data();
    void on_all_that_fuzzing_has_found();
    void on_mutated_logs_data();
    void on_mutated_logs();

private:
    QString difference(const QByteArray& bytes);

    QTemporaryDir folder;
    StationBench bench;
};

/** Empty if the application and the check say the same of a log. */
QString SameVerdictTest::difference(const QByteArray& bytes)
{
    const QString path = folder.filePath("log.csv");
    write_file(path, bytes);
    QFile log(path);
    if (!log.open(QIODevice::ReadWrite | QIODevice::Text))
        return "cannot be opened";
    TestStation& station = *bench.station;
    station.data_log = &log;
    const bool loads = station.read_data_log();
    station.data_log = nullptr;
    LogFile file;
    if (!check_log(path, file))
        return "cannot be read";
    if (file.accepted != loads)
        return loads ? "only the application loads it" : "only the check accepts it";
    if (file.accepted == !file.refusal.reason.isEmpty())
        return "a refusal without a reason, or a reason without one";
    if (file.cycles.size() != station.cycles.size())
        return "other cycles";
    for (int i = 0; i < file.cycles.size(); ++i) {
        const TestCycle& cycle = *station.cycles[i];
        const Section& section = file.sections[file.cycles[i].section];
        if (section.count.rows != cycle.voltage_vs_amphours.points.size() ||
            file.cycles[i].resistance.count != cycle.internal_resistance.points.size() ||
            section.start != cycle.start_time)
            return "another cycle";
    }
    return QString();
}

void SameVerdictTest::on_all_that_fuzzing_has_found_data()
{
    QTest::addColumn<QString>("corpus");
    QTest::newRow("current") << "fuzz/corpus/current_log";
    QTest::newRow("older") << "fuzz/corpus/older_log";
}

void SameVerdictTest::on_all_that_fuzzing_has_found()
{
    QFETCH(QString, corpus);
    const QDir seeds(source_file(corpus));
    const QStringList names = seeds.entryList(QDir::Files);
    QVERIFY(!names.isEmpty());
    for (const QString& name : names)
        QVERIFY2(difference(content_of(seeds.filePath(name))).isEmpty(), qPrintable(name));
}

void SameVerdictTest::on_mutated_logs_data()
{
    QTest::addColumn<QString>("sample");
    for (const char* name :
         {"current_one_cycle.csv", "current_two_cycles.csv", "older_two_cycles.csv"})
        QTest::newRow(name) << name;
}

/** KEST_MUTATIONS in the environment asks for more than the few that a run of all tests has time for. */
void SameVerdictTest::on_mutated_logs()
{
    QFETCH(QString, sample);
    bool asked = false;
    const int wanted = qEnvironmentVariableIntValue("KEST_MUTATIONS", &asked);
    const int count = (asked ? wanted : 600) / 3;
    const QByteArray bytes = content_of(test_data("logs/" + sample));
    std::mt19937 random(14);
    for (int i = 0; i < count; ++i) {
        const QByteArray log = mutated_log(bytes, random);
        const QString found = difference(log);
        QVERIFY2(found.isEmpty(), qPrintable(found + "\n" + log));
    }
}

KEST_TEST(SameVerdictTest)
#include "tst_same_verdict.moc"
