#pragma once

#include <QStringList>

class INIFile;

/** What the store holds: "section/" for each section, "section/name=value" for each variable. */
QStringList memory_of(const INIFile& ini);
