#pragma once

#include "doctor/seen.h"

#include <QList>
#include <QMetaType>
#include <QString>

#include <functional>

using Change = std::function<void(Seen&)>;
Q_DECLARE_METATYPE(Change)

/** What can be wrong with a machine, and the sentence and the command that kest-doctor has for it. */
struct Situation
{
    const char* name;
    Change change;  ///< of the healthy machine
    QString line;   ///< what is then told: "id|sentence|command"
};

QList<Situation> situations();

/** One instrument that speaks on ttyUSB0, and nothing else to tell. */
Seen healthy();

/** The instrument of the healthy machine falls silent. */
void says_nothing(Seen& seen);

extern const QString ADAPTER_IN_WORDS;  ///< the healthy machine's
