#include "watch/forecaster.h"

#include "programs/common/whole_file.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace
{
// A look is late by so much at most while earlier logs are read for the first time.
constexpr int READING_MS = 100;
const char* const INDEX_FILE = "index";
const char* const ERRORS_FILE = "forecasts.json";
const QString BY_HAND = "User clicked";
constexpr double WIDEST_SHARE = 0.3;
constexpr double SAME_CUTOFF = 0.05;  // volts

QString file_in(const QString& folder, const char* name)
{
    return folder.isEmpty() ? QString() : QDir(folder).filePath(name);
}

bool is_charge(TestPhase phase)
{
    return phase == TestPhase::Charging || phase == TestPhase::FullChargeTest ||
           phase == TestPhase::FinalCharge || phase == TestPhase::FinalChargeTest;
}

bool is_discharge(TestPhase phase)
{
    return phase == TestPhase::Discharging || phase == TestPhase::ResistanceTest ||
           phase == TestPhase::ResistanceRecovery;
}

/** False if the test is in no leg, or its section has not begun in the log yet. */
bool leg_of(const WatchedLog& log, const Moment& moment, PresentLeg& leg)
{
    const TestView view = log.view(moment);
    const SectionKind kind = is_charge(view.phase) ? SectionKind::Charge : SectionKind::Discharge;
    if (!log.runs() || !log.log->in_section || log.log->section.kind != kind ||
        (!is_charge(view.phase) && !is_discharge(view.phase)))
        return false;
    const RunningLog& data = *log.log;
    leg.kind = kind;
    leg.final_charge =
        view.phase == TestPhase::FinalCharge || view.phase == TestPhase::FinalChargeTest;
    leg.seconds = data.row.seconds + view.row_seconds;
    leg.volts = data.row.volts;
    leg.amps = data.row.amps;
    leg.amp_hours = data.row.amp_hours;
    leg.parameters = data.section.parameters;
    return true;
}

/** Nothing but what an instrument says moves a test on: nobody knows how long it will say nothing. */
bool stands_still(const QList<Situation>& situations)
{
    return std::any_of(situations.begin(), situations.end(), [](const Situation& found) {
        return found.condition == Condition::InstrumentSilent ||
               found.condition == Condition::NoCurrent;
    });
}

QJsonArray array_of(const QList<double>& shares)
{
    QJsonArray array;
    for (const double share : shares)
        array << share;
    return array;
}

void take(const QJsonValue& value, QList<double>& shares)
{
    const QJsonArray array = value.toArray();
    for (const QJsonValue& share : array)
        if (share.isDouble() && shares.size() < ForecastErrors::KEPT)
            shares << share.toDouble();
}
}  // namespace

Forecaster::Forecaster(const QString& state_folder, bool keeps_memory)
    : folder(state_folder), keeps(keeps_memory), index(file_in(state_folder, INDEX_FILE))
{
    load_errors();
}

void Forecaster::read_on(const std::vector<std::unique_ptr<LogFolder>>& folders,
                         const std::vector<std::unique_ptr<WatchedLog>>& logs,
                         const QSet<QByteArray>& answering)
{
    QSet<QByteArray> written;
    for (const auto& log : logs)
        if (log->runs())
            written.insert(log->path);
    bool complete = true;
    QSet<QByteArray> present;
    for (const auto& place : folders) {
        complete = answering.contains(place->path) &&
                   index.read_on(place->logs, written, READING_MS) && complete;
        for (auto log = place->logs.cbegin(); log != place->logs.cend(); ++log)
            present.insert(log.key());
    }
    knows_all_logs = complete;
    if (keeps && complete && index.logs_read != saved_reads) {
        index.save(present);
        saved_reads = index.logs_read;
    }
}

void Forecaster::put_end(const WatchedLog& log, const Moment& moment, QList<Situation>& situations)
{
    judge(log);
    PresentLeg leg;
    if (situations.isEmpty() || stands_still(situations) || !leg_of(log, moment, leg))
        return;
    const QString& battery = log.log->profile_name;
    const double error = errors.share(leg.kind);
    const Expectation end =
        expected_end(leg, log.log->legs, index.of_pack(battery, log.log->serial_number),
                     index.of_battery(battery), error);
    if (!end.is_known())
        return;
    const auto at = [&](double seconds) {
        return moment.time.addMSecs(qint64((seconds - leg.seconds) * 1000.0));
    };
    for (Situation& situation : situations) {
        situation.facts.end_from = at(end.earliest);
        situation.facts.end_to = at(end.latest);
        if (error >= 0.0)
            situation.facts.end_error = error;
    }
    // A mere bound, as whole hours are, is no forecast that could be put to the test.
    if (end.latest - end.earliest > WIDEST_SHARE * end.latest)
        return;
    Made& first = made[log.path];
    if (first.leg != log.log->legs.size())
        first = {log.log->legs.size(), leg.kind, end.middle()};
}

/** A leg that is over shows how good its first forecast was, unless somebody ended it by hand. */
void Forecaster::judge(const WatchedLog& log)
{
    const auto first = made.find(log.path);
    if (first == made.end() || log.log->legs.size() <= first->leg)
        return;
    const Leg& ended = log.log->legs.at(first->leg);
    const bool by_hand =
        log.story.last_phase().reason.startsWith(BY_HAND) ||
        (ended.kind == SectionKind::Discharge && ended.last_volts > ended.cutoff + SAME_CUTOFF);
    const Made forecast = *first;
    made.erase(first);
    if (by_hand || ended.kind != forecast.kind)
        return;
    errors.add(forecast.kind, forecast.expected, ended.seconds);
    save_errors();
}

void Forecaster::load_errors()
{
    QFile file(file_in(folder, ERRORS_FILE));
    if (folder.isEmpty() || !file.open(QIODevice::ReadOnly))
        return;
    const QJsonObject document = QJsonDocument::fromJson(file.readAll()).object();
    take(document["charges"], errors.shares_of(SectionKind::Charge));
    take(document["discharges"], errors.shares_of(SectionKind::Discharge));
}

void Forecaster::save_errors() const
{
    if (folder.isEmpty() || !keeps)
        return;
    QDir().mkpath(folder);
    const QJsonObject document = {
        {"charges", array_of(errors.shares_of(SectionKind::Charge))},
        {"discharges", array_of(errors.shares_of(SectionKind::Discharge))}};
    // One that could not be written comes with the next.
    replace_file(file_in(folder, ERRORS_FILE), QJsonDocument(document).toJson());
}
