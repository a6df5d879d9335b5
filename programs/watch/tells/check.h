#pragma once

#include "watch/tells/tell_settings.h"

#include <QString>

#include <functional>

/** What would be done, in lines for people. */
QString plan_text(const TellSettings& settings, const QStringList& folders);

/**
 * Sends a test message by every way, once, and asks for the computer to stay awake and lets go again.
 *
 * @param tell gets a line for each, as soon as it is known what became of it
 * @return whether nothing failed
 */
bool try_all(const TellSettings& settings, const std::function<void(const QString& line)>& tell);
