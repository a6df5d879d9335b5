#include "common/settings_place.h"

#include <QStandardPaths>

QString settings_folder_of(const QString& program)
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/" + program;
}
