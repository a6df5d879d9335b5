#pragma once

/** Lets Time::now() run `speed` times as fast from now on, starting at the present time. */
void start_time_lapse(double speed);
