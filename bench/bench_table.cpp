#include "bench_table.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace
{
constexpr int ROUNDS = 41;

double nanoseconds_for(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    const auto end = std::chrono::steady_clock::now();
    return std::chrono::duration<double, std::nano>(end - start).count();
}

double median(std::vector<double> times)
{
    std::nth_element(times.begin(), times.begin() + ROUNDS / 2, times.end());
    return times[ROUNDS / 2];
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
    std::printf("%-52s %12s %12s %8s %8s\n", "work", "ours ns", "limit ns", "ratio", "target");
    for (const BenchRow& row : rows) {
        std::printf("%-52s %12.1f %12.1f %8.2f ", row.work, row.ours, row.limit,
                    row.ours / row.limit);
        if (row.target_ratio > 0.0)
            std::printf("%8.2f\n", row.target_ratio);
        else
            std::printf("%8s\n", "");
    }
    std::fflush(stdout);
}

void keep(double result)
{
    static volatile double sink;
    sink = result;
    static_cast<void>(sink);
}
