#include "config/ini_section.h"

#include "common/parse_int.h"

QStringList INISection::get_variable_names() const
{
    QStringList names = variables.keys();
    names.sort(Qt::CaseSensitive);
    return names;
}

bool INISection::get_value(QString name, QString& value) const
{
    const auto found = variables.constFind(name);
    if (found == variables.constEnd())
        return false;
    value = found.value();
    return true;
}

bool INISection::get_value(QString name, int& value) const
{
    QString text;
    return get_value(name, text) && parse_int(text, value);
}

bool INISection::get_value(QString name, bool& value) const
{
    QString text;
    if (!get_value(name, text) || (text != "Yes" && text != "No"))
        return false;
    value = text == "Yes";
    return true;
}

bool INISection::get_value(QString name, float& value) const
{
    QString text;
    if (!get_value(name, text))
        return false;
    bool ok = false;
    // Written whatever the outcome, on purpose: text that is no number reads as 0.
    value = text.toFloat(&ok);
    return ok;
}

void INISection::set_value(QString name, QString value)
{
    variables.insert(name, value);
}

void INISection::set_value(QString name, const char* value)
{
    set_value(name, QString(value));
}

void INISection::set_value(QString name, int value)
{
    set_value(name, QString::number(value, 10));
}

void INISection::set_value(QString name, bool value)
{
    set_value(name, QString(value ? "Yes" : "No"));
}

void INISection::set_value(QString name, float value)
{
    set_value(name, QString::number(value, 'g', 6));
}

int INISection::delete_variable(QString name)
{
    return variables.remove(name);
}
