#pragma once

#include <QString>

/** The log folder in the application's settings; empty if none is set there yet. */
QString log_folder_of_application();
