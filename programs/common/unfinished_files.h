#pragma once

#include <QByteArray>

#include <csignal>

/** Files in the making: Ctrl-C, SIGTERM, a lost terminal or pipe remove them and end the program then. */
namespace UnfinishedFiles
{
/** To be called once, at the start. */
void remove_at_signals();

/** Within a step. Gives what `forget` takes; below 0 if there are too many. */
int note(const QByteArray& path);
/** Within a step. */
void forget(int place);

/**
 * What no signal is to come between, within one thread or another: it waits until the step is over. If a
 * signal has come already, no step begins any more.
 */
class Step
{
public:
    Step();
    ~Step();
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;

private:
    sigset_t mask_before = {};
};
}  // namespace UnfinishedFiles
