#include "watch/tells/event_json.h"

#include "watch/tells/telling.h"
#include "watch/tells/event_text.h"

#include <QFile>
#include <QJsonDocument>
#include <QUrl>

#include <cmath>

namespace
{
constexpr int FORM = 1;
constexpr int NORMAL_PRIORITY = 3;
constexpr int URGENT_PRIORITY = 5;
// The kernel takes no longer string for a process than 128 KiB; the JSON has the whole of it.
constexpr int LONGEST_VARIABLE = 32768;

struct ChangeKey
{
    Change change;
    const char* key;
};
constexpr ChangeKey CHANGES[] = {{Change::Begins, "begins"},
                                 {Change::Lasts, "lasts"},
                                 {Change::Over, "over"},
                                 {Change::Test, "test"}};

struct Figure
{
    const char* key;
    double TestFacts::*value;
};
constexpr Figure FIGURES[] = {{"volts", &TestFacts::volts},
                              {"amps", &TestFacts::amps},
                              {"amp_hours", &TestFacts::amp_hours},
                              {"milliohms", &TestFacts::milliohms},
                              {"end_error_share", &TestFacts::end_error}};

struct Words
{
    const char* key;
    QString TestFacts::*value;
};
constexpr Words WORDS[] = {{"battery", &TestFacts::battery},
                           {"serial_number", &TestFacts::serial_number},
                           {"phase", &TestFacts::phase},
                           {"reason", &TestFacts::reason}};

struct Moment
{
    const char* key;
    QDateTime TestFacts::*value;
};
constexpr Moment MOMENTS[] = {{"end_from", &TestFacts::end_from}, {"end_to", &TestFacts::end_to}};

QJsonValue known(double figure)
{
    return std::isfinite(figure) ? QJsonValue(figure) : QJsonValue();
}

QJsonValue known(bool is_known, qint64 number)
{
    return is_known ? QJsonValue(number) : QJsonValue();
}

/** With its distance from UTC, for whoever reads it elsewhere. */
QJsonValue local_iso(const QDateTime& time)
{
    if (!time.isValid())
        return {};
    const QDateTime local = time.toLocalTime();
    return local.toOffsetFromUtc(local.offsetFromUtc()).toString(Qt::ISODate);
}

QJsonValue stored_time(const QDateTime& time)
{
    return time.isValid() ? QJsonValue(time.toUTC().toString(Qt::ISODateWithMs)) : QJsonValue();
}

QDateTime time_of(const QJsonValue& stored)
{
    return QDateTime::fromString(stored.toString(), Qt::ISODateWithMs).toUTC();
}

QString file_url(const QByteArray& path)
{
    return "file://" + QString::fromLatin1(path.toPercentEncoding("/"));
}

void put_facts(QJsonObject& object, const TestFacts& facts)
{
    for (const Words& words : WORDS)
        object[words.key] = facts.*words.value;
    for (const Figure& figure : FIGURES)
        object[figure.key] = known(facts.*figure.value);
    object["cycle"] = known(facts.cycle > 0, facts.cycle);
    object["row_age_seconds"] = known(facts.row_age >= 0, facts.row_age);
}

TestFacts facts_of(const QJsonObject& object)
{
    TestFacts facts;
    for (const Words& words : WORDS)
        facts.*words.value = object[words.key].toString();
    for (const Figure& figure : FIGURES)
        facts.*figure.value = object[figure.key].toDouble(facts.*figure.value);
    for (const Moment& moment : MOMENTS)
        facts.*moment.value = time_of(object[moment.key]);
    facts.cycle = object["cycle"].toInt(facts.cycle);
    facts.row_age = qint64(object["row_age_seconds"].toDouble(double(facts.row_age)));
    return facts;
}

std::optional<Condition> condition_with(const QString& key)
{
    for (int i = 0; i <= int(Condition::WokeFromSleep); ++i)
        if (key == traits_of(Condition(i)).key)
            return Condition(i);
    return {};
}

std::optional<Change> change_of(const QString& key)
{
    for (const ChangeKey& row : CHANGES)
        if (key == row.key)
            return row.change;
    return {};
}

/** What a process may be given: no NUL in it, not endless, and cut between two characters. */
QByteArray variable(const QByteArray& name, QByteArray value)
{
    value.replace('\0', "\xEF\xBF\xBD");
    if (value.size() > LONGEST_VARIABLE) {
        int end = LONGEST_VARIABLE;
        while (end > 0 && (uchar(value[end]) & 0xC0U) == 0x80U)
            --end;
        value.truncate(end);
    }
    return "KEST_" + name + "=" + value;
}

QByteArray words_of(const QJsonValue& value)
{
    if (value.isBool())
        return value.toBool() ? "1" : "0";
    if (value.isDouble())
        return QByteArray::number(value.toDouble(), 'g', 12);
    return value.toString().toUtf8();
}
}  // namespace

QString change_key(Change change)
{
    return CHANGES[unsigned(change)].key;
}

QJsonObject event_json(const Event& event)
{
    const Situation& situation = event.situation;
    const bool is_test = event.change == Change::Test;
    const bool urgent = !is_test && has(situation.condition, URGENT);
    QJsonObject object = {
        {"version", FORM},
        {"id", event.number},
        {"event", change_key(event.change)},
        {"condition", is_test ? QJsonValue() : traits_of(situation.condition).key},
        {"urgent", urgent},
        {"priority", urgent && event.change != Change::Over ? URGENT_PRIORITY : NORMAL_PRIORITY},
        {"title", title_of(event)},
        {"message", message_of(event)},
        {"host", event.host},
        {"time", local_iso(event.time)},
        {"since", local_iso(situation.since)},
        {"detail", situation.detail},
        {"file", QFile::decodeName(situation.log)},
        {"file_url", situation.log.isEmpty() ? QJsonValue() : file_url(situation.log)},
    };
    put_facts(object, situation.facts);
    for (const Moment& moment : MOMENTS)
        object[moment.key] = local_iso(situation.facts.*moment.value);
    return object;
}

QJsonObject stored_event(const Event& event)
{
    const Situation& situation = event.situation;
    QJsonObject object = {
        {"id", event.number},
        {"event", change_key(event.change)},
        {"condition", traits_of(situation.condition).key},
        {"first", event.first},
        {"host", event.host},
        {"time", stored_time(event.time)},
        {"since", stored_time(situation.since)},
        {"detail", situation.detail},
        {"log", QString::fromLatin1(situation.log.toPercentEncoding("/ "))},
    };
    put_facts(object, situation.facts);
    for (const Moment& moment : MOMENTS)
        object[moment.key] = stored_time(situation.facts.*moment.value);
    return object;
}

std::optional<Event> event_of(const QJsonObject& stored)
{
    const std::optional<Change> change = change_of(stored["event"].toString());
    const std::optional<Condition> condition = condition_with(stored["condition"].toString());
    if (!change || !condition)
        return {};
    Event event;
    event.number = qint64(stored["id"].toDouble());
    event.change = *change;
    event.first = stored["first"].toBool(true);
    event.host = stored["host"].toString();
    event.time = time_of(stored["time"]);
    event.situation.condition = *condition;
    event.situation.log = QByteArray::fromPercentEncoding(stored["log"].toString().toLatin1());
    event.situation.since = time_of(stored["since"]);
    event.situation.detail = stored["detail"].toString();
    event.situation.facts = facts_of(stored);
    return event;
}

QByteArray one_line_json(const QJsonObject& object)
{
    QByteArray bytes = QJsonDocument(object).toJson(QJsonDocument::Compact);
    bytes.replace("\xC2\x85", "\\u0085");
    bytes.replace("\xE2\x80\xA8", "\\u2028");
    bytes.replace("\xE2\x80\xA9", "\\u2029");
    return bytes;
}

QList<QByteArray> event_environment(const Event& event)
{
    const QJsonObject object = event_json(event);
    QList<QByteArray> variables;
    for (auto value = object.begin(); value != object.end(); ++value)
        if (value.key() != "file" && value.key() != "version")
            variables << variable(value.key().toUpper().toUtf8(), words_of(value.value()));
    // In its bytes, so that a command can open it.
    variables << variable("FILE", event.situation.log);
    return variables;
}
