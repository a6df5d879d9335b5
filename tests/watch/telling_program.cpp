// The telling half of the watch without the other: what holds stands in a file of the test.

#include "programs/common/terminal.h"
#include "watch/tells/messenger.h"

#include <QCoreApplication>
#include <QFile>
#include <QTimer>

namespace
{
/** Each line is a log, and such tests are done. */
Look world(const QString& path)
{
    Look look;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return look;
    for (const QByteArray& log : file.readAll().split('\n'))
        if (!log.isEmpty()) {
            Situation situation;
            situation.log = log;
            situation.condition = Condition::Done;
            look.situations << situation;
        }
    return look;
}
}  // namespace

/** STATE-FOLDER WORLD-FILE COMMAND: tells by the command until it is ended. */
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    TellSettings settings;
    settings.desktop = false;
    settings.inhibits_sleep = false;
    settings.remind_minutes = 0;
    settings.commands << words.value(3);
    Messenger messenger(settings, words.value(1));
    QObject::connect(&messenger, &Messenger::sig_trouble, tell);
    if (!messenger.begin()) {
        tell(messenger.error());
        return 1;
    }
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        messenger.hear(world(words.value(2)), QDateTime::currentDateTimeUtc());
    });
    timer.start(1);
    return QCoreApplication::exec();
}
