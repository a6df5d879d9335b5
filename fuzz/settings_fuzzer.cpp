#include "config/ini_file.h"
#include "support/ini_memory.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace
{
std::unique_ptr<QTemporaryDir> folder;

QString path(const char* name)
{
    return folder->filePath(name);
}

/** Every way of asking for every value: text, number, flag. */
void read_all(const INIFile& ini)
{
    for (const QString& name : ini.get_section_names()) {
        INISection* section = nullptr;
        ini.get_section(name, section);
        for (const QString& variable : section->get_variable_names()) {
            int number = 0;
            float fraction = 0.0F;
            bool flag = false;
            section->get_value(variable, number);
            section->get_value(variable, fraction);
            section->get_value(variable, flag);
        }
    }
}

void require(bool condition)
{
    if (!condition)
        std::abort();
}

template <typename Value> void set_and_read(INIFile& ini, const QString& section, Value value)
{
    ini.set_value(section, "set", value);
    Value read{};
    require(ini.get_value(section, "set", read) && read == value);
}

/** What is set is what is read then; what is taken out is gone. */
void change(INIFile& ini)
{
    const QString section = ini.get_section_names().value(0);
    set_and_read(ini, section, QString("text"));
    set_and_read(ini, section, -7);
    set_and_read(ini, section, 0.5F);
    set_and_read(ini, section, true);
    ini.set_value(section, "set", "last");
    INISection* found = nullptr;
    require(ini.get_section(section, found) && found->delete_variable("set") == 1);
    ini.delete_section(section);
    require(!ini.get_section(section, found));
}
}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static const QCoreApplication application(*argc, *argv);
    // In memory where there is such a place: the disk would be most of the time.
    folder = std::make_unique<QTemporaryDir>(QDir("/dev/shm").exists() ? "/dev/shm/fuzz-XXXXXX"
                                                                       : "fuzz-XXXXXX");
    return 0;
}

/** A settings file: refused, or read and then the same after it has been saved and read again. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QFile file(path("in"));
    require(file.open(QIODevice::WriteOnly));
    file.write(reinterpret_cast<const char*>(data), qint64(size));
    file.close();

    INIFile ini(file.fileName());
    const bool loaded = ini.load();
    read_all(ini);
    if (!loaded)
        return 0;
    const QStringList before = memory_of(ini);
    require(ini.save());
    INIFile again(file.fileName());
    require(again.load());
    require(memory_of(again) == before);
    change(again);
    return 0;
}
