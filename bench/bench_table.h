#pragma once

#include <functional>
#include <vector>

/** One line of the table: our way of some work beside the plainest loop that does the same. */
struct BenchRow
{
    const char* work = "";
    double ours = 0.0;          ///< in `unit`, for one piece of work, median
    double limit = 0.0;         ///< likewise, of the plain loop; 0 where there is none
    double target_ratio = 0.0;  ///< ours / limit to be reached; 0 for none
    const char* unit = "ns";
    double target_figure = 0.0;  ///< what `ours` itself is to reach; 0 for none
};

/**
 * Measures both ways in turn, so that a disturbed machine disturbs both, and takes the medians.
 *
 * Each call does `pieces` pieces of work. What counts is the CPU time of this process, system calls
 * included, so that other programs cost nothing but the warmth of the caches.
 */
BenchRow measure(const char* work, int pieces, double target_ratio,
                 const std::function<void()>& ours, const std::function<void()>& limit);

/** Prints "work | ours | limit | ratio | target". */
void print_bench_table(const std::vector<BenchRow>& rows);

/** CPU seconds that this process has used so far, user and system together. */
double cpu_seconds();

double median(std::vector<double> values);

/** Keeps the compiler from leaving out the work behind a result that nobody reads. */
void keep(double result);
