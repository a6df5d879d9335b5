#include "support/console_capture.h"

#include <cstdio>
#include <unistd.h>

ConsoleCapture::ConsoleCapture()
{
    std::fflush(stdout);
    if (!file.open())
        qFatal("no temporary file to be had");
    real_output = ::dup(STDOUT_FILENO);
    ::dup2(file.handle(), STDOUT_FILENO);
}

ConsoleCapture::~ConsoleCapture()
{
    std::fflush(stdout);
    ::dup2(real_output, STDOUT_FILENO);
    ::close(real_output);
}

QByteArray ConsoleCapture::text()
{
    QFile reader(file.fileName());
    return reader.open(QIODevice::ReadOnly) ? reader.readAll() : QByteArray();
}
