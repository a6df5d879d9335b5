#include "guard/switch_off.h"

#include "support/test_program.h"

#include <simulator/faults.h>
#include <simulator/simulated_instrument.h>

#include <random>

namespace
{
const QByteArray OFF_LINE = "KEST\t25.20\t0.0\t25.0\t0\tID=7\tO\r\n";
const QByteArray DISCHARGING_LINE = "KEST\t24.45\t5.0\t25.0\t0\tID=7\tD\r\n";
const QByteArray GARBAGE_LINE = "no telemetry\r\n";

/** Hexadecimal, a blank between two writes: "4F 5555555555550000000444". */
QByteArray text_of(const SwitchOff::Commands& commands)
{
    QByteArrayList writes;
    for (const QByteArray& command : commands)
        writes << command.toHex().toUpper();
    return writes.join(' ');
}

/** A letter for each thing that happens; what is sent on each is the rest of it. */
struct Course
{
    Course()
    {
        sent = text_of(course.begin(now_ms));
    }
    /** 'O', 'D', 'C', 'x' a line with that letter; 'g' garbage; '.' a second. */
    void run(const QByteArray& events)
    {
        for (const char event : events)
            take(event);
    }
    void take(char event)
    {
        SwitchOff::Commands commands;
        if (event == '.')
            commands = course.pass(now_ms += 1000);
        else if (event == 'g')
            commands = course.take(GARBAGE_LINE);
        else
            commands = course.take(QByteArray(OFF_LINE).replace("7\tO", QByteArray("7\t") + event));
        if (!commands.isEmpty())
            sent += '|' + text_of(commands);
    }

    SwitchOff course;
    qint64 now_ms = 1000;
    QByteArray sent;
};

const QByteArray RESET = "|55555555555500000004 4F";

/** One random run: an instrument in some state with some faults, until the course has a result. */
struct RandomRun
{
    explicit RandomRun(unsigned seed) : random(seed), instrument(PackModel(), 7)
    {
        instrument.receive(QByteArray(1, "OCD"[pick(3)]));
        instrument.advance(1.0);
        for (int i = pick(4); i > 0; --i)
            strike();
        // Killed in the middle of a reset, and in that of another command.
        if (pick(4) == 0)
            instrument.receive(QByteArray("UUUUUU\0\0\0\4", 10).left(pick(10)));
    }
    int pick(int count)
    {
        return int(random() % unsigned(count));
    }
    void strike()
    {
        static const char* const FAULTS[] = {"garbage %1",
                                             "six-fields %1",
                                             "silence %1",
                                             "ignore-next %1",
                                             "late-commands %1",
                                             "bootloader",
                                             "restart %1",
                                             "split-bytes %1",
                                             "ignore-commands %1",
                                             "lost-line-end %1",
                                             "nul %1",
                                             "invalid-utf8 %1",
                                             "doubled-letter %1",
                                             "merge %1",
                                             "babble 5000",
                                             "burst %1",
                                             "slow 3",
                                             "fast 4",
                                             "echo",
                                             "stuck-state D %1",
                                             "lone-cr %1",
                                             "wrong-letter %1 c"};
        QString error;
        const QString fault = QString(FAULTS[pick(int(std::size(FAULTS)))])
                                  .replace("%1", QString::number(1 + pick(12)));
        if (!set_fault(instrument, fault, error))
            qFatal("%s", qPrintable(error));
    }
    void send(const SwitchOff::Commands& commands)
    {
        for (const QByteArray& command : commands) {
            instrument.receive(command);
            sent << command;
        }
    }
    void run()
    {
        send(course.begin(0));
        for (int second = 1; second < 1000 && course.result == SwitchOff::Result::None; ++second) {
            if (pick(20) == 0)
                strike();
            const QByteArray wire = instrument.advance(1.0);
            const int cut = pick(wire.size() + 1);
            send(course.take(wire.left(cut)));
            send(course.take(wire.mid(cut)));
            send(course.pass(second * 1000));
        }
    }

    std::mt19937 random;
    SimulatedInstrument instrument;
    SwitchOff course;
    QVector<QByteArray> sent;
};
}  // namespace

class SwitchOffTest : public QObject
{
    Q_OBJECT

private slots:
    void it_sends_what_is_needed_data();
    void it_sends_what_is_needed();
    void a_line_may_come_in_pieces();
    void what_babbles_on_takes_no_memory();
    void a_time_in_which_nobody_looked_is_no_silence();
    void it_remembers_what_it_heard();
    void whatever_goes_wrong_off_means_off();
};

void SwitchOffTest::it_sends_what_is_needed_data()
{
    QTest::addColumn<QByteArray>("events");
    QTest::addColumn<QByteArray>("sent");
    QTest::addColumn<int>("result");
    const auto row = [](const char* name, const QByteArray& events, const QByteArray& sent,
                        SwitchOff::Result result) {
        QTest::newRow(name) << events << sent << int(result);
    };
    using Result = SwitchOff::Result;
    const QByteArray five = ".....";
    row("nothing yet", "", "4F", Result::None);
    row("off already", "OOO", "4F", Result::Off);
    row("two lines are not enough", "OO", "4F", Result::None);
    row("obeyed behind the first line", "DOOO", "4F", Result::Off);
    row("not in a row", "OODOO", "4F", Result::None);
    row("garbage between them", "OgOgO", "4F", Result::Off);
    row("every second other line", "DDDDDC", "4F|4F|4F|4F", Result::None);
    row("also with off lines between", "DODODODO", "4F|4F|4F", Result::None);
    row("an unknown letter is another", "xxOOO", "4F|4F", Result::Off);
    row("lower case is another", "ooOOO", "4F|4F", Result::Off);
    row("without limit", QByteArray("DD").repeated(500), "4F" + QByteArray("|4F").repeated(500),
        Result::None);
    row("nothing behind the end", "OOODDDD", "4F", Result::Off);
    row("four seconds of silence", "....", "4F", Result::None);
    row("five seconds of silence", five, "4F" + RESET, Result::None);
    row("five seconds of garbage", "g.g.g.g.g.", "4F" + RESET, Result::None);
    row("silence behind a line", "D" + five, "4F" + RESET, Result::None);
    row("a line in time", "....D....", "4F", Result::None);
    row("back after a reset", five + "..OOO", "4F" + RESET, Result::Off);
    row("three resets at most", five.repeated(11), "4F" + RESET.repeated(3), Result::None);
    row("three in all", five + "O" + five + "x" + five + "O" + five, "4F" + RESET.repeated(3),
        Result::None);
    row("59 seconds of silence", QByteArray(59, '.'), "4F" + RESET.repeated(3), Result::None);
    row("60 seconds of silence", QByteArray(60, '.'), "4F" + RESET.repeated(3), Result::Silent);
    row("60 seconds of garbage", QByteArray("g.").repeated(60), "4F" + RESET.repeated(3),
        Result::NotUnderstood);
    row("garbage before the silence", "g" + QByteArray(60, '.'), "4F" + RESET.repeated(3),
        Result::NotUnderstood);
    row("silence behind good lines", "OO" + QByteArray(60, '.'), "4F" + RESET.repeated(3),
        Result::Silent);
    row("nothing behind the silence", QByteArray(60, '.') + "DDDD.....", "4F" + RESET.repeated(3),
        Result::Silent);
}

void SwitchOffTest::it_sends_what_is_needed()
{
    QFETCH(QByteArray, events);
    QFETCH(int, result);
    Course course;
    course.run(events);
    QTEST(course.sent, "sent");
    QCOMPARE(int(course.course.result), result);
}

void SwitchOffTest::a_line_may_come_in_pieces()
{
    SwitchOff course;
    course.begin(0);
    const QByteArray lines = OFF_LINE.repeated(3);
    for (const char byte : lines) {
        QCOMPARE(course.result, SwitchOff::Result::None);
        course.take(QByteArray(1, byte));
    }
    QCOMPARE(course.result, SwitchOff::Result::Off);
}

void SwitchOffTest::what_babbles_on_takes_no_memory()
{
    SwitchOff course;
    course.begin(0);
    course.take(OFF_LINE.left(10));
    course.take(QByteArray(1000000, '9'));
    // The end of the old line is that of the babble.
    course.take(OFF_LINE.mid(10));
    QVERIFY(!course.heard);
    course.take(OFF_LINE.repeated(3));
    QCOMPARE(course.result, SwitchOff::Result::Off);
}

void SwitchOffTest::a_time_in_which_nobody_looked_is_no_silence()
{
    Course course;
    QVERIFY(course.course.pass(course.now_ms + 3600000).isEmpty());
    QCOMPARE(course.course.result, SwitchOff::Result::None);
    // Back in time is none either.
    QVERIFY(course.course.pass(0).isEmpty());
    QVERIFY(course.course.pass(2000).isEmpty());
    QCOMPARE(text_of(course.course.pass(3000)), RESET.mid(1));
}

void SwitchOffTest::it_remembers_what_it_heard()
{
    SwitchOff course;
    course.begin(0);
    course.take(DISCHARGING_LINE);
    QCOMPARE(course.first_state, Discharging);
    course.take(OFF_LINE.repeated(3));
    QVERIFY(course.heard);
    QCOMPARE(course.first_state, Discharging);
    QCOMPARE(course.last_state, Off);
    QCOMPARE(course.id, 7);
    QCOMPARE(course.voltage, 25.2);
    QCOMPARE(course.current, 0.0);
    QCOMPARE(course.other_lines, 1);
}

void SwitchOffTest::whatever_goes_wrong_off_means_off()
{
    int switched_off = 0;
    for (unsigned seed = 1; seed <= 1000; ++seed) {
        RandomRun run(seed);
        run.run();
        // A letter that sticks lies: nobody at the other end can see through it.
        const bool lies = run.instrument.faults.stuck_letter.active();
        if (run.course.result == SwitchOff::Result::Off && !lies)
            QVERIFY2(run.instrument.state == InstrumentState::Off,
                     qPrintable(QString::number(seed)));
        for (const QByteArray& command : qAsConst(run.sent))
            QVERIFY(command == "O" || command == QByteArray("UUUUUU\0\0\0\4", 10));
        QVERIFY(run.course.resets <= 3);
        switched_off += run.course.result == SwitchOff::Result::Off ? 1 : 0;
    }
    QVERIFY2(switched_off > 700, qPrintable(QString::number(switched_off)));
}

KEST_GUILESS_TEST(SwitchOffTest)
#include "tst_switch_off.moc"
