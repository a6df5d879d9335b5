#include "support/ini_memory.h"

#include "config/ini_file.h"

QStringList memory_of(const INIFile& ini)
{
    QStringList lines;
    const QStringList sections = ini.get_section_names();
    for (const QString& section_name : sections) {
        lines.append(section_name + "/");
        INISection* section = nullptr;
        ini.get_section(section_name, section);
        const QStringList names = section->get_variable_names();
        for (const QString& name : names) {
            QString value;
            section->get_value(name, value);
            lines.append(section_name + "/" + name + "=" + value);
        }
    }
    return lines;
}
