#pragma once

/** Tells that the library's own checks are compiled out. True always; nobody looks at it. */
bool test_library();

/**
 * Ends the process with status 0, after a message, when another copy is running.
 *
 * Nobody calls it, so that several copies can run at once; it stays for whoever wants the guard.
 */
void prevent_multiple_instances();
