#pragma once

#include <QByteArrayList>
#include <QDateTime>
#include <QString>

#include <csignal>
#include <sys/types.h>

/** How a program ended. */
struct Ending
{
    bool well() const;
    /** The status that a shell would show: the program's own, or 128 and the signal. */
    int exit_status() const;

    int status = 0;
    int signal = 0;  ///< 0 if it ended by itself
};

/** Signals as they were before this process set them for itself: the program starts with these. */
class SignalHeritage
{
public:
    /** Keeps what is and sets what a guard needs; to be made first of all, and once. */
    SignalHeritage();
    void hand_on() const;
    /** Whether whoever started the guard wants this signal ignored. */
    bool is_ignored(int signal) const;

    /** Readable when one of the watched signals has come. */
    int descriptor = -1;

private:
    struct sigaction before[NSIG];
    sigset_t mask_before;
};

/** The program that is watched. */
class ChildProcess
{
public:
    /** Starts it, found in PATH; 0, or what the system has against it. argv[0] is the first word. */
    int start(const QByteArrayList& words, const SignalHeritage& heritage);
    bool is_running() const;
    /** True, once, when it has ended. */
    bool has_ended(Ending& ending);
    void send(int signal) const;
    /** How many bytes wait to be read behind its descriptor if that is this device; -1 if unknown. */
    int waiting_bytes(int descriptor, dev_t device) const;

    pid_t id = -1;  ///< stays when the program has ended
    QDateTime start_time;

private:
    bool running = false;
    int handle = -1;  ///< of the process, so that its number cannot come to mean another
};
