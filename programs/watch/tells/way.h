#pragma once

#include "watch/tells/event.h"

#include <functional>

/** What became of a message on one way. */
enum class Arrival
{
    Arrived,
    Later,   ///< not now: to be tried again
    Refused  ///< never: trying again would not help
};

/** To be called once, with a reason unless it arrived. */
using Answer = std::function<void(Arrival arrival, const QString& reason)>;

/** A way on which messages reach people. */
struct Way
{
    QString name;  ///< "mail anna@example.org"
    int most = 0;  ///< messages that may wait on it
    std::function<void(const Event&, const Answer&)> send;
};
