#include "doctor/look.h"

#include "machine_tree.h"
#include "support/ordinary_user.h"
#include "support/settings_home.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include "config/settings.h"

#include <QDir>
#include <QFile>
#include <QtTest>

#include <unistd.h>

namespace
{
Seen seen_in(const MachineTree& tree)
{
    return look(FileView(tree.root()));
}
}  // namespace

/** What kest-doctor sees of ports and processes; the files of the machine lie in a folder. */
class DoctorLookAtPortsTest : public QObject
{
    Q_OBJECT

private slots:
    void an_adapter_and_its_port_are_read();
    void an_adapter_without_a_port_is_seen_data();
    void an_adapter_without_a_port_is_seen();
    void a_port_counts_if_something_is_behind_it_data();
    void a_port_counts_if_something_is_behind_it();
    void who_holds_a_port_is_seen_data();
    void who_holds_a_port_is_seen();
    void whoever_made_a_pseudo_terminal_does_not_hold_it();
    void udev_tells_what_is_left_alone_and_given_to_the_seat();
    void rights_are_those_of_the_user();
    void programs_are_known_by_their_command();
};

void DoctorLookAtPortsTest::an_adapter_and_its_port_are_read()
{
    const SettingsHome home;
    const MachineTree tree;
    tree.plug_in("0403:6001");
    tree.give_port("ttyUSB0", "/dev/null");
    const Seen seen = seen_in(tree);
    QCOMPARE(seen.ports.size(), 1);
    QCOMPARE(seen.adapters_without_port.size(), 0);
    const SeenPort& port = seen.ports[0];
    QCOMPARE(port.name, QString("ttyUSB0"));
    QVERIFY(port.has_node);
    QVERIFY(port.may_open);
    QVERIFY(!port.adapter.left_alone);
    QVERIFY(!port.given_to_the_seat);
    QVERIFY(!port.speech.listened);
    const SeenAdapter& adapter = port.adapter;
    QCOMPARE(QStringList({adapter.vendor_id, adapter.product_id, adapter.maker, adapter.product,
                          adapter.serial_number}),
             QStringList({"0403", "6001", "FTDI", "FT232R USB UART", "A50285BI"}));
    tree.remove("/dev/ttyUSB0");
    QVERIFY(!seen_in(tree).ports[0].has_node);
}

void DoctorLookAtPortsTest::an_adapter_without_a_port_is_seen_data()
{
    QTest::addColumn<QString>("ids");
    QTest::addColumn<QString>("driver");
    QTest::addColumn<bool>("seen");
    QTest::addColumn<bool>("claimed");
    QTest::newRow("FTDI, taken") << "0403:6001"
                                 << "../../../usbfs" << true << true;
    QTest::newRow("FTDI, a driver") << "0403:6015"
                                    << "../../../ftdi_sio" << true << false;
    QTest::newRow("CH340, nothing") << "1a86:7523"
                                    << "" << true << false;
    QTest::newRow("CH9102") << "1a86:55d4"
                            << "" << true << false;
    QTest::newRow("CP210x") << "10c4:ea60"
                            << "" << true << false;
    QTest::newRow("PL2303") << "067b:2303"
                            << "" << true << false;
    QTest::newRow("a mouse") << "046d:c077"
                             << "../../../usbhid" << false << false;
}

void DoctorLookAtPortsTest::an_adapter_without_a_port_is_seen()
{
    QFETCH(QString, ids);
    QFETCH(QString, driver);
    QFETCH(bool, seen);
    const SettingsHome home;
    const MachineTree tree;
    tree.plug_in(ids);
    if (!driver.isEmpty())
        tree.link("/sys/devices/pci0/usb1/1-4/1-4:1.0/driver", driver);
    const QList<SeenAdapter> adapters = seen_in(tree).adapters_without_port;
    QCOMPARE(adapters.size(), seen ? 1 : 0);
    if (seen)
        QTEST(adapters[0].claimed_by_program, "claimed");
}

void DoctorLookAtPortsTest::a_port_counts_if_something_is_behind_it_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<bool>("device");
    QTest::addColumn<bool>("counts");
    QTest::newRow("a chip") << "ttyS0" << QByteArray("4\n") << true << true;
    QTest::newRow("no chip") << "ttyS0" << QByteArray("0\n") << true << false;
    QTest::newRow("an adapter") << "ttyACM3" << QByteArray() << true << true;
    QTest::newRow("no device") << "ttyUSB0" << QByteArray() << false << false;
    QTest::newRow("a console") << "tty1" << QByteArray() << true << false;
    QTest::newRow("a printer") << "ttyprintk" << QByteArray() << true << false;
}

void DoctorLookAtPortsTest::a_port_counts_if_something_is_behind_it()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, type);
    QFETCH(bool, device);
    QFETCH(bool, counts);
    const SettingsHome home;
    const MachineTree tree;
    tree.put("/sys/class/tty/" + name + "/dev", "4:64\n");
    if (!type.isEmpty())
        tree.put("/sys/class/tty/" + name + "/type", type);
    if (device)
        tree.put("/sys/class/tty/" + name + "/device/uevent");
    const Seen seen = seen_in(tree);
    QCOMPARE(seen.ports.size(), counts ? 1 : 0);
    if (counts)
        QVERIFY(seen.ports[0].adapter.vendor_id.isEmpty());
}

void DoctorLookAtPortsTest::who_holds_a_port_is_seen_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QByteArray>("lock");
    QTest::addColumn<int>("pid");
    QTest::newRow("nobody") << "/dev/ttyUSB1" << QByteArray() << 0;
    QTest::newRow("by what it has open") << "/dev/ttyUSB0" << QByteArray() << 4242;
    QTest::newRow("by its lock file") << "" << QByteArray("      4242\n") << 4242;
    QTest::newRow("by a lock file with more in it")
        << "" << QByteArray("4242\nminicom\nbench\n") << 4242;
    QTest::newRow("a lock file of the dead") << "" << QByteArray("99\n") << 0;
}

void DoctorLookAtPortsTest::who_holds_a_port_is_seen()
{
    QFETCH(QString, device);
    QFETCH(QByteArray, lock);
    QFETCH(int, pid);
    const SettingsHome home;
    const MachineTree tree;
    tree.plug_in("0403:6001");
    tree.give_port("ttyUSB0", "/dev/null");
    tree.run(4242, "/usr/bin/minicom");
    tree.link("/proc/4242/fd/0", "/dev/null");
    if (!device.isEmpty())
        tree.link("/proc/4242/fd/7", device);
    if (!lock.isEmpty())
        tree.put("/run/lock/LCK..ttyUSB0", lock);
    const QList<SeenProcess> holders = seen_in(tree).ports[0].holders;
    QCOMPARE(holders.size(), pid == 0 ? 0 : 1);
    if (pid == 0)
        return;
    QCOMPARE(holders[0].pid, pid);
    QCOMPARE(holders[0].program, QString("minicom"));
}

void DoctorLookAtPortsTest::whoever_made_a_pseudo_terminal_does_not_hold_it()
{
    const MachineTree tree;
    tree.run(7, "kest-simulator");
    tree.link("/proc/7/fd/5", "/dev/ptmx");
    tree.link("/proc/7/fd/6", "/dev/pts/3");
    tree.link("/proc/7/fd/8", "/dev/ttyUSB0");
    tree.run(8, "reader");
    tree.link("/proc/8/fd/6", "/dev/pts/4");
    const Processes processes{FileView(tree.root())};
    QCOMPARE(processes.holders_of("/dev/pts/3").size(), 0);
    QCOMPARE(processes.holders_of("/dev/pts/4").size(), 1);
    QCOMPARE(processes.holders_of("/dev/ttyUSB0").size(), 1);
}

void DoctorLookAtPortsTest::udev_tells_what_is_left_alone_and_given_to_the_seat()
{
    const SettingsHome home;
    const MachineTree tree;
    tree.plug_in("0403:6001");
    tree.give_port("ttyUSB0", "/dev/null");
    tree.put("/run/udev/data/c188:0", "E:ID_MM_CANDIDATE=1\nG:uaccess\nG:systemd\n");
    QVERIFY(seen_in(tree).ports[0].given_to_the_seat);
    QVERIFY(!seen_in(tree).ports[0].adapter.left_alone);
    tree.put("/run/udev/data/c189:3", "E:ID_MM_DEVICE_IGNORE=1\n");
    QVERIFY(seen_in(tree).ports[0].adapter.left_alone);
    tree.put("/run/udev/data/c189:3", "E:ID_MM_DEVICE_IGNORE=0\n");
    QVERIFY(!seen_in(tree).ports[0].adapter.left_alone);
    tree.put("/run/udev/data/c188:0", "E:ID_MM_PORT_IGNORE=1\n");
    QVERIFY(seen_in(tree).ports[0].adapter.left_alone);
    QVERIFY(!seen_in(tree).ports[0].given_to_the_seat);
}

void DoctorLookAtPortsTest::rights_are_those_of_the_user()
{
    const OrdinaryUser user;
    QVERIFY(user.active());
    const SettingsHome home;
    const MachineTree tree;
    tree.plug_in("0403:6001");
    // A file of root and of a group that no user is in.
    tree.give_port("ttyUSB0", "/etc/shadow");
    const SeenPort foreign = seen_in(tree).ports[0];
    QVERIFY(foreign.has_node);
    QVERIFY(!foreign.may_open);
    QCOMPARE(foreign.group, QString("shadow"));
    QVERIFY(!foreign.session_in_group);

    tree.put("/dev/own");
    tree.give_port("ttyUSB0", "own");
    QVERIFY(seen_in(tree).ports[0].may_open);
    QVERIFY(QFile::setPermissions(tree.root() + "/dev/own", QFile::ReadOwner));
    const SeenPort own = seen_in(tree).ports[0];
    QVERIFY(!own.may_open);
    QVERIFY(own.session_in_group);
}

void DoctorLookAtPortsTest::programs_are_known_by_their_command()
{
    const SettingsHome home;
    const MachineTree tree;
    tree.run(11, "/usr/sbin/ModemManager");
    tree.run(12, "/usr/bin/kest-battery-tester");
    tree.run(13, "kest-battery-tester");
    tree.run(14, "kest-guard");
    const Seen seen = seen_in(tree);
    QVERIFY(seen.modem_manager);
    QVERIFY(!seen.brltty);
    QCOMPARE(seen.copies.size(), 2);
    tree.run(15, "/usr/bin/brltty");
    QVERIFY(seen_in(tree).brltty);
    QVERIFY(!seen_in(tree).brltty_is_a_service);
    tree.link("/etc/systemd/system/sysinit.target.wants/brltty.service",
              "/lib/systemd/system/brltty.service");
    QVERIFY(seen_in(tree).brltty_is_a_service);
}

KEST_GUILESS_TEST(DoctorLookAtPortsTest)
#include "tst_doctor_look_at_ports.moc"
