#include "guard/sentences.h"

#include "support/test_program.h"

Q_DECLARE_METATYPE(Outcome)
Q_DECLARE_METATYPE(QVector<Fate>)

namespace
{
/** Instrument 7 on ttyUSB0, last heard with 24.44 V and off, at 03:14:07. */
Outcome outcome_of(Fate fate)
{
    Outcome outcome;
    outcome.line = "ttyUSB0";
    outcome.fate = fate;
    outcome.detail = "screen (process 4711)";
    outcome.id = 7;
    outcome.first_state = Off;
    outcome.last_state = Off;
    outcome.voltage = 24.444;
    outcome.current = 0.04;
    outcome.time = QDateTime(QDate(2026, 11, 22), QTime(3, 14, 7));
    return outcome;
}

Outcome unheard(Fate fate)
{
    Outcome outcome = outcome_of(fate);
    outcome.id = -1;
    return outcome;
}

Outcome last_seen(Fate fate, KestrometerState state)
{
    Outcome outcome = outcome_of(fate);
    outcome.first_state = state;
    outcome.last_state = fate == Fate::Off ? Off : state;
    return outcome;
}

Outcome after_a_reset()
{
    Outcome outcome = outcome_of(Fate::Off);
    outcome.resets = 1;
    return outcome;
}
}  // namespace

/** What a technician reads in the morning. */
class SentencesTest : public QObject
{
    Q_OBJECT

private slots:
    void an_ending_is_told_in_words_data();
    void an_ending_is_told_in_words();
    void a_line_gets_its_sentence_data();
    void a_line_gets_its_sentence();
    void the_last_word_says_whether_all_is_off_data();
    void the_last_word_says_whether_all_is_off();
    void a_program_that_ended_is_told_with_its_lines();
    void a_frozen_program_is_told_with_what_is_done();
    void disobedience_asks_for_a_hand();
};

void SentencesTest::an_ending_is_told_in_words_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("signal");
    QTest::addColumn<QString>("words");
    QTest::newRow("killed") << 0 << 9
                            << "was killed (signal 9: by somebody, or by the system because memory "
                               "ran out)";
    QTest::newRow("bad address") << 0 << 11 << "crashed (signal 11, a bad address)";
    QTest::newRow("bus error") << 0 << 7 << "crashed (signal 7, a bus error)";
    QTest::newRow("abort") << 0 << 6 << "gave up (signal 6, it aborted itself)";
    QTest::newRow("arithmetic") << 0 << 8 << "crashed (signal 8, arithmetic)";
    QTest::newRow("instruction") << 0 << 4 << "crashed (signal 4, a bad instruction)";
    QTest::newRow("terminated") << 0 << 15 << "was ended (signal 15)";
    QTest::newRow("hung up") << 0 << 1 << "was ended (signal 1, its terminal went)";
    QTest::newRow("interrupted") << 0 << 2 << "was ended (signal 2, Ctrl-C)";
    QTest::newRow("quit") << 0 << 3 << "was ended (signal 3)";
    QTest::newRow("another signal") << 0 << 31 << "was ended by signal 31";
    QTest::newRow("status") << 1 << 0 << "ended with status 1";
}

void SentencesTest::an_ending_is_told_in_words()
{
    QFETCH(int, status);
    QFETCH(int, signal);
    Ending ending;
    ending.status = status;
    ending.signal = signal;
    QTEST(Sentences::ending(ending), "words");
}

void SentencesTest::a_line_gets_its_sentence_data()
{
    QTest::addColumn<Outcome>("outcome");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char* name, const Outcome& outcome, const char* sentence) {
        QTest::newRow(name) << outcome << QString(sentence);
    };
    row("off", outcome_of(Fate::Off), "Instrument 7 on ttyUSB0 is off: 24.44 V, 0.0 A.");
    row("off at last", last_seen(Fate::Off, Discharging),
        "Instrument 7 on ttyUSB0 was still discharging; it is off since 03:14:07: 24.44 V, 0.0 A.");
    row("off from a charge", last_seen(Fate::Off, Charging),
        "Instrument 7 on ttyUSB0 was still charging; it is off since 03:14:07: 24.44 V, 0.0 A.");
    row("off from a letter that nobody knows", last_seen(Fate::Off, Unknown),
        "Instrument 7 on ttyUSB0 was still in a state that nobody knows; it is off since 03:14:07: "
        "24.44 V, 0.0 A.");
    row("reset", after_a_reset(),
        "Instrument 7 on ttyUSB0 is off: 24.44 V, 0.0 A. It had to be reset.");
    row("silent", unheard(Fate::Silent),
        "ttyUSB0 has been silent for 60 seconds. Whether its instrument is off, nobody knows. "
        "Unplug the pack.");
    row("fallen silent", last_seen(Fate::Silent, Discharging),
        "ttyUSB0 has been silent for 60 seconds. Instrument 7 on ttyUSB0 was last discharging. "
        "Unplug the pack.");
    row("not understood", unheard(Fate::NotUnderstood),
        "What speaks on ttyUSB0 has sent no valid line for 60 seconds. Whether its instrument is "
        "off, nobody knows. Unplug the pack.");
    row("gone", unheard(Fate::Gone),
        "ttyUSB0 is gone, and its instrument keeps its last command. Unplug the pack.");
    row("changed", unheard(Fate::Changed),
        "ttyUSB0 is another device now, and was told nothing. The instrument that was there keeps "
        "its last command: unplug its pack.");
    row("held", unheard(Fate::Held),
        "ttyUSB0 is held by screen (process 4711) and was left alone. Look whether its instrument "
        "is off, or unplug the pack.");
    row("refused", unheard(Fate::Refused),
        "ttyUSB0 cannot be opened (screen (process 4711)). Whether its instrument is off, nobody "
        "knows. Unplug the pack.");
    row("vanished", last_seen(Fate::Vanished, Charging),
        "ttyUSB0 vanished before its instrument was seen to be off. Instrument 7 on ttyUSB0 was "
        "last charging. Unplug the pack.");
    row("lost", unheard(Fate::Lost),
        "ttyUSB0 was gone already when the program ended, and its instrument keeps its last "
        "command. Unplug the pack.");
    row("left", last_seen(Fate::Left, Discharging),
        "ttyUSB0 was left as it is, as Ctrl-C asked. Instrument 7 on ttyUSB0 was last discharging. "
        "Unplug the pack.");
    row("unheard", unheard(Fate::Unheard),
        "No instrument speaks on ttyUSB0; nothing was sent there.");
    row("in use", unheard(Fate::InUse),
        "ttyUSB0 is in use by screen (process 4711) and was left alone.");
    row("no port", unheard(Fate::NoPort), "ttyUSB0 is no serial port of this machine.");
}

void SentencesTest::a_line_gets_its_sentence()
{
    QFETCH(Outcome, outcome);
    QTEST(Sentences::outcome(outcome), "sentence");
}

void SentencesTest::the_last_word_says_whether_all_is_off_data()
{
    QTest::addColumn<QVector<Fate>>("fates");
    QTest::addColumn<QString>("last_word");
    const auto row = [](const char* name, const QVector<Fate>& fates, const char* last_word) {
        QTest::newRow(name) << fates << QString(last_word);
    };
    for (const Fate fate :
         {Fate::Silent, Fate::NotUnderstood, Fate::Gone, Fate::Changed, Fate::Held, Fate::Refused,
          Fate::Vanished, Fate::Lost, Fate::Left, Fate::NoPort})
        row(qPrintable(QString("bad %1").arg(int(fate))), {Fate::Off, fate},
            "NOT all is off: see to line1 now.");
    row("all off", {Fate::Off, Fate::Off}, "All is off.");
    row("one does not speak", {Fate::Unheard, Fate::Off}, "All is off.");
    row("none speaks", {Fate::Unheard, Fate::Unheard}, "No instrument speaks on a free port.");
    row("one is in use", {Fate::Off, Fate::InUse},
        "All that spoke on a free port is off. Still in use: line1.");
    row("none speaks, one is in use", {Fate::Unheard, Fate::InUse},
        "No instrument speaks on a free port.");
    row("two are bad", {Fate::Silent, Fate::Off, Fate::InUse, Fate::Gone},
        "NOT all is off: see to line0, line3 now.");
}

void SentencesTest::the_last_word_says_whether_all_is_off()
{
    QFETCH(QVector<Fate>, fates);
    QVector<Outcome> outcomes;
    for (int i = 0; i < fates.size(); ++i) {
        Outcome outcome = outcome_of(fates[i]);
        outcome.line = QString("line%1").arg(i);
        outcomes << outcome;
    }
    QTEST(Sentences::conclusion(outcomes), "last_word");
}

void SentencesTest::a_program_that_ended_is_told_with_its_lines()
{
    Ending ending;
    ending.status = 1;
    QCOMPARE(Sentences::program_ended("kest-battery-tester", ending, {"ttyUSB0", "ttyUSB1"}),
             QString("kest-battery-tester ended with status 1 while it held ttyUSB0, ttyUSB1. "
                     "Switching off what is there."));
    QCOMPARE(Sentences::program_ended("kest-battery-tester", ending, {}),
             QString("kest-battery-tester ended with status 1 and held no instrument."));
    QCOMPARE(Sentences::program_ended_unseen("kest-battery-tester", ending),
             QString("kest-battery-tester ended with status 1. Nobody could see which instruments "
                     "it held: look whether each is off, or unplug the packs."));
}

void SentencesTest::a_frozen_program_is_told_with_what_is_done()
{
    const QString frozen =
        "kest-battery-tester is frozen: for 60 seconds it has read nothing of what "
        "its instruments say. ";
    QCOMPARE(Sentences::frozen("kest-battery-tester", 60, true),
             frozen + "It is ended now, and its instruments are switched off.");
    QCOMPARE(Sentences::frozen("kest-battery-tester", 60, false),
             frozen +
                 "Its instruments keep their last command. End it, and they are switched off.");
}

void SentencesTest::disobedience_asks_for_a_hand()
{
    QCOMPARE(Sentences::disobeyed(last_seen(Fate::Lost, Discharging)),
             QString("Instrument 7 on ttyUSB0 does not obey: told to switch off, it is still "
                     "discharging. Unplug the pack. It will be told again until it is off."));
}

KEST_GUILESS_TEST(SentencesTest)
#include "tst_sentences.moc"
