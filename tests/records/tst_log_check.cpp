#include "records/log_check.h"
#include "records/log_input.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QtTest>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

/** What is odd about a log that loads, and files that are no logs. */
class LogCheckTest : public QObject
{
    Q_OBJECT

private slots:
    void warnings_refuse_nothing_data();
    void warnings_refuse_nothing();
    void what_the_event_log_tells_refuses_nothing_data();
    void what_the_event_log_tells_refuses_nothing();
    void only_the_first_odd_rows_are_listed();
    void what_is_no_file_is_told_data();
    void what_is_no_file_is_told();
    void a_line_beyond_all_measure_ends_the_reading();
    void a_log_on_a_failing_disk_is_not_judged();
    void a_log_is_left_as_it_was();
};

namespace
{
qint64 bytes_before_failure = -1;  ///< below 0 for a good disk
}

/** In place of the C library's `read`: for a disk that fails. */
extern "C" ssize_t read_as_told(int handle, void* bytes, size_t size) __asm__("read");

ssize_t read_as_told(int handle, void* bytes, size_t size)
{
    if (bytes_before_failure == 0) {
        errno = EIO;
        return -1;
    }
    if (bytes_before_failure > 0)
        size = size_t(qMin(qint64(size), bytes_before_failure));
    const long count = ::syscall(SYS_read, handle, bytes, size);
    if (bytes_before_failure > 0)
        bytes_before_failure -= count;
    return count;
}

namespace
{
const QByteArray HEAD = "Kestrometer Log\nBattery Name:  A\nSerial Number: 1\n";
const QByteArray CHARGE = HEAD + "Charge Number:               1\n";
const QByteArray DISCHARGE = HEAD + "Discharge Number:            1\n";
const QByteArray TIMED =
    CHARGE + "Timestamp: 2020-04-03 10:00:02\nMax Charge Time (h):         1\n";
const QByteArray EVENTS = "2020-04-03 10:00:02 Switching to phase Charging because User clicked "
                          "'Start'.\n";

LogFile check_of(const QByteArray& log, const QByteArray& events)
{
    const QTemporaryDir folder;
    write_file(folder.filePath("a.csv"), log);
    if (!events.isEmpty())
        write_file(folder.filePath("a.txt"), events);
    LogFile file;
    if (!check_log(folder.filePath("a.csv"), file))
        qFatal("The log cannot be read.");
    return file;
}

/** "4: text|0: text" */
QString warnings_of(const LogFile& file)
{
    QStringList texts;
    for (const Warning& warning : file.warnings)
        texts << QString("%1: ").arg(warning.line) + warning.text;
    return texts.join('|');
}
}  // namespace

void LogCheckTest::warnings_refuse_nothing_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QByteArray>("events");
    QTest::addColumn<QString>("warnings");
    const QByteArray row = "1.0,0.003,40.00,10.00\n";
    QTest::newRow("none") << DISCHARGE + row << EVENTS << "";
    QTest::newRow("no event log") << DISCHARGE + row << QByteArray() << "0: no event log beside it";
    QTest::newRow("a last line cut short")
        << DISCHARGE + row + "2.0,0.006,40.00,9" << EVENTS
        << "6: '2.0,0.006,40.00,9' loads, but is not in the application's own form|"
           "0: the last line has no end: cut off, or being written";
    QTest::newRow("zeros at the end")
        << CHARGE + "0.9,41.52\n1.9," + QByteArray(3, '\0') << EVENTS
        << QString("6: '1.9,%1%1%1' loads, but is not in the application's own form|"
                   "0: zeros at the end, as after a loss of power")
               .arg(QChar(0xfffd));
    QTest::newRow("a negative resistance") << DISCHARGE + "1.0,0.003,40.00,10.00,-0.014\n"
                                           << EVENTS << "4: negative resistances in discharge 1: 1";
    QTest::newRow("no charge time")
        << CHARGE + "Max Charge Time (h):         0\n0.9,41.52\n"
        << EVENTS
        << "4: a maximum charge time of 0: taken up again, the test would end each charge at once";
    QTest::newRow("line ends of another system")
        << DISCHARGE + "1.0,0.003,40.00,10.00\r\n"
        << EVENTS << "0: carriage returns, as Windows puts at the ends of lines";
    QTest::newRow("a byte order mark")
        << "\xef\xbb\xbf" + DISCHARGE + row << EVENTS
        << "0: a byte order mark at its beginning, as another program has saved it";
    QTest::newRow("two bytes a character")
        << QTextCodec::codecForName("UTF-16LE")->fromUnicode(CHARGE) << EVENTS
        << "0: in UTF-16 or UTF-32, as another program has saved it";
    QTest::newRow("an odd line in a charge")
        << CHARGE + "a,b\n"
        << EVENTS << "5: 'a,b' loads, but is not in the application's own form";
}

void LogCheckTest::warnings_refuse_nothing()
{
    QFETCH(QByteArray, log);
    QFETCH(QByteArray, events);
    const LogFile file = check_of(log, events);
    QVERIFY(file.accepted);
    QTEST(warnings_of(file), "warnings");
}

void LogCheckTest::what_the_event_log_tells_refuses_nothing_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QByteArray>("events");
    QTest::addColumn<QString>("warnings");
    const QByteArray row = "1.0,0.003,40.00,10.00\n";
    const QByteArray over = " Switching to phase Discharging because max charge time reached, "
                            "prompt_to_discharge = false\n";
    const char* const longer =
        ": a maximum charge time of 01h 00m 00s, although this charge ended at "
        "its maximum after 01h 30m 00s";
    QTest::newRow("a charge longer than the log says")
        << TIMED + "0.9,41.52\n"
        << EVENTS + "2020-04-03 11:30:02" + over << QString("4") + longer;
    QTest::newRow("a charge as long as the log says")
        << TIMED + "0.9,41.52\n"
        << EVENTS + "2020-04-03 11:00:03" + over << "";
    QTest::newRow("a charge longer than a later one may be")
        << QByteArray(TIMED).replace("(h):         1", "(h):         2") +
               "0.9,41.52\nDischarge Number: 1\nTimestamp: 2020-04-03 11:30:02\n" + row +
               "Charge Number: 2\nMax Charge Time (h):         1\n"
        << EVENTS + "2020-04-03 11:30:02" + over << "";
    QTest::newRow("the second charge longer than its head says")
        << QByteArray(TIMED).replace("(h):         1", "(h):         2") +
               "Discharge Number: 1\nTimestamp: 2020-04-03 12:00:02\n" + row +
               "Charge Number: 2\nTimestamp: 2020-04-03 12:30:00\nMax Charge Time (h):         1\n"
        << EVENTS + "2020-04-03 12:00:02" + over +
               "2020-04-03 12:30:00 Switching to phase Charging because voltage (18) < "
               "low_voltage_cutoff (19)\n2020-04-03 14:00:00" +
               over
        << QString("10") + longer;
    QTest::newRow("a charge of another log")
        << TIMED + "0.9,41.52\n"
        << QByteArray(EVENTS).replace("10:00:02", "09:00:02") + "2020-04-03 11:30:02" + over << "";
    const QByteArray start = "2020-04-03 10:30:00 Switching to phase Charging because User clicked "
                             "'Start'.\n";
    QTest::newRow("two stations")
        << DISCHARGE + row
        << EVENTS + start + "2020-04-03 11:00:03" + over + "2020-04-03 11:00:04" + over
        << "0: by the event log two stations wrote at once: 'Discharging' at 2020-04-03 11:00:04 "
           "belongs to a test that was under way when another was started";
    const QByteArray older = TIMED + "Discharge Number: 1\nTimestamp: 2020-04-03 09:30:00\n" + row;
    const char* const earlier = "7: this section is of an earlier test, whose log was written over "
                                "from its start";
    QTest::newRow("a section of an earlier test, by the event log")
        << older << "2020-04-03 09:30:00" + over + EVENTS << earlier;
    QTest::newRow("the clock was set back, by the event log")
        << older << EVENTS + "2020-04-03 09:30:00" + over << "";
    QTest::newRow("a section of the day before")
        << QByteArray(older).replace("2020-04-03 09", "2020-04-02 09") << EVENTS << earlier;
    QTest::newRow("a section half an hour earlier, of which nothing tells")
        << older << EVENTS << "";
}

void LogCheckTest::what_the_event_log_tells_refuses_nothing()
{
    warnings_refuse_nothing();
}

void LogCheckTest::only_the_first_odd_rows_are_listed()
{
    const LogFile file = check_of(DISCHARGE + QByteArray("1,2,3,4\n").repeated(1000), EVENTS);
    QCOMPARE(file.warnings.size(), 21);
    QCOMPARE(file.warnings.last().text, QString("980 more such rows"));
}

void LogCheckTest::what_is_no_file_is_told_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("reason");
    QTest::newRow("nothing") << "nothing"
                             << "No such file or directory";
    QTest::newRow("a folder") << "folder"
                              << "it is a folder";
    QTest::newRow("a pipe") << "pipe"
                            << "it is no ordinary file";
}

void LogCheckTest::what_is_no_file_is_told()
{
    QFETCH(QString, kind);
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.csv");
    if (kind == "folder")
        QDir().mkdir(path);
    if (kind == "pipe")
        QCOMPARE(::mkfifo(qPrintable(path), 0600), 0);
    LogFile file;
    QVERIFY(!check_log(path, file));
    QTEST(file.refusal.reason, "reason");
}

void LogCheckTest::a_line_beyond_all_measure_ends_the_reading()
{
    const QTemporaryDir folder;
    QFile zeros(folder.filePath("a.csv"));
    QVERIFY(zeros.open(QIODevice::WriteOnly));
    // Four gigabytes with nothing on the disk.
    QVERIFY(zeros.resize(qint64(1) << 32));
    zeros.close();
    LogFile file;
    QVERIFY(check_log(zeros.fileName(), file));
    QVERIFY(!file.accepted);
    QCOMPARE(file.refusal.reason, QString("a line of more than 64 MB"));
}

/** What could be read of it would load. */
void LogCheckTest::a_log_on_a_failing_disk_is_not_judged()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.csv");
    write_file(path, DISCHARGE + QByteArray("1.0,0.003,40.00,10.00\n").repeated(10000));
    for (const auto look : {check_log, summarize_log}) {
        LogFile file;
        bytes_before_failure = 100000;
        const bool read_whole = look(path, file);
        bytes_before_failure = -1;
        QVERIFY(!read_whole);
        QVERIFY(!file.accepted);
        QCOMPARE(file.refusal.reason, QString("Input/output error"));
    }
}

void LogCheckTest::a_log_is_left_as_it_was()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.csv");
    const QByteArray bytes = content_of(test_data("logs/current_one_cycle.csv"));
    write_file(path, bytes);
    const struct timespec long_ago[2] = {{1000000000, 0}, {1000000000, 0}};
    QCOMPARE(::utimensat(AT_FDCWD, qPrintable(path), long_ago, 0), 0);
    LogFile file;
    QVERIFY(check_log(path, file));
    struct stat status = {};
    QCOMPARE(::stat(qPrintable(path), &status), 0);
    QCOMPARE(qint64(status.st_mtim.tv_sec), qint64(1000000000));
    QCOMPARE(qint64(status.st_atim.tv_sec), qint64(1000000000));
    QCOMPARE(content_of(path), bytes);
}

KEST_GUILESS_TEST(LogCheckTest)
#include "tst_log_check.moc"
