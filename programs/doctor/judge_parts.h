#pragma once

#include "doctor/judge.h"

/** The parts of judge(), each of which adds what it finds. */
void judge_ports(const Seen& seen, QList<Finding>& findings);
void judge_stores(const QList<SeenStore>& stores, QList<Finding>& findings);
void judge_folders(const QList<SeenFolder>& folders, QList<Finding>& findings);

/** What was heard on a port that was listened to. */
Finding judge_speech(const QString& port, const SeenSpeech& speech);
