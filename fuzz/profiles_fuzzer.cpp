#include "config/battery_profiles.h"
#include "config/settings.h"

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

void require(bool condition)
{
    if (!condition)
        std::abort();
}

void forget()
{
    qDeleteAll(BatteryProfiles::profiles);
    BatteryProfiles::profiles.clear();
}

void write_file(const char* bytes, qint64 size)
{
    QFile file(BatteryProfiles::get_filename());
    require(file.open(QIODevice::WriteOnly));
    require(file.write(bytes, size) == size);
}

/** Saves what is in memory, and loads it into an empty one. */
QByteArray save_and_load_again()
{
    require(BatteryProfiles::save());
    const int count = BatteryProfiles::profiles.size();
    forget();
    require(BatteryProfiles::load());
    require(BatteryProfiles::profiles.size() == count);
    QFile file(BatteryProfiles::get_filename());
    require(file.open(QIODevice::ReadOnly));
    return file.readAll();
}
}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    // In memory where there is such a place: the disk would be most of the time.
    const QString place = QDir("/dev/shm").exists() ? QString("/dev/shm") : QDir::tempPath();
    folder = std::make_unique<QTemporaryDir>(place + "/fuzz-XXXXXX");
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder->path()));
    static const QCoreApplication application(*argc, *argv);
    require(QDir().mkpath(Settings::get_settings_dir()));
    // A refused line is told on standard error: here that would be a line for most inputs.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return 0;
}

/** A profile file: refused, or saved and read again, after which nothing changes any more. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    forget();
    // Nothing at all stands for no file, as at a first start.
    if (size == 0)
        QFile::remove(BatteryProfiles::get_filename());
    else
        write_file(reinterpret_cast<const char*>(data), qint64(size));
    if (!BatteryProfiles::load())
        return 0;
    for (auto at = BatteryProfiles::profiles.cbegin(); at != BatteryProfiles::profiles.cend(); ++at)
        require(at.key() == at.value()->description && at.value()->on_disk);
    // Once is not enough: saving cuts hours and digits.
    const QByteArray once = save_and_load_again();
    require(save_and_load_again() == once);
    return 0;
}
