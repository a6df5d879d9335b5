#pragma once

#include <QByteArray>
#include <QProcess>

/** A message bus of one test alone. */
class PrivateBus
{
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    QByteArray address;  ///< empty if there is none

private:
    QProcess daemon;
};
