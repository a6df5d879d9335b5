#include "support/private_bus.h"

namespace
{
constexpr int PATIENCE_MS = 60000;
}

PrivateBus::PrivateBus()
{
    daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
    while (!daemon.canReadLine() && daemon.waitForReadyRead(PATIENCE_MS)) {
    }
    address = daemon.readLine().trimmed();
}

PrivateBus::~PrivateBus()
{
    daemon.terminate();
    daemon.waitForFinished(PATIENCE_MS);
}
