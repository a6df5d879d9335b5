#include "support/phase_tour.h"
#include "support/reloaded_log.h"
#include "support/test_files.h"

#include "config/settings.h"
#include "station/test_station.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QSet>

#include <cstdio>

// Each fault in each phase: what the operator sees, how the test goes on, and the logs it leaves.

namespace
{
constexpr int FAULT_SECONDS = 20;  // longer than it takes until silence or deafness is told

const QStringList FAULTS = {
    "garbage 5",
    "six-fields 5",
    "eight-fields 5",
    "empty-fields 5",
    "letters 5",
    "decimal-comma 5",
    "inf 2",
    "nan 2",
    "1e308 1",
    "field 1 -0 2",
    "no-id 5",
    "bare-id 5",
    "big-id 5",
    "field 5 ID=0x7 5",
    "wrong-letter 5 X",
    "doubled-letter 5",
    "lone-cr 1",
    "lone-lf 1",
    "lost-line-end 1",
    "nul 5",
    "invalid-utf8 5",
    "split-bytes 5",
    "merge 5",
    "babble 100000",
    "echo",
    "silence 2",
    "silence 3",
    "silence 5",
    "silence 60",
    "silence 3600",
    "burst 5",
    "slow 5",
    "fast 24",
    "clock 3600",
    "clock -3600",
    "clock 28800",
    "local 2021-03-28T01:59:50",
    "local 2021-10-31T02:59:50",
    "local 2021-12-31T23:59:50",
    "local 2024-02-28T23:59:50",
    "local 2038-01-19T04:14:00",
    "ignore-next 1",
    "ignore-commands forever",
    "late-commands 3",
    "stuck-state O forever",
    "id 8",
    "restart 2",
    "bootloader",
    "no-load",
    "trip-protection",
    "current-after-off 0.3 5",
    "voltage-after-off 0 forever",
    "voltage-after-off -0.2 forever",
    "vanish",
};

/** What the panel tells of an instrument that does not do as it should. */
const char* const WARNINGS[] = {"laLostCommunication", "laKestrometerIsStuck", "laNotDischarging"};

/** Faults of the computer's clock are set here, all others by the simulator. */
void strike(WholeTest& test, const QString& fault)
{
    const QString argument = fault.section(' ', 1);
    if (fault.startsWith("clock "))
        test.bench.clock.advance_seconds(argument.toDouble());
    else if (fault.startsWith("local "))
        test.bench.clock.now = QDateTime::fromString(argument, Qt::ISODate);
    else
        test.link.set_fault(fault);
}

bool lasts(const QString& fault)
{
    return fault.endsWith("forever") || fault == "no-load" || fault == "echo" ||
           fault.startsWith("slow") || fault.startsWith("fast") || fault.startsWith("late");
}

void run_and_watch(WholeTest& test, int seconds, QSet<QString>& seen)
{
    for (int second = 0; second < seconds; ++second) {
        test.run(1);
        for (const char* name : WARNINGS) {
            const auto* label = test.bench.widget<QLabel>(name);
            if (label->isVisible())
                seen.insert(label->text());
        }
    }
}

int seconds_of(const QString& fault)
{
    return fault == "silence 3600" ? 3620 : fault == "silence 60" ? 80 : FAULT_SECONDS;
}

QJsonObject try_fault(const QString& fault, Phase phase, const QString& log)
{
    PhaseTour tour;
    Settings::set_log_all_telemetry(true);
    WholeTest& test = tour.test;
    if (phase != PHASE_IDLE && !tour.reach(phase))
        return {{"wrong", "the phase is not reached"}};
    QSet<QString> seen;
    strike(test, fault);
    run_and_watch(test, seconds_of(fault), seen);
    if (lasts(fault))
        test.link.set_fault("clear");
    const bool done = tour.run();
    for (const SeenBox& box : test.bench.answers.seen)
        seen.insert(box.text);
    write_file(log + ".csv", test.bench.csv());
    write_file(log + ".txt", test.bench.txt());
    return {{"seen", QJsonArray::fromStringList(seen.values())},
            {"end", done ? "Done" : test.station.phase_to_string(test.station.phase)},
            {"loads",
             difference_after_reload(test.station, test.bench.csv()) != "The log does not load."}};
}
}  // namespace

/** faults RUNS FOLDER */
int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const int runs = QByteArray(argv[1]).toInt();
    const int all = FAULTS.size() * (PHASE_DONE + 1);
    for (int number = 0; number < all; ++number) {
        if (qint64(number + 1) * runs / all == qint64(number) * runs / all)
            continue;
        const QString& fault = FAULTS[number / (PHASE_DONE + 1)];
        const Phase phase = Phase(number % (PHASE_DONE + 1));
        const QString log = QString("%1/%2").arg(argv[2]).arg(number);
        QJsonObject outcome = try_fault(fault, phase, log);
        outcome["fault"] = fault;
        outcome["phase"] = phase;
        outcome["log"] = log;
        std::printf("%s\n", QJsonDocument(outcome).toJson(QJsonDocument::Compact).constData());
        std::fflush(stdout);
    }
    return 0;
}
