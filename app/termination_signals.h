#pragma once

class QCoreApplication;

/**
 * Lets what ends a program from outside (Ctrl-C, the end of the session, a terminal that goes) close it
 * as its window's button does: the tests end, and every instrument is commanded off. Otherwise packs
 * would be charged on with nobody watching. A second signal of the same kind ends it at once; one that
 * was ignored before, as under nohup, still is.
 */
void close_on_termination_signals(QCoreApplication& application);
