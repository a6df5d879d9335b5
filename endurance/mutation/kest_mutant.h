#pragma once

#include <cstdlib>

/** Whether the environment's KEST_MUTANT has chosen this change, read once. */
inline bool kest_mutant(int number)
{
    static const int chosen = [] {
        const char* const text = std::getenv("KEST_MUTANT");
        return text != nullptr ? std::atoi(text) : 0;
    }();
    return number == chosen;
}
