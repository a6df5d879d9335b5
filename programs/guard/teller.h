#pragma once

#include <QString>

/** Says what a guard has to say: on standard error, in its log, and on the desktop. Never waits. */
class Teller
{
public:
    /** Makes the folder if it can; without one the log is left out. */
    explicit Teller(const QString& state_folder);

    /** A sentence for whoever looks at the terminal, or later at the log. */
    void tell(const QString& sentence) const;
    /** A sentence for the log alone. */
    void note(const QString& sentence) const;
    /** Something that somebody must see, also tomorrow morning. */
    void show_on_desktop(const QString& headline, const QString& text) const;

    QString log_path() const;

private:
    QString folder;
};

/** "~/.local/state/kest-guard", or where the desktop keeps such things. */
QString state_folder();
