#pragma once

#include <QList>
#include <QString>
#include <QStringList>

enum class Severity
{
    Trouble,
    Note
};

/** One sentence about the machine, and what mends it. */
struct Finding
{
    QString id;  ///< "no-permission", for other programs
    Severity severity = Severity::Note;
    QString subject;  ///< what it is about: a port, a file, a folder; empty for the machine
    QString sentence;
    QString command;  ///< for a shell; empty where no command helps
};

/**
 * The row of the table of sentences, as a finding.
 *
 * @param sentence what stands in the sentence's places, %1 first
 * @param command  the same of the command
 */
Finding finding(const char* id, const QString& subject, const QStringList& sentence = {},
                const QStringList& command = {});

/** The place of a finding's id in the table of sentences, which begins with the worst. */
int rank_of(const QString& id);

/** All ids, worst first. */
QStringList all_finding_ids();
