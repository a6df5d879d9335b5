#include "programs/common/output_file.h"
#include "program_run.h"
#include "programs/common/unfinished_files.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QtTest>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

/** Files that are there when they are whole, and several of them together or not at all. */
class OutputFileTest : public QObject
{
    Q_OBJECT

private slots:
    void a_signal_between_two_files_waits_for_the_second_data();
    void a_signal_between_two_files_waits_for_the_second();
    void a_signal_leaves_none_of_them_data();
    void a_signal_leaves_none_of_them();
    void a_signal_that_was_ignored_stays_so();
    void a_file_beyond_the_limit_is_an_error();
    void the_first_goes_if_the_second_finds_no_place();
    void a_name_may_be_as_long_as_the_system_allows();
};

namespace
{
bool signal_behind_each_rename = false;
}

/** In place of the C library's `renameat2`: for a signal just behind the first of two. */
extern "C" int rename_as_told(int from_folder, const char* from, int to_folder, const char* to,
                              unsigned int flags) __asm__("renameat2");

int rename_as_told(int from_folder, const char* from, int to_folder, const char* to,
                   unsigned int flags)
{
    const long result = ::syscall(SYS_renameat2, from_folder, from, to_folder, to, flags);
    if (signal_behind_each_rename)
        ::kill(::getpid(), SIGTERM);
    return int(result);
}

namespace
{
/** The signal that ended a process of its own in which `work` was done; 0 if none did. */
template <typename Work> int signal_that_ends(Work work)
{
    const pid_t child = ::fork();
    if (child == 0) {
        UnfinishedFiles::remove_at_signals();
        work();
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

/** Sleeps until the process ends. */
void wait_for_the_end()
{
    for (;;)
        ::pause();
}
}  // namespace

void OutputFileTest::a_signal_between_two_files_waits_for_the_second_data()
{
    QTest::addColumn<bool>("in_another_thread");
    QTest::newRow("in the thread that makes them") << false;
    QTest::newRow("in another thread") << true;
}

void OutputFileTest::a_signal_between_two_files_waits_for_the_second()
{
    QFETCH(bool, in_another_thread);
    const Place place;
    const int number = signal_that_ends([&] {
        if (in_another_thread)
            std::thread(wait_for_the_end).detach();
        OutputFile first(place.path("a"), false);
        OutputFile second(place.path("b"), false);
        first.open();
        second.open();
        signal_behind_each_rename = true;
        OutputFile::commit_together({&first, &second});
        wait_for_the_end();
    });
    QCOMPARE(number, SIGTERM);
    QCOMPARE(place.names(), (QStringList{"a", "b"}));
}

void OutputFileTest::a_signal_leaves_none_of_them_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("a terminal that is gone") << SIGHUP;
    QTest::newRow("nobody who reads on") << SIGPIPE;
}

void OutputFileTest::a_signal_leaves_none_of_them()
{
    QFETCH(int, number);
    const Place place;
    const int ended_by = signal_that_ends([&] {
        OutputFile first(place.path("a"), false);
        OutputFile second(place.path("b"), false);
        first.open();
        second.open();
        ::raise(number);
    });
    QCOMPARE(ended_by, number);
    QCOMPARE(place.names(), QStringList());
}

void OutputFileTest::a_signal_that_was_ignored_stays_so()
{
    std::signal(SIGHUP, SIG_IGN);
    const int ended_by = signal_that_ends([] { ::raise(SIGHUP); });
    std::signal(SIGHUP, SIG_DFL);
    QCOMPARE(ended_by, 0);
}

void OutputFileTest::a_file_beyond_the_limit_is_an_error()
{
    const Place place;
    const int ended_by = signal_that_ends([&] {
        const rlimit limit = {1000, 1000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        OutputFile file(place.path("a"), false);
        file.open();
        file.write(QByteArray(2000, 'x'));
        if (file.commit() || !file.error().contains("File too large"))
            ::abort();
    });
    QCOMPARE(ended_by, 0);
    QCOMPARE(place.names(), QStringList());
}

void OutputFileTest::the_first_goes_if_the_second_finds_no_place()
{
    const Place place;
    OutputFile first(place.path("a"), false);
    OutputFile second(place.path("b"), false);
    QVERIFY(first.open() && second.open());
    place.write("b", "mine");
    QCOMPARE(OutputFile::commit_together({&first, &second}), &second);
    QCOMPARE(second.error(), place.path("b") + " cannot be put in its place: File exists.");
    QVERIFY(!QFile::exists(place.path("a")));
    QCOMPARE(content_of(place.path("b")), QByteArray("mine"));
}

void OutputFileTest::a_name_may_be_as_long_as_the_system_allows()
{
    const Place place;
    const QString name(85, QChar(0x96fb));  // 255 bytes
    OutputFile file(place.path(name), false);
    QVERIFY2(file.open() && file.commit(), qPrintable(file.error()));
    QCOMPARE(place.names(), QStringList{name});
}

KEST_GUILESS_TEST(OutputFileTest)
#include "tst_output_file.moc"
