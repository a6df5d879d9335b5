#pragma once

#include "doctor/finding.h"
#include "doctor/seen.h"

/** Whether one of them is trouble. */
bool has_trouble(const QList<Finding>& findings);

/** All of them for people: the trouble with numbers and commands, and then the notes. */
QString findings_as_text(const QList<Finding>& findings);

/** All of them as one JSON document. */
QByteArray findings_as_json(const QList<Finding>& findings);

/** What was heard on one port, and what that means, as one JSON document. */
QByteArray speech_as_json(const SeenSpeech& speech, const QList<Finding>& findings);

/** A line of an instrument and what it means, for people. */
QString line_as_text(const QString& line);
