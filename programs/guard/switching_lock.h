#pragma once

#include <QString>

/**
 * Held by every guard that is switching off, many at a time: who wants to start a program waits for them.
 *
 * The lock is on a folder that is there anyway. It leaves no file, and goes with the process.
 */
class SwitchingLock
{
public:
    explicit SwitchingLock(const QString& lock_folder);
    ~SwitchingLock();
    SwitchingLock(const SwitchingLock&) = delete;
    SwitchingLock& operator=(const SwitchingLock&) = delete;

    /** From now until release() this guard is switching off. */
    void hold();
    void release();
    /** Whether another guard of this user is switching off now. */
    bool is_held_by_another() const;

private:
    int open_folder() const;

    QString folder;
    int held = -1;
};
