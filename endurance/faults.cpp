#include "fault_course.h"
#include "port_troubles.h"
#include "support/phase_tour.h"
#include "support/reloaded_log.h"
#include "support/test_files.h"

#include "config/settings.h"
#include "station/test_station.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <memory>

// Each fault in each phase: what the operator sees, how the test goes on, and the logs it leaves.

namespace
{
constexpr int FAULT_SECONDS = 20;  // longer than it takes until silence or deafness is told

// In the simulator's words, several with "; " between them, or in those of strike() and try_case().
const QStringList FAULTS = {
    "garbage 5",
    "nul 5",
    "nul-line-end 5",
    "split-bytes 5",
    "merge 5",
    "lone-cr 1",
    "lone-lf 1",
    "lost-line-end 1",
    "invalid-utf8 5",
    "field 0 é 5; split-bytes 5",
    "six-fields 5",
    "eight-fields 5",
    "empty-fields 5",
    "letters 5",
    "decimal-comma 5",
    "inf 2",
    "nan 2",
    "1e308 1",
    "field 1 -0 2; field 2 -0 2",
    "no-id 5",
    "bare-id 5",
    "big-id 5",
    "field 5 ID=0x7 5",
    "id 8",
    "same-number",
    "wrong-letter 5 X",
    "doubled-letter 5",
    "babble 64000000",
    "echo",
    "bootloader",
    "bootloader-noise",
    "silence 2",
    "silence 3",
    "silence 5",
    "silence 60",
    "silence 3600",
    "burst 5",
    "slow 5",
    "rate 24",
    "fast 24",
    "clock 3600",
    "clock -3600",
    "utc 2021-03-28T01:00:00",
    "utc 2021-10-31T01:00:00",
    "utc 2021-12-31T23:00:00",
    "utc 2024-02-28T23:00:00",
    "utc 2038-01-19T03:14:08",
    "suspend 28800",
    "ignore-next 1",
    "ignore-commands forever",
    "late-commands 3",
    "stuck-state O forever",
    "restart 2",
    "no-load",
    "trip-protection",
    "field 1 99.99 3",
    "field 1 0.00 3",
    "field 1 -5.00 3",
    "current-after-off 0.3 5",
    "voltage-after-off 0 forever",
    "voltage-after-off -0.2 forever",
    "field 1 inf 3",
    "field 2 0.0 3",
    "vanish",
    "port same",
    "port another",
    "port permission",
    "port busy",
    "port gone",
};

QString argument_of(const QString& fault)
{
    return fault.section(' ', 1);
}

/** The computer sleeps, the instrument does not; what it says is lost. */
void suspend(WholeTest& test, double seconds)
{
    test.bench.clock.advance_seconds(seconds);
    test.link.simulated.advance(seconds);
}

void strike(WholeTest& test, const QString& faults)
{
    for (const QString& fault : faults.split("; ")) {
        if (fault.startsWith("clock "))
            test.bench.clock.advance_seconds(argument_of(fault).toDouble());
        else if (fault.startsWith("suspend "))
            suspend(test, argument_of(fault).toDouble());
        else if (fault.startsWith("rate "))
            test.lines_per_second = argument_of(fault).toInt();
        else
            test.link.set_fault(fault);
    }
}

bool lasts(const QString& fault)
{
    static const QStringList LASTING = {"no-load", "echo", "slow", "fast", "late"};
    return fault.endsWith("forever") ||
           std::any_of(LASTING.begin(), LASTING.end(),
                       [&fault](const QString& name) { return fault.startsWith(name); });
}

int seconds_of(const QString& fault)
{
    return fault == "silence 3600" ? 3620 : fault == "silence 60" ? 80 : FAULT_SECONDS;
}

bool reach(PhaseTour& tour, Phase phase)
{
    return phase == PHASE_IDLE || tour.reach(phase);
}

/** Seconds until a test comes to this phase, and half of what the fault then is watched for. */
int seconds_to(Phase phase)
{
    PhaseTour tour;
    const QDateTime start = tour.test.bench.clock.now;
    return reach(tour, phase) ? int(start.secsTo(tour.test.bench.clock.now)) + FAULT_SECONDS / 2
                              : 0;
}

/** One fault in one phase, and what came of it. */
class Case
{
public:
    Case(const QString& its_fault, Phase its_phase, const QString& its_log)
        : fault(its_fault), phase(its_phase), log(its_log)
    {
    }

    QJsonObject run();

private:
    QString try_fault(PhaseTour& tour);
    QString try_port(PhaseTour& tour);
    QString try_same_number(PhaseTour& tour);
    QJsonObject outcome(PhaseTour& tour, const FaultCourse& course, const QString& wrong);

    QString fault;
    Phase phase;
    QString log;
};

QJsonObject Case::run()
{
    // Midnight and the like come in mid-phase, by no jump of the clock.
    const bool by_the_clock = fault.startsWith("utc ");
    const int seconds = by_the_clock ? seconds_to(phase) : 0;
    PhaseTour tour;
    Settings::set_log_all_telemetry(true);
    if (by_the_clock)
        tour.test.bench.clock.now =
            QDateTime::fromString(argument_of(fault) + "Z", Qt::ISODate).addSecs(-seconds);
    const FaultCourse course(tour.test, log + ".course");
    if (!reach(tour, phase))
        return {{"wrong", "the phase is not reached"}};
    QString wrong;
    if (by_the_clock)
        tour.test.run(FAULT_SECONDS);
    else if (fault == "same-number")
        wrong = try_same_number(tour);
    else if (fault.startsWith("port "))
        wrong = try_port(tour);
    else
        wrong = try_fault(tour);
    return outcome(tour, course, wrong);
}

QString Case::try_fault(PhaseTour& tour)
{
    strike(tour.test, fault);
    tour.test.run(seconds_of(fault));
    if (lasts(fault))
        tour.test.link.set_fault("clear");
    tour.test.lines_per_second = 1;
    return {};
}

QString Case::try_port(PhaseTour& tour)
{
    const QString trouble = argument_of(fault);
    if (trouble != "same" && trouble != "another")
        return PortTroubles::add_station_on(trouble, tour.test, FAULT_SECONDS);
    tour.test.link.set_fault("vanish");
    tour.test.run(FAULT_SECONDS);
    return {};
}

/** The other one's test runs beside; its logs are looked at as well. */
QString Case::try_same_number(PhaseTour& tour)
{
    Neighbour other(tour.test, 7);
    other.start("Pack B", "7");
    for (int second = 0; second < 200; ++second) {
        tour.test.run(1);
        other.run_second();
        if (tour.test.station.phase == PHASE_READY_FOR_DISCHARGE && second > 100)
            tour.test.press("pbStartSkip");
    }
    write_file(log + "-other.csv", tour.test.bench.file("Pack B_7.csv"));
    write_file(log + "-other.txt", tour.test.bench.file("Pack B_7.txt"));
    return other.station.phase == PHASE_DONE ? QString() : "the other test is not done";
}

QJsonObject Case::outcome(PhaseTour& tour, const FaultCourse& course, const QString& wrong)
{
    WholeTest& test = tour.test;
    const bool done = tour.run();
    QSet<QString> seen = course.seen;
    for (const SeenBox& box : test.bench.answers.seen)
        seen.insert(box.text);
    write_file(log + ".csv", test.bench.csv());
    write_file(log + ".txt", test.bench.txt());
    QJsonObject found = {{"seen", QJsonArray::fromStringList(seen.values())},
                         {"end", done ? "Done" : test.station.phase_to_string(test.station.phase)},
                         {"loads", difference_after_reload(test.station, test.bench.csv()) !=
                                       "The log does not load."}};
    QString trouble = wrong;
    if (fault == "port same" || fault == "port another") {
        found["resumed"] = log + "-resumed";
        trouble = PortTroubles::go_on_at_new_port(test, fault == "port another", log + "-resumed");
    }
    if (fault == "same-number")
        found["resumed"] = log + "-other";
    if (!trouble.isEmpty())
        found["wrong"] = trouble;
    return found;
}
}  // namespace

/** faults RUNS FOLDER */
int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const int all = FAULTS.size() * (PHASE_DONE + 1);
    const int runs = qMin(QByteArray(argv[1]).toInt(), all);
    std::printf("{\"cases\":%d}\n", runs);
    for (int number = 0; number < all; ++number) {
        if (qint64(number + 1) * runs / all == qint64(number) * runs / all)
            continue;
        const QString& fault = FAULTS[number / (PHASE_DONE + 1)];
        const Phase phase = Phase(number % (PHASE_DONE + 1));
        const QString log = QString("%1/%2").arg(argv[2]).arg(number);
        QJsonObject outcome = Case(fault, phase, log).run();
        outcome["fault"] = fault;
        outcome["phase"] = phase;
        outcome["log"] = log;
        std::printf("%s\n", QJsonDocument(outcome).toJson(QJsonDocument::Compact).constData());
        std::fflush(stdout);
    }
    return 0;
}
