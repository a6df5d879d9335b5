#pragma once

#include "guard/child_process.h"
#include "guard/outcome.h"

#include <QString>
#include <QStringList>

/** What a guard says. Pure texts, for standard error, its log and the desktop alike. */
namespace Sentences
{
/** "was killed (signal 9: by somebody, or by the system because memory ran out)" */
QString ending(const Ending& ending);
/** "kest-battery-tester was killed (...) while it held ttyUSB0, ttyUSB1. Switching ..." */
QString program_ended(const QString& program, const Ending& how, const QStringList& lines);
QString program_ended_unseen(const QString& program, const Ending& how);
/** "kest-battery-tester, 2026-11-22 03:14" */
QString headline(const QString& program);
QString program_ended_well(const QString& program);
QString program_started(const QString& program, pid_t process);
QString line_taken(const QString& program, const QString& line);
QString line_let_go(const QString& program, const QString& line);
QString cannot_start(const QString& program, int error);
/** What became of a line: "Instrument 7 on ttyUSB0 was discharging; it is off since ..." */
QString outcome(const Outcome& outcome);
/** An instrument that does not do as it is told, for which nobody should wait. */
QString disobeyed(const Outcome& so_far);
/** The last word: whether all is off, and if not, which lines need a hand. */
QString conclusion(const QVector<Outcome>& outcomes);
QString frozen(const QString& program, int seconds, bool is_ended);
QString stopped(const QString& program);
QString goes_on(const QString& program);
QString waiting_for_another_guard(const QString& log_path);
QString cannot_look(const QString& program);
QString signal_passed_on(const QString& program, int signal);
QString signal_had_already(const QString& program, int signal);
QString no_free_port();
QString interrupted_once(const QStringList& lines);
}  // namespace Sentences
