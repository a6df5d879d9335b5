#include "programs/common/progress.h"
#include "support/test_program.h"

#include <QtTest>

#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

/** What people see of long work. */
class ProgressTest : public QObject
{
    Q_OBJECT

private slots:
    void a_terminal_is_shown_how_far_the_work_is();
    void a_pipe_is_shown_nothing();
};

namespace
{
/** Standard error in other hands while this lives. */
class Redirection
{
public:
    explicit Redirection(int to) : kept(::dup(STDERR_FILENO))
    {
        ::dup2(to, STDERR_FILENO);
    }
    ~Redirection()
    {
        ::dup2(kept, STDERR_FILENO);
        ::close(kept);
    }

private:
    int kept;
};

/** Looks at these milliseconds, with a step at 1500 and at 3000. */
void work()
{
    qint64 time = 50;
    Progress progress(1000, [&time] { return time; });
    for (const qint64 elapsed : {500, 1000, 1001, 1200, 1500, 1600, 3000}) {
        time = 50 + elapsed;
        if (elapsed % 1500 == 0)
            progress.step();
        progress.look(elapsed * 1000000);
    }
}

/** All that comes until the other side is closed, as it must be by now. */
QByteArray all_bytes(int handle)
{
    QByteArray all;
    char bytes[1000];
    for (;;) {
        const ssize_t count = ::read(handle, bytes, sizeof bytes);
        if (count <= 0)
            return all;
        all.append(bytes, int(count));
    }
}
}  // namespace

void ProgressTest::a_terminal_is_shown_how_far_the_work_is()
{
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    QVERIFY(terminal >= 0 && ::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0);
    const int program_side = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY);
    QVERIFY(program_side >= 0);
    {
        const Redirection redirection(program_side);
        work();
    }
    ::close(program_side);
    QCOMPARE(all_bytes(terminal), QByteArray("0 of 1000, 1001 MB read\r\x1b[K"
                                             "1 of 1000, 1500 MB read\r\x1b[K"
                                             "2 of 1000, 3000 MB read\r\x1b[K"));
    ::close(terminal);
}

void ProgressTest::a_pipe_is_shown_nothing()
{
    int pipe[2] = {-1, -1};
    QCOMPARE(::pipe(pipe), 0);
    {
        const Redirection redirection(pipe[1]);
        work();
    }
    ::close(pipe[1]);
    QCOMPARE(all_bytes(pipe[0]), QByteArray());
    ::close(pipe[0]);
}

KEST_GUILESS_TEST(ProgressTest)
#include "tst_progress.moc"
