#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/** The files of a machine in a folder, as far as kest-doctor looks at them; a healthy one at first. */
class MachineTree
{
public:
    MachineTree();

    /** Writes a file, "/etc/localtime", and makes its folders. */
    void put(const QString& name, const QByteArray& content = "") const;
    /** Makes a link as it stands, "/proc/7/fd/3" to "/dev/ttyUSB0". */
    void link(const QString& name, const QString& target) const;
    void remove(const QString& name) const;

    /** A USB adapter of that vendor and product, "0403:6001". */
    void plug_in(const QString& ids) const;
    /** The adapter's port, with a node that leads to this path. */
    void give_port(const QString& name, const QString& leads_to) const;
    /** A process with that command. */
    void run(int pid, const QByteArray& program) const;

    QString root() const;

private:
    QTemporaryDir folder;
};
