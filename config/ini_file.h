#pragma once

#include "config/ini_section.h"
#include "config/refusal.h"

#include <QMap>
#include <QString>
#include <QStringList>

class QFile;

/**
 * A text file of named sections with `name=value` lines, without comments, quotes or escapes.
 *
 * Only load() and save() touch the disk. What is saved is sorted: nothing of a file's former order
 * and blank lines survives.
 */
class INIFile
{
public:
    explicit INIFile(QString filename);
    ~INIFile();

    /**
     * Adds what the file holds to what is in memory.
     *
     * @return false without a message at the first line that is neither header nor variable; what
     *         stood before that line stays in memory
     */
    bool load();
    /** Writes the file in place. False, with a message if the file is read-only. */
    bool save();

    QFile* get_file() const;
    /** The line at which the last load() stopped; line 0 if the file could not be opened at all. */
    const Refusal& get_refusal() const;

    /** Sorted, upper case before lower case. */
    QStringList get_section_names() const;
    /** Hands back the section of that name, an empty one if there was none. */
    void add_section(QString name, INISection*& section);
    /** False without touching `section` if there is none. */
    bool get_section(QString name, INISection*& section) const;
    void delete_section(QString name);

    /** As the section's; false if there is no such section, which is not created. */
    bool get_value(QString section, QString name, QString& value) const;
    bool get_value(QString section, QString name, int& value) const;
    bool get_value(QString section, QString name, bool& value) const;
    bool get_value(QString section, QString name, float& value) const;

    /** As the section's; a section that does not exist is created. */
    void set_value(QString section, QString name, QString value);
    void set_value(QString section, QString name, const char* value);
    void set_value(QString section, QString name, int value);
    void set_value(QString section, QString name, bool value);
    void set_value(QString section, QString name, float value);

private:
    Q_DISABLE_COPY(INIFile)

    bool load_lines();
    QString load_line(const QString& line, INISection*& current);
    template <typename Value>
    bool read_value(const QString& section, const QString& name, Value& value) const;
    template <typename Value>
    void write_value(const QString& section, const QString& name, Value value);

    Refusal refusal;
    QFile* file;                          ///< owned; open during load() and save() only
    QMap<QString, INISection*> sections;  ///< owned; by name
};
