#include "guard/holders.h"
#include "guard/lock_files.h"
#include "guard/notes.h"
#include "guard/serial_line.h"

#include "simulator/pseudo_terminal.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QDir>
#include <QTemporaryDir>

#include <fcntl.h>
#include <memory>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

Q_DECLARE_METATYPE(SerialLine)

namespace
{
/** A pseudo-terminal that this process holds as a program holds its instrument. */
struct HeldLine
{
    HeldLine()
    {
        QString error;
        if (!far_end.open(error))
            qFatal("%s", qPrintable(error));
        path = far_end.path();
    }

    PseudoTerminal far_end;
    QString path;
};

OpenFiles with_file(const SerialLine& line)
{
    OpenFiles files;
    files.readable = true;
    files.count = 4;
    OpenDevice file;
    file.path = line.path;
    file.device = line.device;
    file.inode = line.inode;
    file.filesystem = line.filesystem;
    file.both_ways = true;
    files.devices << file;
    return files;
}

/** To this system the device is the line of an adapter. */
QByteArray usb_driver_of(dev_t device)
{
    return "usbserial /dev/ttyUSB " + QByteArray::number(major(device)) + " 0-511 serial\n";
}

SerialLine named(const QString& path, const QString& usb_serial = QString())
{
    SerialLine line;
    line.path = path;
    line.usb_serial = usb_serial;
    return line;
}
}  // namespace

/** Which lines there are, and whether one is still what it was. */
class SerialLineTest : public QObject
{
    Q_OBJECT

private slots:
    void a_pseudo_terminal_is_a_line();
    void what_is_no_terminal_is_no_line_data();
    void what_is_no_terminal_is_no_line();
    void one_that_takes_the_name_is_another();
    void every_detail_counts_data();
    void every_detail_counts();
    void the_adapter_is_found_above_the_line();
    void a_driver_may_come_later();
    void lines_among_files_data();
    void lines_among_files();
    void the_far_end_does_not_hold_the_line();
    void another_holder_is_named();
    void nothing_open_changes_no_note();
    void what_was_pulled_is_lost_until_it_is_back();
    void what_was_closed_is_not_lost();
    void a_lock_file_tells_what_was_held();
    void a_process_that_ends_is_told_from_one_that_hides();
    void without_the_system_s_word_nothing_is_known();
};

void SerialLineTest::a_pseudo_terminal_is_a_line()
{
    const HeldLine held;
    const std::optional<SerialLine> line = SerialLines().at(held.path);
    QVERIFY(line.has_value());
    QCOMPARE("/dev/" + line->name(), held.path);
    QVERIFY(SerialLines().unchanged(*line));
}

void SerialLineTest::what_is_no_terminal_is_no_line_data()
{
    QTest::addColumn<QString>("path");
    for (const char* path :
         {"/dev/null", "/dev/tty", "/dev/ptmx", "/etc/passwd", "/dev", "/none", ""})
        QTest::newRow(path) << QString(path);
}

void SerialLineTest::what_is_no_terminal_is_no_line()
{
    QFETCH(QString, path);
    QVERIFY(!SerialLines().at(path).has_value());
}

void SerialLineTest::one_that_takes_the_name_is_another()
{
    const SerialLines lines;
    HeldLine held;
    const std::optional<SerialLine> first = lines.at(held.path);
    QVERIFY(first.has_value());
    held.far_end.close();
    QVERIFY(!lines.unchanged(*first));
    QString error;
    QVERIFY(held.far_end.open(error));
    const std::optional<SerialLine> next = lines.at(held.far_end.path());
    QVERIFY(next.has_value());
    QVERIFY(lines.unchanged(*next));
    // The number is given away again, and then only the time tells: the system keeps whole seconds.
    SerialLine earlier = *next;
    earlier.made_at_ns -= 1000000000;
    QVERIFY(!lines.unchanged(earlier));
}

void SerialLineTest::every_detail_counts_data()
{
    QTest::addColumn<SerialLine>("other");
    SerialLine line;
    QTest::newRow("path") << (line = SerialLine(), line.path = "x", line);
    QTest::newRow("number") << (line = SerialLine(), line.device = 1, line);
    QTest::newRow("hardware") << (line = SerialLine(), line.hardware = "x", line);
    QTest::newRow("serial number") << (line = SerialLine(), line.usb_serial = "x", line);
    QTest::newRow("number on the bus") << (line = SerialLine(), line.usb_device = "x", line);
    QTest::newRow("inode") << (line = SerialLine(), line.inode = 1, line);
    QTest::newRow("file system") << (line = SerialLine(), line.filesystem = 1, line);
    QTest::newRow("time") << (line = SerialLine(), line.made_at_ns = 1, line);
}

void SerialLineTest::every_detail_counts()
{
    QFETCH(SerialLine, other);
    QVERIFY(other == other);
    QVERIFY(!(other == SerialLine()));
}

void SerialLineTest::the_adapter_is_found_above_the_line()
{
    const HeldLine held;
    const dev_t device = SerialLines().at(held.path)->device;
    const QString number = QString("%1:%2").arg(major(device)).arg(minor(device));
    const QTemporaryDir folder;
    const QDir root(folder.path());
    const QString line_folder = "sys/devices/usb1/1-4/1-4:1.0/ttyUSB0/tty/ttyUSB0";
    for (const QString& path : {line_folder, QString("sys/dev/char"), QString("proc/tty")})
        QVERIFY(root.mkpath(path));
    QVERIFY(write_file(root.filePath("sys/devices/usb1/devnum"), "1\n"));
    QVERIFY(write_file(root.filePath("sys/devices/usb1/1-4/devnum"), "23\n"));
    QVERIFY(write_file(root.filePath("sys/devices/usb1/1-4/serial"), "A10KQ\n"));
    QVERIFY(QFile::link(root.filePath(line_folder), root.filePath("sys/dev/char/" + number)));
    QVERIFY(write_file(root.filePath("proc/tty/drivers"), usb_driver_of(device)));
    const SerialLines lines({root.filePath("proc"), root.filePath("sys")});
    const std::optional<SerialLine> line = lines.at(held.path);
    QVERIFY(line.has_value());
    QCOMPARE(line->hardware, QFileInfo(root.filePath(line_folder)).canonicalFilePath());
    QCOMPARE(line->usb_device, QString("23"));
    QCOMPARE(line->usb_serial, QString("A10KQ"));
    QVERIFY(lines.unchanged(*line));
    QVERIFY(write_file(root.filePath("sys/devices/usb1/1-4/devnum"), "24\n"));
    QVERIFY(!lines.unchanged(*line));
}

void SerialLineTest::a_driver_may_come_later()
{
    const HeldLine held;
    const dev_t device = SerialLines().at(held.path)->device;
    const QTemporaryDir folder;
    const QDir root(folder.path());
    QVERIFY(root.mkpath("proc/tty"));
    QVERIFY(write_file(root.filePath("proc/tty/drivers"), "serial /dev/ttyS 4 64-95 serial\n"));
    SerialLines lines({root.filePath("proc"), root.filePath("sys")});
    QVERIFY(!lines.at(held.path).has_value());
    QVERIFY(write_file(root.filePath("proc/tty/drivers"), usb_driver_of(device)));
    QVERIFY(!lines.at(held.path).has_value());
    lines.look_again();
    QVERIFY(lines.at(held.path).has_value());
}

void SerialLineTest::lines_among_files_data()
{
    QTest::addColumn<bool>("both_ways");
    QTest::addColumn<bool>("is_people_s");
    QTest::addColumn<bool>("same_inode");
    QTest::addColumn<bool>("same_filesystem");
    QTest::addColumn<QString>("path_end");
    QTest::addColumn<bool>("is_line");
    QTest::newRow("held") << true << false << true << true << "" << true;
    QTest::newRow("only read") << false << false << true << true << "" << false;
    QTest::newRow("a terminal of people") << true << true << true << true << "" << false;
    QTest::newRow("its name has another now") << true << false << false << true << "" << false;
    QTest::newRow("a container's, of that number") << true << false << true << false << "" << false;
    QTest::newRow("pulled") << true << false << true << true << " (deleted)" << false;
}

void SerialLineTest::lines_among_files()
{
    QFETCH(bool, both_ways);
    QFETCH(bool, is_people_s);
    QFETCH(bool, same_inode);
    QFETCH(bool, same_filesystem);
    QFETCH(QString, path_end);
    QFETCH(bool, is_line);
    const SerialLines lines;
    const HeldLine held;
    const SerialLine line = *lines.at(held.path);
    OpenFiles files = with_file(line);
    files.devices[0].both_ways = both_ways;
    files.devices[0].inode += same_inode ? 0 : 1;
    files.devices[0].filesystem += same_filesystem ? 0 : 1;
    files.devices[0].path += path_end;
    files.devices << files.devices[0];
    const QVector<dev_t> of_people = is_people_s ? QVector<dev_t>{line.device} : QVector<dev_t>();
    QCOMPARE(lines.among(files, of_people),
             is_line ? QVector<SerialLine>{line} : QVector<SerialLine>());
}

void SerialLineTest::the_far_end_does_not_hold_the_line()
{
    const SerialLines lines;
    const HeldLine held;
    // This process has both ends; as the program of a guard it would hold no instrument.
    const OpenFiles files = open_files_of(::getpid(), lines.roots);
    QVERIFY(files.readable);
    QVERIFY(files.have_far_end_of(held.path));
    QVERIFY(!files.have_far_end_of(held.path + "0"));
    QCOMPARE(lines.among(files, {}).contains(*lines.at(held.path)), false);
}

void SerialLineTest::another_holder_is_named()
{
    const SerialLines lines;
    // The system gives a number again while somebody still holds a line that once had it.
    std::vector<std::unique_ptr<HeldLine>> held;
    QVector<SerialLine> all;
    do {
        held.push_back(std::make_unique<HeldLine>());
        all = {*lines.at(held.back()->path)};
    } while (!other_holders(all, lines.roots).isEmpty() && held.size() < 20);
    const QString path = held.back()->path;
    QVERIFY(other_holders(all, lines.roots).isEmpty());
    QProcess other;
    other.start("sh", {"-c", "exec 5<>" + path + "; echo up; read x"});
    QVERIFY(other.waitForReadyRead());
    QCOMPARE(other_holders(all, lines.roots).value(path),
             QString("sh (process %1)").arg(other.processId()));
    other.closeWriteChannel();
    QVERIFY(other.waitForFinished());
    QVERIFY(other_holders(all, lines.roots).isEmpty());
}

void SerialLineTest::nothing_open_changes_no_note()
{
    const SerialLines lines;
    const HeldLine held;
    const SerialLine line = *lines.at(held.path);
    Notes notes;
    notes.take(with_file(line), {line}, lines);
    notes.take(OpenFiles(), {}, lines);
    QCOMPARE(notes.held, QVector<SerialLine>{line});
}

void SerialLineTest::what_was_pulled_is_lost_until_it_is_back()
{
    const SerialLines lines;
    const SerialLine line = named("/dev/gone", "A10KQ");
    Notes notes;
    notes.take(with_file(line), {line}, lines);
    notes.take(with_file(line), {}, lines);
    QCOMPARE(notes.lost, QVector<SerialLine>{line});
    notes.take(with_file(line), {named("/dev/other")}, lines);
    QCOMPARE(notes.lost.size(), 1);
    notes.take(with_file(line), {named("/dev/other", "A10KQ")}, lines);
    QCOMPARE(notes.lost.size(), 0);
}

void SerialLineTest::what_was_closed_is_not_lost()
{
    const SerialLines lines;
    const HeldLine held;
    const SerialLine line = *lines.at(held.path);
    Notes notes;
    notes.take(with_file(line), {line}, lines);
    notes.take(with_file(line), {}, lines);
    QVERIFY(notes.held.isEmpty());
    QVERIFY(notes.lost.isEmpty());
}

void SerialLineTest::a_lock_file_tells_what_was_held()
{
    const SerialLines lines;
    const HeldLine held;
    const QTemporaryDir folder;
    const QString lock = folder.filePath("LCK.." + held.far_end.port_name().replace('/', '_'));
    const QDateTime start = QDateTime::currentDateTime();
    QVERIFY(write_file(lock, "4711\nkest-battery-tester\nbench\n"));
    QVERIFY(write_file(folder.filePath("LCK..null"), "4711\n"));
    QVERIFY(write_file(folder.filePath("LCK..no_such"), "4711\n"));
    const QVector<SerialLine> line = {*lines.at(held.path)};
    QCOMPARE(lines_locked_by(4711, start, lines, {folder.path()}), line);
    QCOMPARE(lines_locked_by(471, start, lines, {folder.path()}), QVector<SerialLine>());
    // Left behind by a process that had the same number long ago.
    QCOMPARE(lines_locked_by(4711, start.addSecs(60), lines, {folder.path()}),
             QVector<SerialLine>());
    QCOMPARE(lines_locked_by(4711, start, lines, {"/no/such/folder"}), QVector<SerialLine>());
    // Another user's word: only root can make a file in another's name.
    if (::geteuid() == 0) {
        QCOMPARE(::chown(qPrintable(lock), 65534, 65534), 0);
        QCOMPARE(lines_locked_by(4711, start, lines, {folder.path()}), QVector<SerialLine>());
        QCOMPARE(::chown(qPrintable(lock), 0, 0), 0);
    }
    // The line is younger than its lock: it is not the one that was locked.
    QFile file(lock);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(start.addSecs(-60), QFileDevice::FileModificationTime));
    QCOMPARE(lines_locked_by(4711, start.addSecs(-90), lines, {folder.path()}),
             QVector<SerialLine>());
}

void SerialLineTest::a_process_that_ends_is_told_from_one_that_hides()
{
    QVERIFY(!is_ending(::getpid(), SystemRoots()));
    const pid_t process = ::fork();
    if (process == 0)
        ::_exit(0);
    siginfo_t info = {};
    QCOMPARE(::waitid(P_PID, id_t(process), &info, WEXITED | WNOWAIT), 0);
    QVERIFY(is_ending(process, SystemRoots()));
    QCOMPARE(::waitpid(process, nullptr, 0), process);
}

void SerialLineTest::without_the_system_s_word_nothing_is_known()
{
    const SystemRoots nowhere = {"/no/such/proc", "/no/such/sys"};
    QVERIFY(!open_files_of(::getpid(), nowhere).readable);
    QVERIFY(all_processes(nowhere).isEmpty());
    QCOMPARE(state_of_process(::getpid(), nowhere), '\0');
    QCOMPARE(controlling_terminal_of(::getpid(), nowhere), dev_t(0));
    QVERIFY(!catches_signal(::getpid(), 1, nowhere));
    QVERIFY(!is_ending(::getpid(), nowhere));
    const HeldLine held;
    QVERIFY(!SerialLines(nowhere).at(held.path).has_value());
    QVERIFY(!SerialLines(nowhere).can_be_told());
    QVERIFY(SerialLines().can_be_told());
}

KEST_GUILESS_TEST(SerialLineTest)
#include "tst_serial_line.moc"
