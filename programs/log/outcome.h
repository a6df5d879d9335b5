#pragma once

#include "programs/common/exit_code.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

/** What came of one log. */
struct Outcome
{
    QString text;          ///< for standard output, lines with their ends
    QJsonObject json;      ///< the same for programs
    QStringList messages;  ///< for people, on standard error
    ExitCode code = EXIT_GOOD;

    /** A log that cannot be worked on at all, with a sentence that says why. */
    static Outcome failure(const QString& path, const QString& sentence);
};
