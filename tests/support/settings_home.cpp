#include "support/settings_home.h"

#include "support/test_files.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

SettingsHome::SettingsHome() : former_data_home(qgetenv("XDG_DATA_HOME"))
{
    qputenv("XDG_DATA_HOME", QFile::encodeName(root.filePath("data")));
    directory = root.filePath("data/" + QCoreApplication::applicationName());
    filename = directory + "/kestrometer.cfg";
}

SettingsHome::~SettingsHome()
{
    qputenv("XDG_DATA_HOME", former_data_home);
}

bool SettingsHome::put_file(const QByteArray& content) const
{
    return QDir().mkpath(directory) && write_file(filename, content);
}

QByteArray SettingsHome::file_content() const
{
    return content_of(filename);
}
