#pragma once

#include <QString>

constexpr int BENCH_LOG_ROWS = 1000000;

/** What stands above the rows of the log. */
QString bench_log_header();

/** A data log of one discharge, with a resistance every three minutes. */
void write_bench_log(const QString& path, int rows = BENCH_LOG_ROWS);
