#pragma once

/**
 * Has every instrument commanded off when a Wayland desktop dies: the toolkit then says so and ends the
 * process at once, without the steps of exit().
 */
void command_off_at_the_end_of_wayland();
