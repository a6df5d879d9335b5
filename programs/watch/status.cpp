#include "watch/status.h"

#include "common/time_span.h"
#include "programs/common/text_table.h"
#include "records/event_line.h"

#include <QFileInfo>
#include <QJsonArray>

#include <algorithm>
#include <cmath>

namespace
{
constexpr int LONGEST_NAME = 40;

constexpr Condition TROUBLES[] = {
    Condition::InstrumentSilent, Condition::NoCurrent,
    Condition::StepDoesNotEnd,   Condition::ResistanceTestsFail,
    Condition::ProgramGone,      Condition::PerhapsEnded,
    Condition::DiskLow,          Condition::DiskFull,
    Condition::ClockStepped,     Condition::WokeFromSleep,
};

bool is_of_machine(const Situation& situation)
{
    return situation.condition >= Condition::DiskLow;
}

/** Fit for a terminal and for a column: nothing in it moves the cursor. */
QString plain(const QString& text)
{
    QString result = text.left(LONGEST_NAME);
    for (QChar& character : result)
        if (!character.isPrint() || character.category() == QChar::Separator_Line)
            character = QChar::ReplacementCharacter;
    return text.size() > LONGEST_NAME ? result + QChar(0x2026) : result;
}

QString fixed(double value, int decimals)
{
    return std::isnan(value) ? QString("-") : QString::number(value, 'f', decimals);
}

QString clock_text(const QDateTime& time)
{
    return time.toLocalTime().toString("yyyy-MM-dd hh:mm");
}

QString end_text(const TestFacts& facts)
{
    if (!facts.end_from.isValid() || !facts.end_to.isValid())
        return "-";
    const QString range = clock_text(facts.end_from) + " to " + clock_text(facts.end_to);
    return std::isnan(facts.end_error) ? range
                                       : QString("%1 (%2 % off before)")
                                             .arg(range)
                                             .arg(std::round(facts.end_error * 100.0));
}

/** The situations of one log behind each other, as a look has them. */
QList<QList<Situation>> tests_in(const Look& look)
{
    QList<QList<Situation>> tests;
    for (const Situation& situation : look.situations) {
        if (is_of_machine(situation))
            continue;
        if (tests.isEmpty() || tests.last().first().log != situation.log)
            tests.append(QList<Situation>());
        tests.last() << situation;
    }
    return tests;
}

bool was_done(const TestFacts& facts)
{
    return phase_of(facts.phase) == TestPhase::Done;
}

/** "discharging, no current flows"; what ended after it was done is "done, ended". */
QString state_text(const QList<Situation>& test)
{
    QStringList words;
    if (test.first().condition == Condition::Ended && was_done(test.first().facts))
        words << traits_of(Condition::Done).text;
    for (const Situation& situation : test)
        words << traits_of(situation.condition).text;
    return words.join(", ");
}

QStringList row_of(const QList<Situation>& test)
{
    const TestFacts& facts = test.first().facts;
    return {plain(facts.battery),
            plain(facts.serial_number),
            state_text(test),
            facts.cycle > 0 ? QString::number(facts.cycle) : QString("-"),
            fixed(facts.volts, 2),
            fixed(facts.amps, 2),
            fixed(facts.amp_hours, 3),
            fixed(facts.milliohms, 1),
            facts.row_age < 0 ? QString("-") : format_time_span(facts.row_age),
            end_text(facts)};
}

QJsonValue known(double value)
{
    return std::isnan(value) ? QJsonValue() : QJsonValue(value);
}

/** With its distance from UTC, for whoever reads it elsewhere. */
QJsonValue iso(const QDateTime& time)
{
    if (!time.isValid())
        return QJsonValue();
    const QDateTime local = time.toLocalTime();
    return local.toOffsetFromUtc(local.offsetFromUtc()).toString(Qt::ISODate);
}

void put_file(QJsonObject& object, const char* key, const QByteArray& path)
{
    object[key] = QFile::decodeName(path);
    object[QString(key) + "_url"] = "file://" + QString::fromLatin1(path.toPercentEncoding("/"));
}

QJsonObject condition_json(const Situation& situation)
{
    return {{"condition", traits_of(situation.condition).key},
            {"since", iso(situation.since)},
            {"detail", situation.detail}};
}

QJsonObject test_json(const QList<Situation>& test)
{
    const TestFacts& facts = test.first().facts;
    QJsonObject object = {
        {"battery", facts.battery},
        {"serial_number", facts.serial_number},
        {"phase", facts.phase},
        {"reason", facts.reason},
        {"cycle", facts.cycle > 0 ? QJsonValue(facts.cycle) : QJsonValue()},
        {"volts", known(facts.volts)},
        {"amps", known(facts.amps)},
        {"amp_hours", known(facts.amp_hours)},
        {"milliohms", known(facts.milliohms)},
        {"row_age_seconds", facts.row_age >= 0 ? QJsonValue(facts.row_age) : QJsonValue()},
        {"end_from", iso(facts.end_from)},
        {"end_to", iso(facts.end_to)},
        {"end_error_share", known(facts.end_error)},
    };
    put_file(object, "file", test.first().log);
    QJsonArray conditions;
    for (const Situation& situation : test)
        conditions << condition_json(situation);
    object["conditions"] = conditions;
    return object;
}
}  // namespace

QString status_text(const Look& look)
{
    const QList<QList<Situation>> tests = tests_in(look);
    TextTable table({"Battery", "Serial number", "State", ">Cycle", ">V", ">A", ">Ah", ">mOhm",
                     ">Last row", "Expected end"});
    for (const QList<Situation>& test : tests)
        table.add(row_of(test));
    QString text = tests.isEmpty() ? QString("No test runs.\n") : table.text();
    for (const Situation& situation : look.situations)
        if (is_of_machine(situation))
            text += QString("%1: %2. %3\n")
                        .arg(QFile::decodeName(situation.log), traits_of(situation.condition).text,
                             situation.detail);
    return text;
}

QJsonObject status_json(const Look& look, const QStringList& folders, const QDateTime& now)
{
    QJsonArray tests;
    for (const QList<Situation>& test : tests_in(look))
        tests << test_json(test);
    QJsonArray machine;
    for (const Situation& situation : look.situations) {
        if (!is_of_machine(situation))
            continue;
        QJsonObject object = condition_json(situation);
        put_file(object, "folder", situation.log);
        machine << object;
    }
    return {{"version", 1},
            {"time", iso(now)},
            {"folders", QJsonArray::fromStringList(folders)},
            {"tests", tests},
            {"machine", machine}};
}

bool has_trouble(const Look& look)
{
    return std::any_of(look.situations.begin(), look.situations.end(), [](const Situation& found) {
        return std::find(std::begin(TROUBLES), std::end(TROUBLES), found.condition) !=
               std::end(TROUBLES);
    });
}
