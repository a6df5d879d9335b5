#include "watch_process.h"

#include "support/test_files.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QtTest>

namespace
{
constexpr int PATIENCE_MS = 120000;
}

WatchProcess::WatchProcess() : environment(QProcessEnvironment::systemEnvironment()), ending(".csv")
{
    environment.insert("XDG_CONFIG_HOME", folder.path());
    environment.insert("XDG_STATE_HOME", folder.path());
    process.setStandardOutputFile(QProcess::nullDevice());
}

WatchProcess::~WatchProcess()
{
    kill();
}

bool WatchProcess::start(const QStringList& arguments)
{
    const QString command = "sh -c \"cat >> " + folder.filePath("told") + "\"";
    const QStringList words =
        wrapper + QStringList{KEST_WATCH, "--remind", "0", "--run", command} + arguments;
    process.setProcessEnvironment(environment);
    process.start(words.first(), words.mid(1));
    return process.waitForStarted(PATIENCE_MS);
}

void WatchProcess::kill()
{
    process.kill();
    process.waitForFinished(PATIENCE_MS);
}

int WatchProcess::end()
{
    process.terminate();
    const bool ended = process.waitForFinished(PATIENCE_MS);
    return ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

QList<QJsonObject> WatchProcess::told() const
{
    QList<QJsonObject> events;
    if (!QFile::exists(folder.filePath("told")))
        return events;
    for (const QByteArray& line : content_of(folder.filePath("told")).split('\n')) {
        const QJsonObject event = QJsonDocument::fromJson(line).object();
        if (!event.isEmpty() && event["file"].toString().endsWith(ending))
            events << event;
    }
    return events;
}

QStringList WatchProcess::told_in_short() const
{
    QStringList all;
    for (const QJsonObject& event : told())
        all << QString("%1 %2 %3")
                   .arg(event["event"].toString(), event["condition"].toString(),
                        QFileInfo(event["file"].toString()).fileName());
    return all;
}

bool WatchProcess::tells(const QString& in_short) const
{
    return QTest::qWaitFor([&] { return told_in_short().contains(in_short); }, PATIENCE_MS);
}

QByteArray WatchProcess::complaints()
{
    said += process.readAllStandardError();
    return said;
}
