#include "watch_bench.h"

#include "station/test_station.h"

namespace
{
QString keys(const QList<Situation>& situations, const QByteArray& ending)
{
    QStringList words;
    for (const Situation& situation : situations)
        if (situation.log.endsWith(ending) && !situation.facts.phase.isNull())
            words << traits_of(situation.condition).key;
    return words.join(' ');
}
}  // namespace

WatchedFolder::WatchedFolder(const QString& folder) : now(present_moment())
{
    settings.folders = QStringList{folder};
    settings.state_folder = state.path();
    watch = std::make_unique<Watch>(settings);
}

QString WatchedFolder::look_after(double seconds)
{
    const auto passed = qint64(seconds * 1000.0);
    now.time = now.time.addMSecs(passed);
    now.awake_ms += passed;
    now.passed_ms += passed;
    seen = watch->look(now);
    return keys(seen.situations, QByteArray());
}

QString WatchedFolder::look_at(const QString& log)
{
    return keys(seen.situations, QFile::encodeName(log));
}

void WatchedFolder::restart()
{
    watch = std::make_unique<Watch>(settings);
}

const Situation* WatchedFolder::situation(Condition condition) const
{
    for (const Situation& found : seen.situations)
        if (found.condition == condition)
            return &found;
    return nullptr;
}

WatchBench::WatchBench() : folder(test.bench.folder.path())
{
    folder.look_after(0);
}

QString WatchBench::run(int seconds)
{
    QString found;
    for (int second = 0; second < seconds; ++second) {
        test.run(1);
        found = folder.look_after(1);
    }
    return found;
}

QString WatchBench::run_to(Phase phase)
{
    for (int second = 0; second < 2000 && test.station.phase != phase; ++second)
        run(1);
    return run(4);
}
