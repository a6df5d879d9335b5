#include "bench_table.h"

#include "device/telemetry_line.h"

#include <QString>

#include <charconv>
#include <cstring>
#include <string>

namespace
{
constexpr int COUNT = 4096;

/** Readings of a pack that is being discharged, as its instrument sends them. */
std::vector<std::string> make_lines()
{
    std::vector<std::string> lines;
    for (int index = 0; index < COUNT; ++index) {
        char line[96];
        std::snprintf(line, sizeof line, "%d\t%.2f\t%.1f\t%d\t0\tID=%d\tD", index,
                      54.6 - index * 0.003, 4.0 + index % 7 * 0.1, index % 100, 31 + index % 64);
        lines.emplace_back(line);
    }
    return lines;
}

/** The plain loop: fields by memchr, numbers by from_chars, no way for unusual forms. */
bool read_plainly(const std::string& line, double& voltage, double& current, int& id, char& state)
{
    const char* fields[8] = {line.data()};
    const char* const end = line.data() + line.size();
    int count = 1;
    while (count < 8) {
        const auto* tab = static_cast<const char*>(
            std::memchr(fields[count - 1], '\t', size_t(end - fields[count - 1])));
        if (tab == nullptr)
            break;
        fields[count++] = tab + 1;
    }
    if (count != 7 || end - fields[6] != 1)
        return false;
    state = *fields[6];
    return std::from_chars(fields[1], fields[2] - 1, voltage).ec == std::errc() &&
           std::from_chars(fields[2], fields[3] - 1, current).ec == std::errc() &&
           std::from_chars(fields[5] + 3, fields[6] - 1, id).ec == std::errc();
}
}  // namespace

int main()
{
    const std::vector<std::string> plain_lines = make_lines();
    std::vector<QString> lines;
    for (const std::string& line : plain_lines)
        lines.push_back(QString::fromStdString(line));

    const auto ours = [&lines] {
        double sum = 0.0;
        for (const QString& line : lines) {
            double voltage = 0.0, current = 0.0;
            int id = 0;
            KestrometerState state = Unknown;
            if (read_telemetry_line(line, voltage, current, id, state))
                sum += voltage + current + id + state;
        }
        keep(sum);
    };
    const auto limit = [&plain_lines] {
        double sum = 0.0;
        for (const std::string& line : plain_lines) {
            double voltage = 0.0, current = 0.0;
            int id = 0;
            char state = 0;
            if (read_plainly(line, voltage, current, id, state))
                sum += voltage + current + id + state;
        }
        keep(sum);
    };
    print_bench_table(
        {measure("one telemetry line's fields / from_chars", COUNT, 0.0, ours, limit)});
    return 0;
}
