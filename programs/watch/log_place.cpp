#include "watch/log_place.h"

#include "common/settings_place.h"
#include "config/ini_file.h"

#include <QDir>

QString log_folder_of_application()
{
    INIFile settings(QDir(settings_folder_of(APPLICATION_NAME)).filePath("kestrometer.cfg"));
    QString folder;
    if (settings.load())
        settings.get_value("directories", "log_directory", folder);
    return folder == "." ? QString() : folder;
}
