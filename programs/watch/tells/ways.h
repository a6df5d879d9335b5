#pragma once

#include "watch/tells/tell_settings.h"
#include "watch/tells/way.h"

#include <QObject>

/** All ways that the settings name, in the order of the manual. `owner` owns what they keep. */
QList<Way> ways_of(const TellSettings& settings, QObject* owner);

Way desktop_way(QObject* owner);
Way command_way(const QString& command, int seconds, QObject* owner);
Way mail_way(const QString& address, QObject* owner, int seconds = 60);
/** `patience_ms` is for one request, from its start to its end. */
Way post_way(const QString& text, QObject* owner, int patience_ms = 30000);
