#include "guard_bench.h"

namespace
{
// As the real ones speak, once a second: the lines are the measure, and so nothing is hurried here.
const QStringList REAL_PACE = {"--rate", "1"};
}  // namespace

/** How many lines an instrument sends between the death of its program and the command that it obeys. */
class KestGuardPaceTest : public QObject
{
    Q_OBJECT

private slots:
    void stations_are_told_off_within_lines_data();
    void stations_are_told_off_within_lines();
};

void KestGuardPaceTest::stations_are_told_off_within_lines_data()
{
    QTest::addColumn<int>("stations");
    QTest::addColumn<qint64>("most_lines");
    QTest::newRow("one") << 1 << 3LL;
    QTest::newRow("sixteen") << 16 << 4LL;
}

void KestGuardPaceTest::stations_are_told_off_within_lines()
{
    QFETCH(int, stations);
    QFETCH(qint64, most_lines);
    GuardBench bench;
    for (int i = 0; i < stations; ++i)
        bench.add_instrument(REAL_PACE);
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    bench.kill_program();
    QVERIFY2(bench.ends_all_off(), bench.said);
    qint64 slowest = 0;
    for (const auto& instrument : bench.instruments) {
        QCOMPARE(instrument->state(), 'O');
        QVERIFY2(instrument->lines_until_told_off() >= 0, instrument->story());
        slowest = std::max(slowest, instrument->lines_until_told_off());
    }
    QVERIFY2(slowest <= most_lines, qPrintable(QString::number(slowest)));
    if (qEnvironmentVariableIsSet("KEST_GUARD_KILLS"))
        qInfo("The slowest of %d: %lld lines", stations, slowest);
}

KEST_GUARD_TEST(KestGuardPaceTest)
#include "tst_kest_guard_pace.moc"
