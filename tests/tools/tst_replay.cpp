#include "simulator/replay.h"
#include "support/test_program.h"

#include <QTemporaryDir>
#include <QtTest>

using Recording = QVector<ReplayLine>;

Q_DECLARE_METATYPE(ReplayLine)

class ReplayTest : public QObject
{
    Q_OBJECT

private slots:
    void a_recording_gives_its_lines_data();
    void a_recording_gives_its_lines();
    void a_steady_pace_replaces_the_recorded_one();
    void a_file_is_read_whole();
    void what_cannot_be_played_is_told_data();
    void what_cannot_be_played_is_told();
};

bool operator==(const ReplayLine& one, const ReplayLine& other)
{
    return one.offset == other.offset && one.text == other.text;
}

namespace
{
const QByteArray GOOD = "K\t20.00\t5.0\t\t\tID=7\tD";

char* text_of(const Recording& lines)
{
    QByteArray text;
    for (const ReplayLine& line : lines)
        text += QByteArray::number(line.offset) + " \"" + line.text + "\" ";
    return qstrdup(text.constData());
}
}  // namespace

void ReplayTest::a_recording_gives_its_lines_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<Recording>("lines");
    const auto row = [](const char* name, const QByteArray& content, const Recording& lines) {
        QTest::newRow(name) << content << lines;
    };
    row("nothing", "", {});
    row("plain lines, one a second", "one\ntwo\nthree\n", {{0, "one"}, {1, "two"}, {2, "three"}});
    row("no line end at the end", "one\ntwo", {{0, "one"}, {1, "two"}});
    row("empty plain lines are lines", "\n\nx\n", {{0, ""}, {1, ""}, {2, "x"}});
    row("plain lines that end in CR LF", "one\r\ntwo\r\n", {{0, "one"}, {1, "two"}});
    row("a lone CR among LF is content", "one\r\ntwo\n", {{0, "one\r"}, {1, "two"}});
    row("NUL and high bytes stay", QByteArray("a\0b\xFF\n", 5), {{0, QByteArray("a\0b\xFF", 4)}});
    row("an event log", "2020-04-03 09:15:02 " + GOOD + "\n2020-04-03 09:15:03 x\n",
        {{0, GOOD}, {1, "x"}});
    row("events and commands are left out",
        "2020-04-03 09:15:00 Switching to phase Charging because User clicked 'Start'.\n"
        "2020-04-03 09:15:00 43\n"
        "2020-04-03 09:15:01 " +
            GOOD +
            "\n"
            "2020-04-03 09:15:06 Attempting to reset the Kestrometer as it may be stuck in "
            "bootloader mode.\n"
            "2020-04-03 09:15:06 55 55 55 55 55 55 00 00 00 04\n"
            "2020-04-03 09:15:07 botched IR test, open circuit voltage = 1 V\n"
            "2020-04-03 09:15:11 y\n",
        {{0, GOOD}, {10, "y"}});
    row("what only looks like a command is telemetry",
        "2020-04-03 09:15:00 4\n2020-04-03 09:15:01 4x\n2020-04-03 09:15:02 43 \n"
        "2020-04-03 09:15:03 43-44\n2020-04-03 09:15:04 ab\n2020-04-03 09:15:05 \n",
        {{0, "4"}, {1, "4x"}, {2, "43 "}, {3, "43-44"}, {4, "ab"}, {5, ""}});
    row("lines of one second are spread over it",
        "2020-04-03 09:15:00 a\n2020-04-03 09:15:00 b\n2020-04-03 09:15:00 c\n"
        "2020-04-03 09:15:00 d\n2020-04-03 09:15:01 e\n",
        {{0, "a"}, {0.25, "b"}, {0.5, "c"}, {0.75, "d"}, {1, "e"}});
    row("a clock set back stops nothing",
        "2020-04-03 09:15:05 a\n2020-04-03 08:15:05 b\n2020-04-03 08:15:07 c\n",
        {{0, "a"}, {0.5, "b"}, {2, "c"}});
    row("a gap is kept", "2020-03-28 23:59:59 a\n2020-03-30 00:00:00 b\n",
        {{0, "a"}, {86401, "b"}});
    row("an hour that a clock change leaves out", "2020-03-29 02:30:00 a\n2020-03-29 03:00:00 b\n",
        {{0, "a"}, {1800, "b"}});
    row("a lone LF in a line", "2020-04-03 09:15:00 a\nb\n2020-04-03 09:15:01 c\n",
        {{0, "a\nb"}, {1, "c"}});
    row("what follows an event goes with it",
        "2020-04-03 09:15:00 Switching to phase Done because x\nb\n2020-04-03 09:15:01 c\n",
        {{0, "c"}});
    row("a stamp that is no time", "2020-04-31 09:15:00 a\n", {{0, "2020-04-31 09:15:00 a"}});
    row("a stamp without a blank", "2020-04-03 09:15:00\ta\n", {{0, "2020-04-03 09:15:00\ta"}});
    row("an event log with CR LF ends", "2020-04-03 09:15:00 a\r\n2020-04-03 09:15:01 b\r\n",
        {{0, "a"}, {1, "b"}});
    row("events alone", "2020-04-03 09:15:00 Switching to phase Done because x\n", {});
}

void ReplayTest::a_recording_gives_its_lines()
{
    QFETCH(QByteArray, content);
    QFETCH(Recording, lines);
    const Recording read = parse_recording(content);
    QVERIFY2(read == lines, QScopedArrayPointer<char>(text_of(read)).data());
}

void ReplayTest::a_steady_pace_replaces_the_recorded_one()
{
    Recording lines = {{0, "a"}, {7, "b"}, {7.5, "c"}};
    set_steady_pace(lines, 4.0);
    const Recording steady = {{0, "a"}, {0.25, "b"}, {0.5, "c"}};
    QVERIFY2(lines == steady, QScopedArrayPointer<char>(text_of(lines)).data());
}

void ReplayTest::a_file_is_read_whole()
{
    QTemporaryDir folder;
    QFile file(folder.filePath("log.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    for (int i = 0; i < 10000; ++i)
        file.write("line " + QByteArray::number(i) + "\n");
    file.close();
    Recording lines;
    QString error;
    QVERIFY(read_recording(file.fileName(), lines, error));
    QCOMPARE(error, QString());
    QCOMPARE(lines.size(), 10000);
    QCOMPARE(lines.last().text, QByteArray("line 9999"));
    QCOMPARE(lines.last().offset, 9999.0);
}

void ReplayTest::what_cannot_be_played_is_told_data()
{
    add_columns<QString>({"name", "error"});
    add_row("no file", "missing.txt", "%1 cannot be read: No such file or directory");
    add_row("empty file", "empty.txt", "%1 holds no telemetry.");
    add_row("events alone", "events.txt", "%1 holds no telemetry.");
    add_row("a folder", ".", "%1 cannot be read: file to open is a directory");
}

void ReplayTest::what_cannot_be_played_is_told()
{
    QFETCH(QString, name);
    QFETCH(QString, error);
    QTemporaryDir folder;
    QFile empty(folder.filePath("empty.txt"));
    QVERIFY(empty.open(QIODevice::WriteOnly));
    QFile events(folder.filePath("events.txt"));
    QVERIFY(events.open(QIODevice::WriteOnly));
    events.write("2020-04-03 09:15:00 Switching to phase Done because x\n");
    events.close();

    Recording lines;
    QString told;
    QVERIFY(!read_recording(folder.filePath(name), lines, told));
    QCOMPARE(told, error.arg(folder.filePath(name)));
}

KEST_GUILESS_TEST(ReplayTest)

#include "tst_replay.moc"
