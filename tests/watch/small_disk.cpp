#include "small_disk.h"

#include <QDir>
#include <QFile>

namespace
{
constexpr int PATIENCE_MS = 60000;
const char* const FILLER = "filler";
}  // namespace

SmallDisk::SmallDisk()
{
    // It lasts as long as a process is in that world.
    keeper.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    keeper.start("unshare",
                 {"--map-root-user", "--mount", "sh", "-c",
                  "mount -t tmpfs -o size=1m,mode=0777 tmpfs \"$1\" && echo ready && exec cat",
                  "sh", place.path()});
    while (!keeper.canReadLine())
        if (!keeper.waitForReadyRead(PATIENCE_MS))
            qFatal("There is no small disk.");
}

SmallDisk::~SmallDisk()
{
    keeper.kill();
    keeper.waitForFinished(PATIENCE_MS);
}

QStringList SmallDisk::entrance() const
{
    return {"nsenter",
            "--target",
            QString::number(keeper.processId()),
            "--user",
            "--preserve-credentials",
            "--mount",
            "--"};
}

QString SmallDisk::path() const
{
    return place.path();
}

QString SmallDisk::file(const QString& name) const
{
    return QString("/proc/%1/root%2/%3").arg(keeper.processId()).arg(place.path(), name);
}

bool SmallDisk::fill() const
{
    QFile filler(file(FILLER));
    if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return false;
    const QByteArray block(4096, 'x');
    while (filler.write(block) == block.size()) {
    }
    return filler.size() > 0;
}

bool SmallDisk::make_room() const
{
    return QFile::remove(file(FILLER));
}
