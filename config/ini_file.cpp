#include "config/ini_file.h"

#include "common/message_boxes.h"
#include "common/text.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace
{
void write_section(QTextStream& stream, const QString& name, const INISection& section)
{
    stream << "[" << name << "]\n";
    const QStringList variables = section.get_variable_names();
    for (const QString& variable : variables) {
        QString value;
        section.get_value(variable, value);
        // A directory's name may have a line break: what follows it would keep the file from loading.
        stream << variable << "=" << in_one_line(value) << "\n";
    }
    stream << "\n";
}
}  // namespace

INIFile::INIFile(QString filename) : file(new QFile(filename))
{
}

INIFile::~INIFile()
{
    qDeleteAll(sections);
    delete file;
}

bool INIFile::load()
{
    refusal = Refusal();
    if (!file->open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    const bool complete = load_lines();
    file->close();
    return complete;
}

bool INIFile::load_lines()
{
    QTextStream stream(file);
    stream.setAutoDetectUnicode(false);
    INISection* current = nullptr;
    for (int number = 1; !stream.atEnd(); ++number) {
        const QString line = stream.readLine().trimmed();
        const QString reason = load_line(line, current);
        if (!reason.isEmpty()) {
            refusal = {number, line, reason};
            return false;
        }
    }
    return true;
}

/** What is wrong with the line; empty for nothing. */
QString INIFile::load_line(const QString& line, INISection*& current)
{
    if (line.isEmpty())
        return {};
    if (line.startsWith('[') && line.endsWith(']')) {
        QString section;
        string_between(line, "[", section, "]");
        add_section(section.trimmed(), current);
        return {};
    }
    QString name;
    QString value;
    if (!split_at_first(line, name, "=", value))
        return "is neither [section] nor name=value";
    if (current == nullptr)
        return "stands before the first [section]";
    current->set_value(name.trimmed(), value.trimmed());
    return {};
}

bool INIFile::save()
{
    const QFileInfo info(file->fileName());
    if (info.exists() && !info.isWritable()) {
        show_error(QString("Settings file (%1) is read-only.").arg(file->fileName()));
        return false;
    }
    if (!file->open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    {
        QTextStream stream(file);
        const QStringList names = get_section_names();
        for (const QString& name : names)
            write_section(stream, name, *sections[name]);
    }
    file->close();
    return true;
}

const Refusal& INIFile::get_refusal() const
{
    return refusal;
}

QFile* INIFile::get_file() const
{
    return file;
}

QStringList INIFile::get_section_names() const
{
    QStringList names = sections.keys();
    names.sort(Qt::CaseSensitive);
    return names;
}

void INIFile::add_section(QString name, INISection*& section)
{
    if (get_section(name, section))
        return;
    section = new INISection;
    sections.insert(name, section);
}

bool INIFile::get_section(QString name, INISection*& section) const
{
    const auto found = sections.constFind(name);
    if (found == sections.constEnd())
        return false;
    section = found.value();
    return true;
}

void INIFile::delete_section(QString name)
{
    delete sections.take(name);
}

template <typename Value>
bool INIFile::read_value(const QString& section, const QString& name, Value& value) const
{
    INISection* found = nullptr;
    return get_section(section, found) && found->get_value(name, value);
}

template <typename Value>
void INIFile::write_value(const QString& section, const QString& name, Value value)
{
    INISection* target = nullptr;
    add_section(section, target);
    target->set_value(name, value);
}

bool INIFile::get_value(QString section, QString name, QString& value) const
{
    return read_value(section, name, value);
}

bool INIFile::get_value(QString section, QString name, int& value) const
{
    return read_value(section, name, value);
}

bool INIFile::get_value(QString section, QString name, bool& value) const
{
    return read_value(section, name, value);
}

bool INIFile::get_value(QString section, QString name, float& value) const
{
    return read_value(section, name, value);
}

void INIFile::set_value(QString section, QString name, QString value)
{
    write_value(section, name, value);
}

void INIFile::set_value(QString section, QString name, const char* value)
{
    write_value(section, name, value);
}

void INIFile::set_value(QString section, QString name, int value)
{
    write_value(section, name, value);
}

void INIFile::set_value(QString section, QString name, bool value)
{
    write_value(section, name, value);
}

void INIFile::set_value(QString section, QString name, float value)
{
    write_value(section, name, value);
}
