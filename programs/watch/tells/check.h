#pragma once

#include "watch/tells/tell_settings.h"

#include <QString>

/** What would be done, in lines for people. */
QString plan_text(const TellSettings& settings, const QStringList& folders);

/**
 * Sends a test message by every way, once, and asks for the computer to stay awake and lets go again.
 *
 * @return a line for each: what became of it; `all_good` is cleared if anything failed
 */
QString try_all(const TellSettings& settings, bool& all_good);
