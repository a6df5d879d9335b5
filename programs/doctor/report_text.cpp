#include "doctor/report_text.h"

#include "device/raw_traffic.h"
#include "doctor/judge.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace
{
/** A file's name or an adapter's may hold what a terminal would obey. */
QString harmless(QString text)
{
    for (QChar& character : text)
        if (character.category() == QChar::Other_Control)
            character = QChar(0xFFFD);
    return text;
}

QJsonObject json_of(const Finding& finding)
{
    return {{"id", finding.id},
            {"severity", finding.severity == Severity::Trouble ? "trouble" : "note"},
            {"subject", finding.subject},
            {"sentence", finding.sentence},
            {"command", finding.command}};
}

QJsonObject json_of(const QList<Finding>& findings)
{
    QJsonArray array;
    for (const Finding& finding : findings)
        array.append(json_of(finding));
    return {{"version", 1}, {"healthy", !has_trouble(findings)}, {"findings", array}};
}
}  // namespace

bool has_trouble(const QList<Finding>& findings)
{
    return std::any_of(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.severity == Severity::Trouble;
    });
}

QString findings_as_text(const QList<Finding>& findings)
{
    QString trouble;
    QString notes;
    int number = 0;
    for (const Finding& finding : findings) {
        if (finding.severity == Severity::Note) {
            notes += "   " + harmless(finding.sentence) + "\n";
            continue;
        }
        trouble += QString("%1. %2\n").arg(++number).arg(harmless(finding.sentence));
        if (!finding.command.isEmpty())
            trouble += "       " + harmless(finding.command) + "\n";
    }
    if (number == 0)
        trouble = "All is well.\n";
    return notes.isEmpty() ? trouble : trouble + "\nAlso seen:\n" + notes;
}

QByteArray findings_as_json(const QList<Finding>& findings)
{
    return QJsonDocument(json_of(findings)).toJson();
}

QByteArray speech_as_json(const SeenSpeech& speech, const QList<Finding>& findings)
{
    QJsonObject document = json_of(findings);
    document["lines"] = speech.lines;
    document["valid_lines"] = speech.valid;
    document["last_telemetry"] = speech.telemetry;
    document["last_other_line"] = speech.other;
    return QJsonDocument(document).toJson();
}

QString line_as_text(const QString& line)
{
    const QString reason = why_no_telemetry(line);
    return QString("%1\n    %2\n")
        .arg(sanitised_text(line),
             reason.isEmpty() ? telemetry_in_words(line) : "no telemetry: it " + reason);
}
