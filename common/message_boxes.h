#pragma once

#include <QString>

/** Modal box with caption "Notice" and one OK button. */
int show_notice(const QString& text);

/** Modal warning box with caption "Error" and one OK button. */
int show_error(const QString& text);

/**
 * Reports a state believed impossible and lets the caller go on.
 *
 * @return `condition`; the box, with caption "Failed Assumption", comes only if it is false
 */
bool failed_assumption(bool condition, const QString& text);
