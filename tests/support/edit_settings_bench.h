#pragma once

#include "dialogs/edit_settings_dialog.h"
#include "support/modal_answer.h"
#include "support/settings_home.h"

#include <QByteArray>
#include <QTemporaryDir>

#include <memory>

/** The settings file as a first run writes it. */
extern const QByteArray FIRST_SETTINGS_FILE;

/** The dialog over a settings file of its own, with every box and chooser answered by the test. */
class EditSettingsBench
{
public:
    /** "%1" in the content stands for `folder`, which exists. */
    explicit EditSettingsBench(QByteArray content = FIRST_SETTINGS_FILE);

    template <typename Widget> Widget* find(const char* name) const
    {
        auto* widget = dialog->findChild<Widget*>(name);
        if (widget == nullptr)
            qFatal("The dialog has no widget %s.", name);
        return widget;
    }

    QString text(const char* label) const;
    void press(const char* button) const;
    /** Presses a button whose chooser then gives this path; an empty one cancels the chooser. */
    void choose(const char* button, const QString& path);
    /** A directory inside `folder`, created. */
    QString make_directory(const QString& name) const;
    /** True if the settings file holds just this. */
    bool file_is(const QByteArray& content) const;

    SettingsHome home;
    QTemporaryDir folder;
    ModalAnswer answer;
    std::unique_ptr<EditSettingsDialog> dialog;
};
