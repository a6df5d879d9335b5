#pragma once

#include <QByteArray>

#include <random>

/**
 * A log with one to three faults, always the same ones for the same seed: bytes changed, inserted or
 * lost, pieces of other places, a line gone.
 */
QByteArray mutated_log(QByteArray bytes, std::mt19937& random);
