#include "support/test_files.h"
#include "support/test_program.h"
#include "watch_process.h"
#include "web_hook.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

/** Both buses are there and say nothing for ever: messages take their other ways all the same. */
class WatchSilentBusTest : public QObject
{
    Q_OBJECT

private slots:
    void a_bus_that_says_nothing_keeps_nobody_waiting();
};

namespace
{
constexpr int PATIENCE_MS = 120000;

/** It takes every caller and says nothing. */
class SilentBus
{
public:
    SilentBus()
    {
        sockaddr_un name = {};
        name.sun_family = AF_UNIX;
        qstrncpy(name.sun_path, QFile::encodeName(path()).constData(), sizeof name.sun_path);
        listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        if (::bind(listener, reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0 ||
            ::listen(listener, 100) != 0)
            qFatal("No socket.");
    }
    ~SilentBus()
    {
        for (const int caller : callers)
            ::close(caller);
        ::close(listener);
    }
    SilentBus(const SilentBus&) = delete;
    SilentBus& operator=(const SilentBus&) = delete;

    QString path() const
    {
        return folder.filePath("bus");
    }
    /** Whether somebody waits for an answer at this moment. */
    bool keeps_somebody_waiting()
    {
        for (;;) {
            const int caller = ::accept4(listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
            if (caller < 0)
                break;
            callers << caller;
        }
        return std::any_of(callers.begin(), callers.end(), still_waits);
    }

private:
    /** Nobody waits who has hung up: then there is an end behind what was said. */
    static bool still_waits(int caller)
    {
        char words[256];
        ssize_t count = 0;
        do
            count = ::read(caller, words, sizeof words);
        while (count > 0);
        return count < 0;
    }

    QTemporaryDir folder;
    QList<int> callers;
    int listener = -1;
};
}  // namespace

void WatchSilentBusTest::a_bus_that_says_nothing_keeps_nobody_waiting()
{
    SilentBus session;
    SilentBus system;
    const QTemporaryDir logs;
    WatchProcess watch;
    watch.environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + session.path());
    watch.environment.insert("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + system.path());
    QFile log(logs.filePath("pack.csv"));
    QVERIFY(log.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    log.write("Kestrometer Log\nBattery Name:  Pack\nCharge Number:               1\n"
              "Timestamp:                   2020-04-03 09:15:02\nTime (s),Voltage (V)\n");
    const QString time = QDateTime::currentDateTime().addSecs(-10).toString("yyyy-MM-dd hh:mm:ss ");
    const QString change = "Switching to phase Ready for 1st Discharge because x\n";
    QVERIFY(write_file(logs.filePath("pack.txt"), (time + change).toLatin1()));
    WebHook hook({"200"});
    QVERIFY(watch.start({"--post", hook.url("/bench"), logs.path()}));
    QVERIFY(watch.tells("begins waits-for-operator pack.csv"));
    QVERIFY(QTest::qWaitFor([&] { return !hook.requests.isEmpty(); }, PATIENCE_MS));
    QVERIFY(session.keeps_somebody_waiting() || system.keeps_somebody_waiting());
    QCOMPARE(watch.end(), 0);
}

KEST_GUILESS_TEST(WatchSilentBusTest)
#include "tst_watch_silent_bus.moc"
