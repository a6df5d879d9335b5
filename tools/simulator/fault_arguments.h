#pragma once

#include "simulator/faults.h"

#include <QString>
#include <QStringList>

/**
 * Holds `words` against a usage such as "<volts> [lines=forever]" and fills in the defaults.
 *
 * @return false, with the reason in `error`, if a word is missing, too many or no value of its kind
 */
bool read_fault_arguments(const FaultRow& row, const QStringList& words, FaultArguments& arguments,
                          QString& error);
