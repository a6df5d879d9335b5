#pragma once

#include "watch/look.h"

#include <QJsonObject>
#include <QStringList>

/** One look in words: a line a test, then one for each thing that is up with the machine. */
QString status_text(const Look& look);

/** The same as a document; docs/json.md tells the keys. */
QJsonObject status_json(const Look& look, const QStringList& folders, const QDateTime& now);

/** Whether something is wrong. */
bool has_trouble(const Look& look);
