#include "programs/common/signal_reader.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

SignalReader::SignalReader(int descriptor) : notifier(descriptor, QSocketNotifier::Read)
{
    connect(&notifier, &QSocketNotifier::activated, this, &SignalReader::read_all);
}

void SignalReader::read_all()
{
    signalfd_siginfo info = {};
    while (::read(int(notifier.socket()), &info, sizeof info) == ssize_t(sizeof info))
        emit sig_signal(int(info.ssi_signo), info.ssi_code == SI_KERNEL);
}
