#pragma once

#include <QString>

/** The name of the application's program, after which the place of its settings is called. */
inline const QString APPLICATION_NAME = "kest-battery-tester";

/** Where a program of this name keeps its settings, whoever asks. */
QString settings_folder_of(const QString& program);
