#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

/** The `name=value` lines of one section. All values are text and are converted at each call. */
class INISection
{
public:
    INISection() = default;

    /** Sorted, upper case before lower case. */
    QStringList get_variable_names() const;

    /** False without touching `value` if the name is absent, as in all four. */
    bool get_value(QString name, QString& value) const;
    /** Reads decimal, 0x, 0o and 0b; beyond 32 bits false with the low 32 bits in `value`. */
    bool get_value(QString name, int& value) const;
    /** Only "Yes" and "No" are read. */
    bool get_value(QString name, bool& value) const;
    /** Sets `value` to 0 if the text is no number. */
    bool get_value(QString name, float& value) const;

    void set_value(QString name, QString value);
    /** Without this one a literal would be taken for a bool. */
    void set_value(QString name, const char* value);
    void set_value(QString name, int value);
    void set_value(QString name, bool value);
    /** Keeps six significant digits. */
    void set_value(QString name, float value);

    /** The number of variables removed: 0 or 1. */
    int delete_variable(QString name);

private:
    Q_DISABLE_COPY(INISection)

    QMap<QString, QString> variables;  ///< name to value
};
