#include "mock_service.h"
#include "support/private_bus.h"
#include "support/test_program.h"
#include "watch/tells/event_text.h"
#include "watch/tells/sleep_inhibitor.h"
#include "watch/tells/ways.h"
#include "watch_events.h"

#include <QDBusArgument>
#include <QtTest>

/** The desktop's notices and the computer's sleep, with services on buses of this class alone. */
class WatchDesktopTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void a_notice_is_whole_and_harmless();
    void what_is_urgent_stays_until_it_is_over();
    void the_end_of_a_test_takes_its_notices_away();
    void another_log_gets_a_notice_of_its_own();
    void without_a_desktop_it_is_tried_later();
    void the_computer_stays_awake_while_a_test_runs();
    void a_refusal_is_told_once();
    void what_was_refused_is_asked_for_again();
    void what_is_granted_too_late_is_let_go();

private:
    const PrivateBus session;
    const PrivateBus system;
};

namespace
{
constexpr int PATIENCE_MS = 60000;
const QString NOTICES = "org.freedesktop.Notifications";
const QString LOGIND = "org.freedesktop.login1";

/** A desktop, as dbusmock has one. */
class Notices : public MockService
{
public:
    explicit Notices(const PrivateBus& bus)
        : MockService(bus.address, {"--template", "notification_daemon"}, NOTICES,
                      "/org/freedesktop/Notifications")
    {
    }
};

class Logind : public MockService
{
public:
    explicit Logind(const PrivateBus& bus)
        : MockService(bus.address, {"--template", "logind"}, LOGIND, "/org/freedesktop/login1")
    {
    }
    bool comes_to(int locks) const
    {
        return QTest::qWaitFor([&] { return rows(LOGIND + ".Manager", "ListInhibitors") == locks; },
                               PATIENCE_MS);
    }
};

QString sent(const Way& way, const Event& event)
{
    QString answer;
    way.send(event, [&](Arrival arrival, const QString& reason) {
        answer = arrival == Arrival::Arrived ? "arrived" : reason;
    });
    return QTest::qWaitFor([&] { return !answer.isEmpty(); }, PATIENCE_MS) ? answer : "no answer";
}

/** "NUMBER REPLACES URGENCY EXPIRES" of each notice that was asked for. */
QStringList manners(const MockService& desktop)
{
    QStringList all;
    for (const QVariantList& call : desktop.calls("Notify")) {
        const QVariantMap hints = qdbus_cast<QVariantMap>(call[6]);
        all << QString("replaces %1, urgency %2, %3")
                   .arg(call[1].toUInt())
                   .arg(hints["urgency"].toUInt())
                   .arg(call[7].toInt());
    }
    return all;
}
}  // namespace

void WatchDesktopTest::initTestCase()
{
    QVERIFY(!session.address.isEmpty());
    QVERIFY(!system.address.isEmpty());
    // Before the first connection: the library looks there once.
    qputenv("DBUS_SESSION_BUS_ADDRESS", session.address);
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", system.address);
}

void WatchDesktopTest::a_notice_is_whole_and_harmless()
{
    const Notices desktop(session);
    QVERIFY(desktop.runs());
    QObject owner;
    const Way way = desktop_way(&owner);
    for (const HostileName& hostile : hostile_names()) {
        const Event event = event_named(hostile.name);
        QCOMPARE(sent(way, event), QString("arrived"));
        const QVariantList call = desktop.calls("Notify").last();
        QCOMPARE(call.size(), 8);
        QCOMPARE(call[0].toString(), QString("Kest Battery Tester"));
        QCOMPARE(call[2].toString(), QString("kest-battery-tester"));
        QCOMPARE(call[3].toString(), title_of(event));
        QCOMPARE(call[4].toString(), message_of(event).toHtmlEscaped());
    }
}

void WatchDesktopTest::what_is_urgent_stays_until_it_is_over()
{
    const Notices desktop(session);
    QVERIFY(desktop.runs());
    QObject owner;
    const Way way = desktop_way(&owner);
    for (const Change change : {Change::Begins, Change::Lasts, Change::Over, Change::Begins})
        QCOMPARE(sent(way, event_of_condition(Condition::DiskFull, change)), QString("arrived"));
    QCOMPARE(manners(desktop),
             QStringList({"replaces 0, urgency 2, 0", "replaces 1, urgency 2, 0",
                          "replaces 1, urgency 1, -1", "replaces 0, urgency 2, 0"}));
}

void WatchDesktopTest::the_end_of_a_test_takes_its_notices_away()
{
    const Notices desktop(session);
    QVERIFY(desktop.runs());
    QObject owner;
    const Way way = desktop_way(&owner);
    Event other = event_of_condition(Condition::InstrumentSilent);
    other.situation.log = "/logs/other.csv";
    QCOMPARE(sent(way, other), QString("arrived"));
    QCOMPARE(sent(way, event_of_condition(Condition::InstrumentSilent)), QString("arrived"));
    QCOMPARE(sent(way, event_of_condition(Condition::ProgramGone)), QString("arrived"));
    QVERIFY(QTest::qWaitFor([&] { return desktop.calls("CloseNotification").size() == 1; },
                            PATIENCE_MS));
    QCOMPARE(desktop.calls("CloseNotification").first(), QVariantList({2U}));
}

void WatchDesktopTest::another_log_gets_a_notice_of_its_own()
{
    const Notices desktop(session);
    QVERIFY(desktop.runs());
    QObject owner;
    const Way way = desktop_way(&owner);
    Event other = event_of_condition(Condition::Done);
    other.situation.log = "/logs/other.csv";
    QCOMPARE(sent(way, event_of_condition(Condition::Done)), QString("arrived"));
    QCOMPARE(sent(way, other), QString("arrived"));
    QCOMPARE(sent(way, event_of_condition(Condition::Done, Change::Lasts)), QString("arrived"));
    QCOMPARE(manners(desktop),
             QStringList({"replaces 0, urgency 1, -1", "replaces 0, urgency 1, -1",
                          "replaces 1, urgency 1, -1"}));
}

void WatchDesktopTest::without_a_desktop_it_is_tried_later()
{
    QObject owner;
    const Way way = desktop_way(&owner);
    const Event event = event_of_condition(Condition::Done);
    QVERIFY(sent(way, event).contains("org.freedesktop.Notifications"));
    {
        const Notices desktop(session);
        QVERIFY(desktop.runs());
        QCOMPARE(sent(way, event), QString("arrived"));
    }
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("XDG_RUNTIME_DIR");
    QCOMPARE(sent(way, event), QString("there is no desktop session"));
    qputenv("DBUS_SESSION_BUS_ADDRESS", session.address);
}

void WatchDesktopTest::the_computer_stays_awake_while_a_test_runs()
{
    const Logind logind(system);
    QVERIFY(logind.runs());
    SleepInhibitor inhibitor;
    QSignalSpy held(&inhibitor, &SleepInhibitor::sig_held);
    for (int time = 1; time <= 2; ++time) {
        inhibitor.set_needed(true);
        inhibitor.set_needed(true);
        QVERIFY(QTest::qWaitFor([&] { return held.size() == time; }, PATIENCE_MS));
        QVERIFY(logind.comes_to(1));
        inhibitor.set_needed(true);
        QVERIFY(inhibitor.holds());
        inhibitor.set_needed(false);
        QVERIFY(!inhibitor.holds());
        QVERIFY(logind.comes_to(0));
    }
    QCOMPARE(held.size(), 2);
}

void WatchDesktopTest::a_refusal_is_told_once()
{
    SleepInhibitor inhibitor;
    QSignalSpy refused(&inhibitor, &SleepInhibitor::sig_refused);
    inhibitor.set_needed(true);
    QVERIFY(QTest::qWaitFor([&] { return refused.size() == 1; }, PATIENCE_MS));
    QVERIFY(refused[0][0].toString().contains("org.freedesktop.login1"));
    inhibitor.set_needed(false);

    const MockService strict(system.address,
                             {LOGIND, "/org/freedesktop/login1", LOGIND + ".Manager"}, LOGIND,
                             "/org/freedesktop/login1");
    QVERIFY(strict.runs());
    const QString refusal = "raise dbus.exceptions.DBusException('Permission denied', "
                            "name='org.freedesktop.DBus.Error.AccessDenied')";
    QVERIFY(strict.arrange("AddMethod", {LOGIND + ".Manager", "Inhibit", "ssss", "h", refusal}));
    inhibitor.set_needed(true);
    QVERIFY(QTest::qWaitFor([&] { return !strict.calls("Inhibit").isEmpty(); }, PATIENCE_MS));
    QCOMPARE(strict.calls("Inhibit").first(), QVariantList({"sleep:idle", "Kest Battery Tester",
                                                            "A battery is being tested", "block"}));
    const auto asks_again = [&] {
        // Not as long as it waits for an answer.
        inhibitor.set_needed(false);
        inhibitor.set_needed(true);
        return strict.calls("Inhibit").size() > 1;
    };
    QVERIFY(QTest::qWaitFor(asks_again, PATIENCE_MS));
    QCOMPARE(refused.size(), 1);
    QVERIFY(!inhibitor.holds());
}

void WatchDesktopTest::what_was_refused_is_asked_for_again()
{
    SleepInhibitor inhibitor(0);
    QSignalSpy refused(&inhibitor, &SleepInhibitor::sig_refused);
    inhibitor.set_needed(true);
    QVERIFY(QTest::qWaitFor([&] { return refused.size() == 1; }, PATIENCE_MS));
    const Logind logind(system);
    QVERIFY(logind.runs());
    const auto is_held = [&] {
        inhibitor.set_needed(true);
        return inhibitor.holds();
    };
    QVERIFY(QTest::qWaitFor(is_held, PATIENCE_MS));
    QCOMPARE(refused.size(), 1);
    inhibitor.set_needed(false);
    QVERIFY(logind.comes_to(0));
}

void WatchDesktopTest::what_is_granted_too_late_is_let_go()
{
    const Logind logind(system);
    QVERIFY(logind.runs());
    SleepInhibitor inhibitor;
    QSignalSpy held(&inhibitor, &SleepInhibitor::sig_held);
    inhibitor.set_needed(true);
    // The test ended before the answer came.
    inhibitor.set_needed(false);
    SleepInhibitor other;
    QSignalSpy other_held(&other, &SleepInhibitor::sig_held);
    other.set_needed(true);
    QVERIFY(QTest::qWaitFor([&] { return other_held.size() == 1; }, PATIENCE_MS));
    QVERIFY(logind.comes_to(1));
    QVERIFY(!inhibitor.holds());
    QCOMPARE(held.size(), 0);
}

KEST_GUILESS_TEST(WatchDesktopTest)
#include "tst_watch_desktop.moc"
