#include "doctor/judge.h"

#include "doctor/judge_parts.h"

#include <QRegularExpression>

#include <algorithm>

namespace
{
void judge_copies(const QList<SeenProcess>& copies, QList<Finding>& findings)
{
    if (copies.size() < 2)
        return;
    QStringList pids;
    for (const SeenProcess& copy : copies)
        pids << QString::number(copy.pid);
    findings << finding("two-copies", {}, {QString::number(copies.size()), pids.join(", ")});
}

void judge_clock(const SeenClock& clock, QList<Finding>& findings)
{
    if (!clock.synchronised)
        findings << finding("clock", {});
    if (!clock.has_zone)
        findings << finding("no-zone", {});
}
}  // namespace

QList<Finding> judge(const Seen& seen)
{
    QList<Finding> findings;
    judge_stores(seen.stores, findings);
    judge_ports(seen, findings);
    judge_copies(seen.copies, findings);
    judge_folders(seen.folders, findings);
    for (const SeenSleeper& sleeper : seen.sleepers)
        findings << finding("sleep", {}, {sleeper.what}, {sleeper.command});
    judge_clock(seen.clock, findings);
    std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
        return rank_of(a.id) < rank_of(b.id);
    });
    return findings;
}

QString shell_quoted(const QString& text)
{
    static const QRegularExpression plain("^[A-Za-z0-9_./@:+-]+$");
    if (plain.match(text).hasMatch())
        return text;
    return "'" + QString(text).replace('\'', "'\\''") + "'";
}
