#pragma once

/**
 * From now on an end of the process by exit() first commands off the instrument at this open line: the
 * toolkit ends so when its display dies, and nobody's destructor runs then.
 *
 * Forget a line before its descriptor is closed, or what is opened next would get the byte.
 */
void command_off_at_exit(int line);
void forget_at_exit(int line);

/** What exit() does first, for whoever learns of an end without it. */
void command_all_off();
