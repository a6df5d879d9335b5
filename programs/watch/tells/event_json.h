#pragma once

#include "watch/tells/event.h"

#include <QJsonObject>

#include <optional>

/** An event as programs get it; docs/json.md tells the keys. What is not known is null. */
QJsonObject event_json(const Event& event);

/**
 * What the memory keeps of an event. The file's name is kept in its bytes, which need not be UTF-8.
 */
QJsonObject stored_event(const Event& event);
std::optional<Event> event_of(const QJsonObject& stored);

/** As bytes in one line of ASCII and UTF-8: no text in it ends a line, whatever a reader takes for one. */
QByteArray one_line_json(const QJsonObject& object);

/** "KEST_EVENT=begins" and so on, in bytes, for the environment of a command. */
QList<QByteArray> event_environment(const Event& event);
