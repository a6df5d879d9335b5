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
}  // namespace

/** What the desktop is told. */
class KestGuardDesktopTest : public QObject
{
    Q_OBJECT

private slots:
    void the_morning_finds_a_notice();
    void a_bus_that_does_not_answer_holds_nobody_up();
};

void KestGuardDesktopTest::the_morning_finds_a_notice()
{
    const PrivateBus bus;
    QVERIFY(!bus.address.isEmpty());
    QDBusConnection connection = QDBusConnection::connectToBus(bus.address, "desktop");
    Desktop desktop;
    QVERIFY(connection.registerVirtualObject("/org/freedesktop/Notifications", &desktop));
    QVERIFY(connection.registerService("org.freedesktop.Notifications"));
    GuardBench bench;
    bench.environment.insert("DBUS_SESSION_BUS_ADDRESS", bus.address);
    const QByteArray port = bench.add_instrument({"--capacity", "100000"}).port();
    QVERIFY(bench.start());
    QVERIFY(bench.hold_all());
    bench.kill_program();
    QVERIFY(QTest::qWaitFor([&] { return !desktop.shown.isEmpty(); }, PATIENCE_MS));
    QVERIFY(bench.ends_with(128 + SIGKILL));
    QCOMPARE(desktop.shown.size(), 1);
    const QVariantList notice = desktop.shown.first();
    QCOMPARE(notice.size(), 8);
    QCOMPARE(notice[0].toString(), QString("Kest Battery Tester"));
    const QRegularExpression headline(
        "^guarded-program, \\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d: All is off\\.$");
    QVERIFY2(headline.match(notice[3].toString()).hasMatch(), qPrintable(notice[3].toString()));
    QCOMPARE(notice[4].toString(),
             QString("guarded-program was killed (signal 9: by somebody, or by the system because "
                     "memory ran out) while it held %1. Switching off what is there.\n"
                     "Instrument 7 on %1 is off: 22.32 V, 0.0 A.")
                 .arg(QString(port)));
    QCOMPARE(notice[7].toInt(), 0);
    QDBusConnection::disconnectFromBus("desktop");
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
