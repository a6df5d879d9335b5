#include "bench_station.h"
#include "bench_table.h"

#include "config/battery_profiles.h"
#include "station/panel/combobox_items.h"

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>
#include <cstring>
#include <string>
#include <unordered_map>

namespace
{
constexpr int PROFILES = 100000;
constexpr int ROUNDS = 9;

/** Takes the milliseconds of CPU time that `work` needs, as the median of a few times. */
double milliseconds_for(const std::function<void()>& work)
{
    std::vector<double> times;
    for (int round = 0; round < ROUNDS; ++round) {
        const double start = cpu_seconds();
        work();
        times.push_back((cpu_seconds() - start) * 1e3);
    }
    return median(times);
}

void forget()
{
    qDeleteAll(BatteryProfiles::profiles);
    BatteryProfiles::profiles.clear();
}

void make_profiles()
{
    for (int i = 0; i < PROFILES; ++i) {
        auto* profile = new BatteryProfile;
        profile->description = QString("Pack %1").arg(i * 7919 % PROFILES);
        profile->serial_number_template = QString("P%1-").arg(i);
        profile->low_voltage_cutoff = 19.0 + 0.01 * (i % 100);
        BatteryProfiles::profiles.insert(profile->description, profile);
    }
}

void load()
{
    if (!BatteryProfiles::load() || BatteryProfiles::profiles.size() != PROFILES)
        qFatal("The profiles cannot be loaded.");
}

struct BareProfile
{
    double numbers[9] = {};
    std::string text;
};

/** The plainest way to records by name: the position of a line in its block says what it is. */
void load_barely(const QByteArray& path)
{
    std::FILE* file = std::fopen(path.constData(), "r");
    if (file == nullptr)
        qFatal("The profiles cannot be read.");
    std::unordered_map<std::string, BareProfile> profiles;
    BareProfile* current = nullptr;
    char line[256];
    for (int number = 0; std::fgets(line, sizeof line, file) != nullptr; ++number) {
        if (line[0] == '[') {
            number = 0;
            current = &profiles[std::string(line + 1, std::strchr(line, ']'))];
        } else if (const char* value = std::strchr(line, '=')) {
            current->numbers[(number - 1) % 9] = std::strtod(value + 1, nullptr);
            if (number == 1)
                current->text = value + 1;
        }
    }
    std::fclose(file);
    keep(double(profiles.size()));
}
}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    use_bench_settings(folder.path());
    make_profiles();
    const double saving = milliseconds_for([] { BatteryProfiles::save(); });
    const double listing = milliseconds_for([] {
        QComboBox combo;
        set_combobox_items(&combo, BatteryProfiles::get_all_descriptions());
    });
    forget();
    const QByteArray path = QFile::encodeName(BatteryProfiles::get_filename());
    // Each load meets an empty map, as at the start; what the former one left is not counted.
    std::vector<double> loads;
    for (int round = 0; round < ROUNDS; ++round) {
        const double start = cpu_seconds();
        load();
        loads.push_back((cpu_seconds() - start) * 1e3);
        forget();
    }
    const double bare = milliseconds_for([&path] { load_barely(path); });
    print_bench_table({
        {"100,000 profiles loaded / lines by their place", median(loads), bare, 0.0, "ms", 1000.0},
        {"100,000 profiles sorted and saved", saving, 0.0, 0.0, "ms", 0.0},
        {"100,000 profiles sorted and listed at a panel", listing, 0.0, 0.0, "ms", 0.0},
    });
    return 0;
}
