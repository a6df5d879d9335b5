#include "bench_table.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>
#include <utility>

namespace
{
constexpr int ROUNDS = 41;

double nanoseconds_for(const std::function<void()>& work)
{
    const double start = cpu_seconds();
    work();
    return (cpu_seconds() - start) * 1e9;
}

std::string text(const char* format, double value, const char* unit)
{
    char cell[64];
    std::snprintf(cell, sizeof cell, format, value);
    return std::string(cell) + unit;
}

/** Three digits that mean something; nanoseconds in large numbers turn into larger units. */
std::string figure(double value, std::string unit)
{
    for (const auto& [smaller, larger] : {std::pair("ns", "us"), std::pair("us", "ms")}) {
        if (unit != smaller || value < 10000.0)
            continue;
        value /= 1000.0;
        unit = larger;
    }
    const char* format = value >= 1000.0 ? "%.0f " : value >= 10.0 ? "%.1f " : "%.2f ";
    return text(format, value, unit.c_str());
}

std::string target_of(const BenchRow& row)
{
    if (row.target_ratio > 0.0)
        return text("<= %.2f", row.target_ratio, "");
    return row.target_figure > 0.0 ? "<= " + figure(row.target_figure, row.unit) : std::string();
}
}  // namespace

BenchRow measure(const char* work, int pieces, double target_ratio,
                 const std::function<void()>& ours, const std::function<void()>& limit)
{
    ours();
    limit();
    std::vector<double> our_times;
    std::vector<double> limit_times;
    for (int round = 0; round < ROUNDS; ++round) {
        our_times.push_back(nanoseconds_for(ours));
        limit_times.push_back(nanoseconds_for(limit));
    }
    return {work, median(our_times) / pieces, median(limit_times) / pieces, target_ratio};
}

void print_bench_table(const std::vector<BenchRow>& rows)
{
    std::printf("%-52s | %12s | %12s | %7s | %s\n", "work", "ours", "limit", "ratio", "target");
    for (const BenchRow& row : rows) {
        const bool compared = row.limit > 0.0;
        std::printf(
            "%-52s | %12s | %12s | %7s | %s\n", row.work, figure(row.ours, row.unit).c_str(),
            compared ? figure(row.limit, row.unit).c_str() : "",
            compared ? text("%.2f", row.ours / row.limit, "").c_str() : "", target_of(row).c_str());
    }
    std::fflush(stdout);
}

double cpu_seconds()
{
    timespec used = {};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return double(used.tv_sec) + double(used.tv_nsec) * 1e-9;
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + long(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void keep(double result)
{
    static volatile double sink;
    sink = result;
    static_cast<void>(sink);
}
