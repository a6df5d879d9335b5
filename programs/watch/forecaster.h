#pragma once

#include "records/forecast.h"
#include "watch/log_folder.h"
#include "watch/log_index.h"
#include "watch/watched_log.h"

#include <memory>
#include <vector>

/** Tells of each running test when its leg is expected to end, and learns from how it ended. */
class Forecaster
{
public:
    /** @param state_folder empty: nothing is kept */
    Forecaster(const QString& state_folder, bool keeps_memory);

    /** Reads earlier logs, for a while at each look, in folders of the paths that are `answering`. */
    void read_on(const std::vector<std::unique_ptr<LogFolder>>& folders,
                 const std::vector<std::unique_ptr<WatchedLog>>& logs,
                 const QSet<QByteArray>& answering);
    /** Puts the expected end into what was found of a log. */
    void put_end(const WatchedLog& log, const Moment& moment, QList<Situation>& situations);

    bool knows_all_logs = false;

private:
    /** The first forecast of a leg, to be judged when the leg is over. */
    struct Made
    {
        int leg = -1;  ///< how many were over
        SectionKind kind = SectionKind::Charge;
        double expected = 0.0;  ///< seconds of the leg
    };

    void judge(const WatchedLog& log);
    void load_errors();
    void save_errors() const;

    QString folder;
    bool keeps;
    LogIndex index;
    int saved_reads = 0;
    ForecastErrors errors;
    QHash<QByteArray, Made> made;  ///< by path
};
