#include "programs/common/terminal.h"

#include <QCoreApplication>

#include <cerrno>
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

QString shown(QString text)
{
    for (QChar& character : text)
        // Two of these make a character beyond the first 65,536.
        if (!character.isPrint() && !character.isSurrogate())
            character = QChar(QChar::ReplacementCharacter);
    return text;
}

void tell(const QString& text)
{
    const QByteArray line =
        (QCoreApplication::applicationName() + ": " + text + "\n").toLocal8Bit();
    tell_bytes(line);
}

// Past the stream of the C library, which a library may have to itself at that moment.
void tell_bytes(const QByteArray& bytes)
{
    const char* at = bytes.constData();
    const char* const end = at + bytes.size();
    while (at < end) {
        const ssize_t count = ::write(STDERR_FILENO, at, size_t(end - at));
        if (count <= 0 && errno != EINTR)
            return;
        at += qMax(count, ssize_t(0));
    }
}

bool put(const QString& text)
{
    const QByteArray bytes = text.toLocal8Bit();
    return std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout) ==
               size_t(bytes.size()) &&
           std::fflush(stdout) == 0;
}
