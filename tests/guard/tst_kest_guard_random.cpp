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

/** Only what the guard and the program may send, however it was cut. */
bool is_allowed(QByteArray what)
{
    for (const char* part :
         {"opened", "closed", "ended", "55555555555500000004", "55555555", "4F", "43", "44"})
        what.replace(part, "");
    return what.isEmpty();
}

/** The lines that the guard's last word asks to see to. */
QByteArrayList lines_to_see_to(const QByteArray& said)
{
    const int start = said.lastIndexOf("see to ");
    return start < 0 ? QByteArrayList()
                     : said.mid(start + 7).replace(" now.\n", "").replace(", ", " ").split(' ');
}

/** A program with a few instruments, some of them faulty, that dies at a random moment. */
class RandomDeath
{
public:
    explicit RandomDeath(unsigned seed) : random(seed)
    {
    }
    bool happens();
    bool all_off() const
    {
        return bench.said.endsWith("kest-guard: All is off.\n");
    }
    bool nothing_held() const
    {
        return bench.said.endsWith(" and held no instrument.\n");
    }
    /** Empty, or what is wrong with the guard's last word. */
    QByteArray lie() const;

    GuardBench bench;

private:
    size_t pick(size_t count)
    {
        return size_t(random() % count);
    }
    void strike();

    std::mt19937 random;
    size_t held = 0;
    QVector<size_t> pulled;
};

bool RandomDeath::happens()
{
    held = 1 + pick(4);
    for (size_t i = 0; i < held + 1; ++i)
        bench.add_instrument({"--rate", "1", "--speed", "10"});
    if (!bench.start({"--speed", "10"}))
        return false;
    for (size_t i = 0; i < held; ++i)
        bench.order("hold " + bench.instruments[i]->port() + " " + QByteArray(1, "OCD"[pick(3)]));
    // At any moment from the first port's opening to long after the last one's.
    for (size_t i = pick(held + 1); i > 0; --i)
        if (bench.program_says("ready ").isEmpty())
            return false;
    for (size_t i = pick(4); i > 0; --i)
        strike();
    if (pick(4) == 0)
        bench.order("half-a-reset");
    if (pick(3) == 0 && pulled.isEmpty() && !bench.log_has(" holds "))
        return false;
    const int deaths[] = {SIGKILL, SIGKILL, SIGTERM, SIGSEGV};
    bench.kill_program(deaths[pick(std::size(deaths))]);
    return bench.ends();
}

void RandomDeath::strike()
{
    const size_t victim = pick(held);
    const QByteArray fault = FAULTS[pick(std::size(FAULTS))];
    bench.instruments[victim]->set_fault(fault);
    if (fault == "vanish")
        pulled << victim;
}

QByteArray RandomDeath::lie() const
{
    const QByteArrayList to_see_to = lines_to_see_to(bench.said);
    if (!all_off() && !nothing_held() && to_see_to.isEmpty())
        return "no last word";
    for (size_t i = 0; i < held; ++i) {
        const Instrument& instrument = *bench.instruments[i];
        // One that is pulled before the guard has looked is nobody's.
        const bool may_be_on = to_see_to.contains(instrument.port()) || pulled.contains(i);
        if (instrument.state() != 'O' && !may_be_on)
            return instrument.port() + " is on: " + instrument.story();
        for (const Instrument::Row& row : instrument.record())
            if (!is_allowed(row.what))
                return instrument.port() + " was told " + row.what;
    }
    const Instrument& never_held = *bench.instruments.back();
    return never_held.story().isEmpty() ? QByteArray() : never_held.port() + " was touched";
}
}  // namespace

/** Random kills with random faults: whatever happens, the guard's last word is true. */
class KestGuardRandomTest : public QObject
{
    Q_OBJECT

private slots:
    void the_last_word_is_true_data();
    void the_last_word_is_true();
    void cleanupTestCase();

private:
    int deaths = 0;
    int all_off = 0;
    int nothing_held = 0;
};

void KestGuardRandomTest::the_last_word_is_true_data()
{
    QTest::addColumn<unsigned>("seed");
    const unsigned first = unsigned(qEnvironmentVariableIntValue("KEST_GUARD_FIRST_SEED"));
    for (int i = 0; i < kills(); ++i)
        QTest::addRow("seed %u", first + unsigned(i)) << first + unsigned(i);
}

void KestGuardRandomTest::the_last_word_is_true()
{
    QFETCH(unsigned, seed);
    RandomDeath death(seed);
    QVERIFY2(death.happens(), death.bench.said);
    const QByteArray lie = death.lie();
    QVERIFY2(lie.isEmpty(), lie + "\n" + death.bench.said);
    ++deaths;
    all_off += death.all_off() ? 1 : 0;
    nothing_held += death.nothing_held() ? 1 : 0;
}

/** Whoever asks for many of them wants to know how many ended well. */
void KestGuardRandomTest::cleanupTestCase()
{
    if (qEnvironmentVariableIsSet("KEST_GUARD_KILLS"))
        qInfo("%d deaths: %d all off, %d with no instrument, %d with lines to see to", deaths,
              all_off, nothing_held, deaths - all_off - nothing_held);
}

namespace
{
int run(int argc, char** argv)
{
    // The library's own limit, five minutes, is one for all rows together.
    qputenv("QTEST_FUNCTION_TIMEOUT", QByteArray::number(kills() * PATIENCE_MS));
    return run_guard_tests<KestGuardRandomTest>(argc, argv);
}
}  // namespace

KEST_TEST_MAIN(run)
#include "tst_kest_guard_random.moc"
