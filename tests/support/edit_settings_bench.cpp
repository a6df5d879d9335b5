#include "support/edit_settings_bench.h"

#include "config/settings.h"
#include "support/help_document.h"

#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

const QByteArray FIRST_SETTINGS_FILE = "[misc]\nchart_refresh_rate_hz=3\n\n";

EditSettingsBench::EditSettingsBench(QByteArray content)
{
    content.replace("%1", folder.path().toLocal8Bit());
    if (!home.put_file(content) || !Settings::load())
        qFatal("The settings of the test cannot be made.");
    load_help_document();
    dialog = std::make_unique<EditSettingsDialog>(nullptr);
    dialog->show();
}

QString EditSettingsBench::text(const char* label) const
{
    return find<QLabel>(label)->text();
}

void EditSettingsBench::press(const char* button) const
{
    QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton);
}

void EditSettingsBench::choose(const char* button, const QString& path)
{
    answer.choose_path(path);
    press(button);
}

QString EditSettingsBench::make_directory(const QString& name) const
{
    QDir(folder.path()).mkdir(name);
    return folder.filePath(name);
}

bool EditSettingsBench::file_is(const QByteArray& content) const
{
    return home.file_content() == content;
}
