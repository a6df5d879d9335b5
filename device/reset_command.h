#pragma once

#include <QByteArray>

/** Gets an instrument out of its bootloader and restarts it; to be sent in one write. */
inline const QByteArray RESET_COMMAND("UUUUUU\0\0\0\4", 10);
