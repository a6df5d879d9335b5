#include "watch/tells/ways.h"

QList<Way> ways_of(const TellSettings& settings, QObject* owner)
{
    QList<Way> ways;
    if (settings.desktop)
        ways << desktop_way(owner);
    for (const QString& command : settings.commands)
        ways << command_way(command, settings.run_seconds, owner);
    for (const QString& address : settings.addresses)
        ways << mail_way(address, owner);
    for (const QString& url : settings.urls)
        ways << post_way(url, owner);
    return ways;
}
