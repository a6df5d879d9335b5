#pragma once

#include "doctor/seen.h"

#include <QList>
#include <QString>

#include <functional>

/** The desktops of this user that would send the machine to sleep when nobody touches it. */
QList<SeenSleeper> look_at_desktops(const std::function<bool(const QString& action)>& can_sleep);
