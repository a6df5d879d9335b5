#include "programs/common/terminal.h"

#include <QCoreApplication>

#include <unistd.h>

namespace
{
bool takes_colour(std::FILE* stream)
{
    return ::isatty(::fileno(stream)) != 0 && qEnvironmentVariableIsEmpty("NO_COLOR") &&
           qgetenv("TERM") != "dumb";
}

const char* code_of(Colour colour)
{
    switch (colour) {
    case Colour::Plain:
        return "0";
    case Colour::Red:
        return "31";
    case Colour::Yellow:
        return "33";
    case Colour::Green:
        return "32";
    }
    return "0";
}
}  // namespace

QString coloured(const QString& text, Colour colour, std::FILE* stream)
{
    if (colour == Colour::Plain || !takes_colour(stream))
        return text;
    return QString("\x1b[%1m").arg(code_of(colour)) + text + "\x1b[0m";
}

void tell(const QString& text)
{
    const QByteArray line =
        (QCoreApplication::applicationName() + ": " + text + "\n").toLocal8Bit();
    std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
    std::fflush(stderr);
}

bool put(const QString& text)
{
    const QByteArray bytes = text.toLocal8Bit();
    return std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout) ==
               size_t(bytes.size()) &&
           std::fflush(stdout) == 0;
}
