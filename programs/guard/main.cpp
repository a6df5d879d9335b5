#include "guard/child_process.h"
#include "guard/desktop_notice.h"
#include "guard/guard.h"
#include "guard/guard_options.h"
#include "guard/off_run.h"

#include <QCoreApplication>
#include <QSerialPortInfo>

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace
{
constexpr int BAD_ARGUMENTS = 2;

/** Else a port would get the number of a standard stream, and what is meant for people would go there. */
void fill_standard_streams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) < 0)
            ::open("/dev/null", O_RDWR);
}

QStringList as_texts(const QByteArrayList& words)
{
    QStringList texts;
    for (const QByteArray& word : words)
        texts << QString::fromLocal8Bit(word);
    return texts;
}

QStringList ports_of_this_machine()
{
    QStringList ports;
    for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts())
        ports << port.systemLocation();
    return ports;
}

int run_guard(const GuardOptions& options, const QByteArrayList& words,
              const SignalHeritage& heritage)
{
    Guard guard(options, words.mid(words.size() - options.program_words), heritage);
    QTimer::singleShot(0, &guard, &Guard::start);
    return QCoreApplication::exec();
}

int run_off(const GuardOptions& options, const SignalHeritage& heritage)
{
    OffRun off(options, options.all ? ports_of_this_machine() : QStringList(), heritage.descriptor);
    QTimer::singleShot(0, &off, &OffRun::start);
    return QCoreApplication::exec();
}
}  // namespace

int main(int argc, char** argv)
{
    fill_standard_streams();
    // The program's words as they came: the toolkit takes those away that it knows.
    QByteArrayList words;
    for (int i = 0; i < argc; ++i)
        words << argv[i];
    if (argc == 4 && std::strcmp(argv[1], DESKTOP_NOTICE_OPTION) == 0) {
        const QCoreApplication application(argc, argv);
        return send_desktop_notice(QString::fromLocal8Bit(words[2]),
                                   QString::fromLocal8Bit(words[3]));
    }
    const SignalHeritage heritage;
    const QCoreApplication application(argc, argv);
    GuardOptions options;
    QString text;
    switch (read_guard_options(as_texts(words), options, text)) {
    case GuardStart::Tell:
        std::fputs(qPrintable(text), stdout);
        return 0;
    case GuardStart::Refuse:
        std::fprintf(stderr, "kest-guard: %s\n", qPrintable(text));
        return BAD_ARGUMENTS;
    case GuardStart::Run:
        break;
    }
    return options.off ? run_off(options, heritage) : run_guard(options, words, heritage);
}
