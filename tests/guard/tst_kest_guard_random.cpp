#include "guard_bench.h"

#include <random>

namespace
{
/** How many kills: a few with every run of the tests, a thousand where somebody asks for them. */
int kills()
{
    return qEnvironmentVariableIsSet("KEST_GUARD_KILLS")
               ? qEnvironmentVariableIntValue("KEST_GUARD_KILLS")
               : 8;
}

const char* const FAULTS[] = {
    "garbage 5", "silence 7",         "ignore-next 3", "late-commands 4", "bootloader",
    "restart 4", "ignore-commands 6", "lost-line-end", "split-bytes 2",   "burst 3",
    "echo",      "six-fields 4",      "vanish",        "babble 3000",     "merge 3"};
}  // namespace

/** Random kills with random faults: whatever happens, the guard's last word is true. */
class KestGuardRandomTest : public QObject
{
    Q_OBJECT

private slots:
    void all_off_means_all_off_data();
    void all_off_means_all_off();
};

void KestGuardRandomTest::all_off_means_all_off_data()
{
    QTest::addColumn<unsigned>("seed");
    const unsigned first = qEnvironmentVariableIntValue("KEST_GUARD_FIRST_SEED");
    for (int i = 0; i < kills(); ++i)
        QTest::addRow("seed %u", first + unsigned(i)) << first + unsigned(i);
}

void KestGuardRandomTest::all_off_means_all_off()
{
    QFETCH(unsigned, seed);
    std::mt19937 random(seed);
    const auto pick = [&random](size_t count) {
        return size_t(random() % count);
    };
    GuardBench bench;
    const size_t held = 1 + pick(4);
    for (size_t i = 0; i < held + 1; ++i)
        bench.add_instrument({"--rate", "1", "--speed", "10"});
    QVERIFY(bench.start({"--speed", "10"}));
    for (size_t i = 0; i < held; ++i)
        bench.order("hold " + bench.instruments[i]->port() + " " + QByteArray(1, "OCD"[pick(3)]));
    // At any moment from the first port's opening to long after the last one's.
    for (size_t i = pick(held + 1); i > 0; --i)
        QVERIFY(!bench.program_says("ready ").isEmpty());
    for (size_t i = pick(4); i > 0; --i)
        bench.instruments[pick(held)]->set_fault(FAULTS[pick(std::size(FAULTS))]);
    if (pick(4) == 0)
        bench.order("half-a-reset");
    if (pick(3) == 0)
        QVERIFY(bench.log_has(" holds "));
    const int deaths[] = {SIGKILL, SIGKILL, SIGTERM, SIGSEGV};
    bench.kill_program(deaths[pick(std::size(deaths))]);
    QVERIFY(bench.guard.waitForFinished(PATIENCE_MS));
    QVERIFY(bench.ends_with(bench.guard.exitCode()));

    const bool all_off = bench.said.endsWith("kest-guard: All is off.\n");
    QVERIFY2(all_off || bench.said.contains("kest-guard: NOT all is off: see to ") ||
                 bench.said.endsWith(" and held no instrument.\n"),
             bench.said);
    for (size_t i = 0; i < held; ++i) {
        const Instrument& instrument = *bench.instruments[i];
        if (all_off)
            QVERIFY2(instrument.state() == 'O', instrument.story() + "\n" + bench.said);
        // Nobody but the guard and the program has sent anything, and they send no more than this.
        for (const Instrument::Row& row : instrument.record())
            QVERIFY2(QByteArray(row.what)
                         .replace("opened", "")
                         .replace("closed", "")
                         .replace("ended", "")
                         .replace("55555555555500000004", "")
                         .replace("55555555", "")
                         .replace("4F", "")
                         .replace("43", "")
                         .replace("44", "")
                         .isEmpty(),
                     row.what);
    }
    QCOMPARE(bench.instruments.back()->story(), QByteArray());
}

KEST_GUARD_TEST(KestGuardRandomTest)
#include "tst_kest_guard_random.moc"
