#pragma once

#include <QString>
#include <QStringList>

/** The files of a machine by their usual names: of this one, or of one that lies in a folder. Reads only. */
class FileView
{
public:
    /** @param root_folder "/" for this machine */
    explicit FileView(QString root_folder);

    bool is_this_machine() const;

    /** Where the file of that name really lies. */
    QString place(const QString& name) const;
    bool exists(const QString& name) const;
    /** Of a folder, hidden and dangling ones included, sorted. */
    QStringList entries(const QString& folder) const;
    /** All of a file; empty if it cannot be read. */
    QString text(const QString& name) const;
    /** The same without white space at its ends: a file with one value. */
    QString value(const QString& name) const;
    /** What a link says, as it stands; empty if it is none or may not be read. */
    QString link(const QString& name) const;
    /** The name without any link in it; empty if there is no such file. */
    QString canonical(const QString& name) const;

private:
    QString root;  ///< without a slash at its end: empty for this machine
};
