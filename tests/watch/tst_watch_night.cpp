#include "mock_service.h"
#include "support/private_bus.h"
#include "support/test_program.h"
#include "watch_process.h"

#include <QDir>
#include <QtTest>

#include <memory>
#include <vector>

/** A night with three stations, and all that is told of it. */
class WatchNightTest : public QObject
{
    Q_OBJECT

private slots:
    void a_night_is_watched_through();
};

namespace
{
constexpr int PATIENCE_MS = 300000;
const char* const SPEED = "360";
const QString NOTHING = "(nothing)";
const QString NOTICES = "org.freedesktop.Notifications";
const QString LOGIND = "org.freedesktop.login1";

/** Whose lines are read as they come. */
class Talker
{
public:
    void start(const QString& program, const QStringList& arguments)
    {
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(program, arguments);
    }
    ~Talker()
    {
        kill();
    }
    void kill()
    {
        process.kill();
        process.waitForFinished(PATIENCE_MS);
    }
    /** Passes over what the application says to nobody. */
    bool says(const QString& word)
    {
        QString said = line();
        while (said != word && said != NOTHING)
            said = line();
        return said == word;
    }
    QString line()
    {
        while (!process.canReadLine())
            if (!process.waitForReadyRead(PATIENCE_MS))
                return NOTHING;
        return QString::fromLocal8Bit(process.readLine()).trimmed();
    }

    QProcess process;
};

/** The application with three instruments, each in a process of its own. */
class Shop
{
public:
    explicit Shop(const QString& logs)
    {
        QStringList ports;
        for (int i = 0; i < 3; ++i) {
            simulators.push_back(std::make_unique<Talker>());
            simulators.back()->start(KEST_SIMULATOR, {"--id", QString::number(7 + i), "--speed",
                                                      SPEED, "--exit-with-stdin"});
            ports << simulators.back()->line().mid(QString("/dev/").size());
        }
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", home.path());
        environment.insert("XDG_DATA_HOME", home.path());
        application.process.setProcessEnvironment(environment);
        application.start(NIGHT_PROGRAM, QStringList{logs, SPEED} + ports);
        is_ready = application.says("ready");
    }
    bool press(const QByteArray& button_and_station)
    {
        application.process.write(button_and_station + "\n");
        return application.says("pressed");
    }

    QTemporaryDir home;
    std::vector<std::unique_ptr<Talker>> simulators;
    Talker application;
    bool is_ready = false;
};

struct Services
{
    Services()
        : desktop(session.address, {"--template", "notification_daemon"}, NOTICES,
                  "/org/freedesktop/Notifications"),
          logind(system.address, {"--template", "logind"}, LOGIND, "/org/freedesktop/login1")
    {
    }
    bool awake_comes_to(bool kept) const
    {
        return QTest::qWaitFor(
            [&] { return logind.rows(LOGIND + ".Manager", "ListInhibitors") == (kept ? 1 : 0); },
            PATIENCE_MS);
    }
    /** The headlines, but for those of the machine, which may have troubles of its own. */
    QStringList notices() const
    {
        QStringList all;
        for (const QVariantList& call : desktop.calls("Notify"))
            if (call[3].toString().startsWith("Pack "))
                all << call[3].toString();
        return all;
    }

    PrivateBus session;
    PrivateBus system;
    MockService desktop;
    MockService logind;
};

const QStringList HEADLINES = {
    "Pack A 1: is done",
    "Pack B 2: waits for you",
    "Pack C 3: the instrument is silent",
    "Pack B 2: no longer waits",
    "Pack B 2: is done",
    "Pack A 1: was done and has been put away",
    "Pack B 2: was done and has been put away",
    "Pack C 3: the program is gone",
};
}  // namespace

void WatchNightTest::a_night_is_watched_through()
{
    const QTemporaryDir logs;
    const Services services;
    QVERIFY(services.desktop.runs());
    QVERIFY(services.logind.runs());
    Shop shop(logs.path());
    QVERIFY(shop.is_ready);
    WatchProcess watch;
    watch.environment.insert("DBUS_SESSION_BUS_ADDRESS", services.session.address);
    watch.environment.insert("DBUS_SYSTEM_BUS_ADDRESS", services.system.address);
    QVERIFY(watch.start({logs.path()}));
    QVERIFY(services.awake_comes_to(false));

    QVERIFY(shop.press("pbStartSkip 0"));
    QVERIFY(services.awake_comes_to(true));
    QVERIFY(watch.tells("begins done Pack A_1.csv"));
    QVERIFY(services.awake_comes_to(false));
    QVERIFY(shop.press("pbStartSkip 1"));
    QVERIFY(watch.tells("begins waits-for-operator Pack B_2.csv"));
    QVERIFY(services.awake_comes_to(true));
    QVERIFY(shop.press("pbStartSkip 2"));
    const QString third = QDir(logs.path()).filePath("Pack C_3.csv");
    // By its size: whoever reads a log makes it look like a preview.
    QVERIFY(QTest::qWaitFor([&] { return QFileInfo(third).size() > 5000; }, PATIENCE_MS));
    shop.simulators[2]->kill();
    QVERIFY(watch.tells("begins instrument-silent Pack C_3.csv"));

    // Somebody comes in the morning.
    QVERIFY(shop.press("pbStartSkip 1"));
    QVERIFY(watch.tells("over waits-for-operator Pack B_2.csv"));
    QVERIFY(watch.tells("begins done Pack B_2.csv"));
    QVERIFY(services.awake_comes_to(true));
    QVERIFY(shop.press("pbNewTest 0"));
    QVERIFY(watch.tells("begins ended Pack A_1.csv"));
    shop.application.kill();
    QVERIFY(watch.tells("begins program-gone Pack C_3.csv"));
    QVERIFY(services.awake_comes_to(false));

    QStringList told;
    for (const QJsonObject& event : watch.told()) {
        told << event["title"].toString();
        qInfo("%s\n%s\n", qPrintable(event["title"].toString()),
              qPrintable(event["message"].toString()));
    }
    QCOMPARE(told, HEADLINES);
    QVERIFY(QTest::qWaitFor([&] { return services.notices().size() == HEADLINES.size(); },
                            PATIENCE_MS));
    QCOMPARE(services.notices(), HEADLINES);
    // That the silent instrument stays on the desktop is over with the program.
    QVERIFY(QTest::qWaitFor([&] { return services.desktop.calls("CloseNotification").size() == 3; },
                            PATIENCE_MS));
    QCOMPARE(watch.end(), 0);
    QCOMPARE(watch.complaints(), QByteArray());
}

KEST_GUILESS_TEST(WatchNightTest)
#include "tst_watch_night.moc"
