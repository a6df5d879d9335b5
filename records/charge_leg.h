#pragma once

#include "records/phase_road.h"

/** A charge as the event log tells it, from its head to its end. */
struct ChargeLeg
{
    QDateTime begin;
    QDateTime end;            ///< invalid while it goes on, or if nothing tells
    bool time_ended = false;  ///< its maximum time was over
};

/** In their order; a test of the charge does not end it. */
QList<ChargeLeg> charge_legs(const QList<PhaseChange>& changes);
