#pragma once

/**
 * While one of these lives, what is printed through the `stderr` of the C library goes nowhere.
 *
 * The library for workbooks prints lines for its developers there, beside its answer. The program tells
 * people in sentences, and writes them past that stream.
 */
class QuietLibrary
{
public:
    QuietLibrary();
    ~QuietLibrary();
    QuietLibrary(const QuietLibrary&) = delete;
    QuietLibrary& operator=(const QuietLibrary&) = delete;
};
