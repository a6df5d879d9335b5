#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/** A settings directory of its own for one case; not created yet, and gone at the end. */
class SettingsHome
{
public:
    SettingsHome();
    ~SettingsHome();
    SettingsHome(const SettingsHome&) = delete;
    SettingsHome& operator=(const SettingsHome&) = delete;

    /** Puts a settings file there, as an earlier run would have left it. */
    bool put_file(const QByteArray& content) const;
    /** The settings file as it is on the disk. */
    QByteArray file_content() const;

    QTemporaryDir root;
    QString directory;  ///< the settings directory
    QString filename;   ///< the settings file, with its directory

private:
    QByteArray former_data_home;
};
