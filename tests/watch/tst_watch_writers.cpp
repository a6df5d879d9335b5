#include "support/test_files.h"
#include "support/test_program.h"
#include "watch_bench.h"

#include "programs/common/open_files.h"
#include "watch/log_memory.h"

#include <QFile>
#include <QProcess>
#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

Q_DECLARE_METATYPE(Writer)

/** Who writes a log, and what becomes of it. */
class WatchWritersTest : public QObject
{
    Q_OBJECT

private slots:
    void a_program_that_is_killed_is_gone_data();
    void a_program_that_is_killed_is_gone();
    void a_power_cut_leaves_the_program_gone();
    void a_program_that_nobody_has_missed_yet_is_gone();
    void a_watch_that_comes_back_finds_the_program_gone();
    void a_program_gone_is_over_when_the_test_goes_on();
    void a_program_that_merely_reads_is_no_writer();
    void a_program_older_than_the_log_may_preview_it();
    void where_nobody_is_seen_a_test_has_perhaps_ended();
    void what_ran_is_remembered_whole();
    void a_memory_of_another_start_knows_of_no_process();
    void no_memory_is_read_from_garbage_data();
    void no_memory_is_read_from_garbage();
    void a_hostile_name_comes_through_whole();
};

namespace
{
constexpr int PATIENCE_MS = 120000;

const QByteArray HEAD = "Kestrometer Log\nBattery Name:  Pack A\nSerial Number: 1042\n"
                        "Charge Number:               1\n"
                        "Timestamp:                   2020-04-03 09:15:02\n"
                        "Time (s),Voltage (V)\n";

QByteArray of_another_boot(QByteArray memory)
{
    const int at = memory.indexOf("\"boot\": \"") + 9;
    memory[at] = memory[at] == '0' ? '1' : '0';
    return memory;
}

QByteArray change(const char* phase, const char* time = "2020-04-03 09:15:02")
{
    return QByteArray(time) + " Switching to phase " + phase + " because x\n";
}

/** A program of another kind that writes a log as the application does: it obeys lines of a shell. */
class WritingProgram
{
public:
    explicit WritingProgram(const QString& csv)
    {
        shell.start("/bin/sh", {"-c",
                                "exec 3>>\"$1\" && while read -r line; do eval \"$line\"; "
                                "echo; done",
                                "sh", csv});
        obey(":");
    }
    ~WritingProgram()
    {
        shell.kill();
        shell.waitForFinished();
    }

    void obey(const QByteArray& order)
    {
        shell.write(order + "\n");
        while (!shell.canReadLine())
            if (!shell.waitForReadyRead(PATIENCE_MS))
                qFatal("The shell does not answer.");
        shell.readLine();
    }
    void kill()
    {
        shell.kill();
        QVERIFY(shell.waitForFinished(PATIENCE_MS));
    }

    QProcess shell;
};

/** A folder with one log, its writer and a watch. */
class Place
{
public:
    explicit Place(const QString& name = "a") : csv(folder.filePath(name + ".csv"))
    {
        QVERIFY(write_file(csv, HEAD + "1.0,25.20\n"));
        tell(change("Charging"));
        watch = std::make_unique<WatchedFolder>(folder.path());
    }

    void tell(const QByteArray& lines)
    {
        QFile file(csv.left(csv.size() - 4) + ".txt");
        QVERIFY(file.open(QIODevice::Append));
        file.write(lines);
    }
    void begin()
    {
        program = std::make_unique<WritingProgram>(csv);
        watch->look_after(2);
        row();
    }
    void row()
    {
        program->obey("echo 2.0,25.30 >&3");
    }

    QTemporaryDir folder;
    QString csv;
    std::unique_ptr<WatchedFolder> watch;
    std::unique_ptr<WritingProgram> program;
};
}  // namespace

void WatchWritersTest::a_program_that_is_killed_is_gone_data()
{
    QTest::addColumn<QByteArray>("phase");
    QTest::addColumn<QString>("found");
    add_row("charging", QByteArray("Charging"), QString("program-gone"));
    add_row("waiting", QByteArray("Ready for 1st Discharge"), QString("program-gone"));
    add_row("done", QByteArray("Done"), QString("ended"));
}

void WatchWritersTest::a_program_that_is_killed_is_gone()
{
    QFETCH(QByteArray, phase);
    Place place;
    place.begin();
    QCOMPARE(place.watch->look_after(2), QString("charging"));
    QVERIFY(place.watch->seen.test_runs);
    place.tell(change(phase, "2020-04-03 10:00:00"));
    place.watch->look_after(1);
    place.program->kill();
    QTEST(place.watch->look_after(2), "found");
    QVERIFY(!place.watch->seen.test_runs);
    QCOMPARE(place.watch->seen.situations.first().since.toSecsSinceEpoch(),
             place.watch->now.time.toSecsSinceEpoch());
    QTEST(place.watch->look_after(80000), "found");
    // An instrument that may be on is no matter of days; a test that was done is.
    const bool done = phase == "Done";
    QCOMPARE(place.watch->look_after(86400), QString(done ? "" : "program-gone"));
}

void WatchWritersTest::a_power_cut_leaves_the_program_gone()
{
    Place place;
    place.begin();
    QCOMPARE(place.watch->look_after(2), QString("charging"));
    place.program->kill();
    const QString memory = QDir(place.watch->state.path()).filePath("tests.json");
    QByteArray text = of_another_boot(content_of(memory));
    // The disk goes by another number since the machine was started again.
    const int device = text.indexOf("\"device\": \"") + 11;
    text.insert(device, "9");
    QVERIFY(write_file(memory, text));
    // The folder comes when it is mounted.
    const QString away = place.folder.path() + ".away";
    QVERIFY(QDir().rename(place.folder.path(), away));
    place.watch->restart();
    QCOMPARE(place.watch->look_after(2), QString());
    place.watch->restart();
    QCOMPARE(place.watch->look_after(2), QString());
    QVERIFY(QDir().rename(away, place.folder.path()));
    QCOMPARE(place.watch->look_after(2), QString("program-gone"));
    QCOMPARE(place.watch->look_after(200000), QString("program-gone"));
    // The same program works on another log: somebody has been there.
    const WritingProgram next(place.folder.filePath("b.csv"));
    QCOMPARE(place.watch->look_after(20), QString());
}

void WatchWritersTest::a_program_that_nobody_has_missed_yet_is_gone()
{
    Place place;
    place.begin();
    QCOMPARE(place.watch->look_after(2), QString("charging"));
    const auto process = pid_t(place.program->shell.processId());
    // Its parent, this test, does not ask for its status before it has been looked at.
    QVERIFY(::kill(process, SIGKILL) == 0);
    siginfo_t ended = {};
    QVERIFY(::waitid(P_PID, id_t(process), &ended, WEXITED | WNOWAIT) == 0);
    QCOMPARE(state_of_process(process, SystemRoots()), 'Z');
    QCOMPARE(place.watch->look_after(2), QString("program-gone"));
}

void WatchWritersTest::a_watch_that_comes_back_finds_the_program_gone()
{
    Place place;
    place.begin();
    QCOMPARE(place.watch->look_after(2), QString("charging"));
    place.program->kill();
    place.watch->restart();
    QCOMPARE(place.watch->look_after(1000), QString("program-gone"));
    place.watch->restart();
    QCOMPARE(place.watch->look_after(1000), QString("program-gone"));
    QVERIFY(QFile::remove(place.csv));
    place.watch->restart();
    QCOMPARE(place.watch->look_after(2), QString());
}

void WatchWritersTest::a_program_gone_is_over_when_the_test_goes_on()
{
    Place place;
    place.begin();
    place.watch->look_after(2);
    place.program->kill();
    QCOMPARE(place.watch->look_after(2), QString("program-gone"));
    place.program = std::make_unique<WritingProgram>(place.csv);
    place.row();
    QCOMPARE(place.watch->look_after(2), QString("charging"));
}

void WatchWritersTest::a_program_that_merely_reads_is_no_writer()
{
    Place place;
    QFile reader(place.csv);
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QCOMPARE(place.watch->look_after(2), QString());
    place.tell(change("Discharging"));
    QFile copier(place.csv);
    QVERIFY(copier.open(QIODevice::Append));
    copier.write("3.0,25.30\n");
    copier.close();
    QCOMPARE(place.watch->look_after(20), QString());
    QVERIFY(!place.watch->seen.test_runs);
}

void WatchWritersTest::a_program_older_than_the_log_may_preview_it()
{
    Place place;
    place.program = std::make_unique<WritingProgram>(place.csv);
    // As it is when the application has loaded it: read since it was written.
    const timespec times[] = {{::time(nullptr) + 20, 0}, {::time(nullptr) + 10, 0}};
    QVERIFY(::utimensat(AT_FDCWD, qPrintable(place.csv), times, 0) == 0);
    QCOMPARE(place.watch->look_after(2), QString());
    QCOMPARE(place.watch->look_after(60), QString());
    place.tell("2020-04-03 10:00:00 KEST\t1\n2020-04-03 10:00:00 Attempting to reset the "
               "Kestrometer as it may be stuck in bootloader mode.\n");
    QCOMPARE(place.watch->look_after(2), QString());
    place.row();
    QCOMPARE(place.watch->look_after(2), QString("charging"));
}

void WatchWritersTest::where_nobody_is_seen_a_test_has_perhaps_ended()
{
    Place place;
    const QTemporaryDir no_processes;
    LogHolders holders({no_processes.path(), no_processes.path()});
    WatchedLog log(QFile::encodeName(place.csv), true);
    Moment now = present_moment();
    const auto look = [&](double seconds) {
        now.awake_ms += qint64(seconds * 1000.0);
        now.time = now.time.addMSecs(qint64(seconds * 1000.0));
        log.read(now);
        log.judge(now, holders);
        const QList<Situation> found = log.situations(now, 30);
        return found.isEmpty() ? QString() : QString(traits_of(found.first().condition).key);
    };
    const auto write_row = [&place] {
        QFile file(place.csv);
        QVERIFY(file.open(QIODevice::Append));
        file.write("9.0,25.40\n");
    };
    QCOMPARE(look(2), QString());
    write_row();
    QCOMPARE(look(2), QString("charging"));
    QCOMPARE(look(30), QString("charging"));
    QCOMPARE(look(1), QString("perhaps-ended"));
    write_row();
    QCOMPARE(look(1), QString("charging"));
}

void WatchWritersTest::what_ran_is_remembered_whole()
{
    LogMemory memory;
    memory.path = "/logs/\xff<b>\"\n%20.csv";
    memory.identity = {5, 18446744073709551615u};
    memory.holder.process = 77;
    memory.holder.started = 1234567890123u;
    memory.holder.program = "kest \"x\"";
    memory.writer = Writer::Gone;
    memory.ended = QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5), Qt::UTC);
    Situation disk;
    disk.log = "/logs \xff";
    disk.condition = Condition::DiskFull;
    disk.since = memory.ended.addMSecs(17);
    const WatchMemory whole = memory_in(text_of({{memory}, {disk}}));
    QCOMPARE(whole.disks.size(), 1);
    QCOMPARE(whole.disks[0].log, disk.log);
    QCOMPARE(whole.disks[0].condition, disk.condition);
    QCOMPARE(whole.disks[0].since, disk.since);
    const QList<LogMemory>& read = whole.tests;
    QCOMPARE(read.size(), 1);
    QCOMPARE(read[0].path, memory.path);
    QVERIFY(read[0].identity == memory.identity);
    QCOMPARE(read[0].holder.process, memory.holder.process);
    QCOMPARE(read[0].holder.started, memory.holder.started);
    QCOMPARE(read[0].holder.program, memory.holder.program);
    QCOMPARE(read[0].writer, memory.writer);
    QCOMPARE(read[0].ended, memory.ended);
}

void WatchWritersTest::a_memory_of_another_start_knows_of_no_process()
{
    LogMemory memory;
    memory.path = "/a.csv";
    memory.holder.process = ::getpid();
    memory.holder.started = 5;
    const LogMemory read = memory_in(of_another_boot(text_of({{memory}, {}}))).tests.first();
    QVERIFY(!read.holder.is_known());
    QCOMPARE(read.holder.started, quint64(0));
    QVERIFY(!read.same_boot);
}

void WatchWritersTest::no_memory_is_read_from_garbage_data()
{
    QTest::addColumn<QByteArray>("text");
    add_row("nothing", QByteArray());
    add_row("cut", QByteArray("{\"boot\": \"x\", \"tests\": [{"));
    add_row("a list", QByteArray("[1, 2]"));
    add_row("other tests", QByteArray("{\"tests\": 5}"));
}

void WatchWritersTest::no_memory_is_read_from_garbage()
{
    QFETCH(QByteArray, text);
    const WatchMemory memory = memory_in(text);
    QVERIFY(memory.tests.isEmpty());
    QVERIFY(memory.disks.isEmpty());
}

void WatchWritersTest::a_hostile_name_comes_through_whole()
{
    Place place;
    const QByteArray name = "<b>\"' & %1 " + QByteArray(4000, 'x') + "\xe2\x80\xa8\x1b[31m.";
    QByteArray head = HEAD;
    QVERIFY(write_file(place.csv, head.replace("Pack A", name)));
    place.begin();
    const QByteArray path = QFile::encodeName(place.folder.path()) + "/\xff\n<i>\xe2\x80\xa8.csv";
    QVERIFY(::rename(qPrintable(place.csv), path.constData()) == 0);
    QVERIFY(::rename(qPrintable(place.csv.replace(".csv", ".txt")),
                     path.left(path.size() - 4).append(".txt").constData()) == 0);
    QCOMPARE(place.watch->look_after(2), QString("charging"));
    QCOMPARE(place.watch->seen.situations.first().log, path);
    QCOMPARE(place.watch->seen.situations.first().facts.battery, QString::fromUtf8(name));
    place.watch->restart();
    QCOMPARE(place.watch->look_after(2), QString("charging"));
    // The folder cannot be removed with a name in it that is no text.
    QVERIFY(::unlink(path.constData()) == 0);
    QVERIFY(::unlink((path.left(path.size() - 4) + ".txt").constData()) == 0);
}

KEST_GUILESS_TEST(WatchWritersTest)
#include "tst_watch_writers.moc"
