#pragma once

/** How a program ends. */
enum ExitCode
{
    EXIT_GOOD = 0,
    EXIT_SOMETHING_TO_TELL = 1,
    EXIT_WRONG_ARGUMENTS = 2,
};
