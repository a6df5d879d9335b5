#include "guard/terminal_kinds.h"

#include "support/test_program.h"

#include <sys/sysmacros.h>

namespace
{
const QByteArray DRIVERS = "/dev/tty             /dev/tty        5       0 system:/dev/tty\n"
                           "/dev/console         /dev/console    5       1 system:console\n"
                           "/dev/ptmx            /dev/ptmx       5       2 system\n"
                           "rfcomm               /dev/rfcomm   216 0-255 serial\n"
                           "acm                  /dev/ttyACM   166 0-255 serial\n"
                           "usbserial            /dev/ttyUSB   188 0-511 serial\n"
                           "serial               /dev/ttyS       4 64-95 serial\n"
                           "pty_slave            /dev/pts      136 0-1048575 pty:slave\n"
                           "pty_master           /dev/ptm      128 0-1048575 pty:master\n"
                           "unknown              /dev/tty        4 1-63 console\n"
                           "nonsense\n"
                           "half /dev/x serial\n"
                           "x /dev/x y z serial\n";
}  // namespace

/** Which devices are serial lines, as the system's list of drivers has it. */
class TerminalKindsTest : public QObject
{
    Q_OBJECT

private slots:
    void the_driver_tells_the_kind_data();
    void the_driver_tells_the_kind();
    void a_list_without_a_line_tells_nothing();
};

void TerminalKindsTest::the_driver_tells_the_kind_data()
{
    QTest::addColumn<int>("major");
    QTest::addColumn<int>("minor");
    QTest::addColumn<int>("kind");
    const auto row = [](const char* name, int major, int minor, TerminalKind kind) {
        QTest::newRow(name) << major << minor << int(kind);
    };
    row("USB adapter", 188, 0, TerminalKind::Serial);
    row("last USB adapter", 188, 511, TerminalKind::Serial);
    row("behind the last", 188, 512, TerminalKind::None);
    row("modem class", 166, 3, TerminalKind::Serial);
    row("on board", 4, 64, TerminalKind::Serial);
    row("virtual console", 4, 1, TerminalKind::None);
    row("own terminal", 5, 0, TerminalKind::None);
    row("maker of pseudo-terminals", 5, 2, TerminalKind::None);
    row("pseudo-terminal", 136, 70000, TerminalKind::PseudoTerminal);
    row("its other end", 128, 3, TerminalKind::None);
    row("nothing", 0, 0, TerminalKind::None);
}

void TerminalKindsTest::the_driver_tells_the_kind()
{
    QFETCH(int, major);
    QFETCH(int, minor);
    const TerminalKinds kinds = TerminalKinds::from_text(DRIVERS);
    QTEST(int(kinds.kind_of(makedev(unsigned(major), unsigned(minor)))), "kind");
}

void TerminalKindsTest::a_list_without_a_line_tells_nothing()
{
    QVERIFY(TerminalKinds::from_text(DRIVERS).knows_any());
    QVERIFY(!TerminalKinds::from_text("").knows_any());
    QVERIFY(
        !TerminalKinds::from_text("/dev/console /dev/console 5 1 system:console\n").knows_any());
}

KEST_GUILESS_TEST(TerminalKindsTest)
#include "tst_terminal_kinds.moc"
