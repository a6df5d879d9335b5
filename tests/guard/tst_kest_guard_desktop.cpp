#include "guard_bench.h"
#include "support/private_bus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace
{
/** The desktop's end: keeps what it is asked to show. */
class Desktop : public QDBusVirtualObject
{
public:
    QString introspect(const QString&) const override
    {
        return {};
    }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        if (message.member() != "Notify")
            return false;
        shown << message.arguments();
        return connection.send(message.createReply(1U));
    }

    QList<QVariantList> shown;
};

/** A desktop on a bus of its own. */
struct Session
{
    Session() : connection(QDBusConnection::connectToBus(bus.address, NAME))
    {
        ready = connection.registerVirtualObject("/org/freedesktop/Notifications", &desktop) &&
                connection.registerService("org.freedesktop.Notifications");
    }
    ~Session()
    {
        QDBusConnection::disconnectFromBus(NAME);
    }
    bool is_shown_something() const
    {
        return QTest::qWaitFor([this] { return !desktop.shown.isEmpty(); }, PATIENCE_MS);
    }

    static constexpr const char* NAME = "desktop";
    const PrivateBus bus;
    Desktop desktop;
    QDBusConnection connection;
    bool ready = false;
};
}  // namespace

/** What the desktop is told. */
class KestGuardDesktopTest : public QObject
{
    Q_OBJECT

private slots:
    void the_morning_finds_a_notice();
    void who_starts_the_program_too_early_is_told();
    void a_bus_that_does_not_answer_holds_nobody_up();
};

void KestGuardDesktopTest::the_morning_finds_a_notice()
{
    const Session session;
    QVERIFY(session.ready);
    GuardBench bench;
    bench.environment.insert("DBUS_SESSION_BUS_ADDRESS", session.bus.address);
    const QByteArray port = bench.add_instrument({"--capacity", "100000", "--rate", "4"}).port();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    bench.kill_program();
    QVERIFY(session.is_shown_something());
    QVERIFY(bench.ends_with(128 + SIGKILL));
    QCOMPARE(session.desktop.shown.size(), 1);
    const QVariantList notice = session.desktop.shown.first();
    QCOMPARE(notice.size(), 8);
    QCOMPARE(notice[0].toString(), QString("Kest Battery Tester"));
    const QRegularExpression headline(
        "^guarded-program, \\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d: All is off\\.$");
    QVERIFY2(headline.match(notice[3].toString()).hasMatch(), qPrintable(notice[3].toString()));
    QCOMPARE(QString(without_haste(notice[4].toString().toUtf8())),
             QString("guarded-program was killed (signal 9: by somebody, or by the system because "
                     "memory ran out) while it held %1. Switching off what is there.\n"
                     "Instrument 7 on %1 is off: 22.32 V, 0.0 A.")
                 .arg(QString(port)));
    QCOMPARE(notice[7].toInt(), 0);
}

void KestGuardDesktopTest::who_starts_the_program_too_early_is_told()
{
    const Session session;
    QVERIFY(session.ready);
    SwitchingBench first;
    QVERIFY(first.begin());
    GuardBench second;
    second.environment = first.environment;
    second.environment.insert("DBUS_SESSION_BUS_ADDRESS", session.bus.address);
    second.start_with({"--", guarded_program()});
    QVERIFY(session.is_shown_something());
    const QString text = session.desktop.shown.first().value(4).toString();
    QVERIFY2(text.startsWith("Another kest-guard is still switching instruments off; the program "
                             "starts when it is done."),
             qPrintable(text));
    second.signal_guard(SIGTERM);
    QVERIFY(second.ends_with(128 + SIGTERM));
    first.instruments[0]->set_fault("clear");
    QVERIFY2(first.ends_all_off(), first.said);
}

void KestGuardDesktopTest::a_bus_that_does_not_answer_holds_nobody_up()
{
    GuardBench bench;
    const QByteArray path = QFile::encodeName(bench.folder.filePath("silent-bus"));
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
    QCOMPARE(::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    QCOMPARE(::listen(listener, 5), 0);
    bench.environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + path);
    Instrument& instrument = bench.add_instrument();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    bench.kill_program();
    QVERIFY(bench.ends_with(128 + SIGKILL));
    QVERIFY(bench.said.endsWith("kest-guard: All is off.\n"));
    QCOMPARE(instrument.state(), 'O');
    ::close(listener);
}

KEST_GUARD_TEST(KestGuardDesktopTest)
#include "tst_kest_guard_desktop.moc"
