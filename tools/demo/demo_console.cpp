#include "demo/demo_console.h"

#include "common/console.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

DemoConsole::DemoConsole(const QString& file)
{
    std::fflush(stdout);
    const int target = ::open(QFile::encodeName(file).constData(),
                              O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (target < 0)
        return;
    terminal = ::fdopen(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0), "w");
    ::dup2(target, STDOUT_FILENO);
    ::close(target);
}

DemoConsole::~DemoConsole()
{
    if (terminal == nullptr)
        return;
    std::fflush(stdout);
    ::dup2(::fileno(terminal), STDOUT_FILENO);
    std::fclose(terminal);
}

void DemoConsole::tell(const QString& text) const
{
    if (terminal == nullptr) {
        print_to_console(text);
        return;
    }
    std::fputs(qPrintable(text), terminal);
    std::fflush(terminal);
}
