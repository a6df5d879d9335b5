#pragma once

#include "watch/look.h"

/** Whoever passes on what the watch has found: hears of every look, also of those without news. */
class Teller
{
public:
    virtual ~Teller() = default;

    /** @param now UTC */
    virtual void hear(const Look& look, const QDateTime& now) = 0;
};
