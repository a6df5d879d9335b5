#include "support/read_log.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QProcess>
#include <QtTest>

namespace
{
constexpr int PATIENCE_MS = 60000;

QString sample(const QString& name)
{
    return source_file("tools/demo/samples/" + name);
}
}  // namespace

/** The logs that come with the demo. */
class DemoSamplesTest : public QObject
{
    Q_OBJECT

private slots:
    void each_loads_with_its_cycles_data();
    void each_loads_with_its_cycles();
    void the_older_one_is_what_its_generator_writes();
};

void DemoSamplesTest::each_loads_with_its_cycles_data()
{
    QTest::addColumn<QString>("profile");
    QTest::addColumn<QString>("serial_number");
    QTest::addColumn<int>("cycles");
    QTest::addColumn<QString>("resistances");
    QTest::newRow("Earlier Pack_0041.csv") << "Earlier Pack"
                                           << "0041" << 3 << "4 3 4";
    QTest::newRow("Older Pack_0815.csv") << "Older Pack"
                                         << "0815" << 2 << "20 20";
}

void DemoSamplesTest::each_loads_with_its_cycles()
{
    const ReadLog log(content_of(sample(QTest::currentDataTag())));
    QVERIFY(log.accepted);
    QTEST(log.profile_name, "profile");
    QTEST(log.serial_number, "serial_number");
    QTEST(int(log.cycles.size()), "cycles");
    QStringList resistances;
    for (const ReadCycle& cycle : log.cycles) {
        resistances << QString::number(cycle.internal_resistance.points.size());
        // Enough of a curve to be worth a look.
        QVERIFY(cycle.voltage_vs_amphours.points.size() > 100);
    }
    QTEST(resistances.join(' '), "resistances");
}

void DemoSamplesTest::the_older_one_is_what_its_generator_writes()
{
    QProcess generator;
    generator.start(source_file("tools/make_older_sample.py"), QStringList());
    QVERIFY(generator.waitForFinished(PATIENCE_MS));
    QCOMPARE(generator.readAllStandardError(), QByteArray());
    // Not by QCOMPARE, which would print all of both.
    QVERIFY(generator.readAllStandardOutput() == content_of(sample("Older Pack_0815.csv")));
}

KEST_GUILESS_TEST(DemoSamplesTest)
#include "tst_demo_samples.moc"
