#include "support/golden_file.h"
#include "support/test_program.h"
#include "watch/tells/event_json.h"
#include "watch/tells/event_text.h"
#include "watch/tells/mail_text.h"
#include "watch/tells/telling.h"
#include "watch_events.h"

#include <QJsonDocument>
#include <QRegularExpression>
#include <QtTest>

/** What people and programs read of an event. */
class WatchTextsTest : public QObject
{
    Q_OBJECT

private slots:
    void all_messages();
    void the_event_as_json();
    void what_is_not_known_is_left_out();
    void what_has_just_begun_has_no_duration();
    void a_reason_ends_as_one_sentence();
    void a_pack_without_a_name_goes_by_its_log();
    void durations_data();
    void durations();
    void an_event_survives_the_memory_whole();
    void a_hostile_name_stays_a_name_data();
    void a_hostile_name_stays_a_name();
    void a_mail_is_in_form();
    void a_variable_is_not_endless();
};

namespace
{
QStringList lines_of(const QString& text)
{
    static const QRegularExpression separators("[\\r\\n\\x{85}\\x{2028}\\x{2029}\\x{b}\\x{c}]");
    return text.split(separators);
}

/** A mail's header back to the text that it stands for. */
QString decoded(const QByteArray& header)
{
    static const QRegularExpression word("=\\?UTF-8\\?B\\?([A-Za-z0-9+/=]*)\\?=(?:\\n )?");
    QByteArray bytes;
    int end = 0;
    QRegularExpressionMatchIterator words = word.globalMatch(header);
    while (words.hasNext()) {
        const QRegularExpressionMatch match = words.next();
        if (match.capturedStart() != end)
            return "not adjacent";
        const QByteArray part = QByteArray::fromBase64(match.captured(1).toLatin1());
        if (QString::fromUtf8(part).toUtf8() != part)
            return "cut in a character";
        bytes += part;
        end = match.capturedEnd();
    }
    return end == 0 ? QString(header) : QString::fromUtf8(bytes);
}
}  // namespace

/** To be read as whoever gets them at night would. */
void WatchTextsTest::all_messages()
{
    QByteArray all;
    for (int i = 0; i <= int(Condition::WokeFromSleep); ++i)
        for (const Change change : {Change::Begins, Change::Lasts, Change::Over}) {
            const Condition condition = Condition(i);
            if (!has(condition, TOLD) || (change != Change::Begins && !lasts(condition)))
                continue;
            const Event event = event_of_condition(condition, change);
            all += title_of(event).toUtf8() + "\n" + message_of(event).toUtf8() + "\n\n";
        }
    Event night = event_of_condition(Condition::WaitsForOperator, Change::Over);
    night.first = true;
    all += title_of(night).toUtf8() + "\n" + message_of(night).toUtf8() + "\n\n";
    Event put_away = event_of_condition(Condition::Ended);
    put_away.situation.facts.phase = "Done";
    all += title_of(put_away).toUtf8() + "\n" + message_of(put_away).toUtf8() + "\n\n";
    Event test;
    test.change = Change::Test;
    test.host = "bench";
    all += title_of(test).toUtf8() + "\n" + message_of(test).toUtf8() + "\n";
    QCOMPARE(difference_from_golden("watch/messages.txt", all), QString());
}

void WatchTextsTest::the_event_as_json()
{
    const QJsonObject object = event_json(event_of_condition(Condition::NoCurrent));
    QCOMPARE(difference_from_golden("watch/event.json", QJsonDocument(object).toJson()), QString());
}

void WatchTextsTest::what_is_not_known_is_left_out()
{
    Event event = event_of_condition(Condition::ProgramGone);
    event.situation.facts = TestFacts();
    event.situation.since = QDateTime();
    QCOMPARE(message_of(event),
             QString("The program that wrote this log has ended, and the test was not done. The "
                     "instrument keeps its last command: switch it off by hand.\n"
                     "Log: /logs/Pack A_1042.csv"));
    const QJsonObject object = event_json(event);
    for (const char* key : {"volts", "amps", "amp_hours", "milliohms", "cycle", "row_age_seconds",
                            "since", "end_from", "end_to", "end_error_share"})
        QVERIFY2(object[key].isNull(), key);
    for (const QByteArray& variable : event_environment(event))
        QVERIFY2(!variable.contains("nan"), variable.constData());
}

void WatchTextsTest::what_has_just_begun_has_no_duration()
{
    Event event = event_of_condition(Condition::Done);
    event.time = event.situation.since.addSecs(59);
    QVERIFY(message_of(event).contains("\nSince 2026-11-22 02:14.\n"));
    event.time = event.time.addSecs(1);
    QVERIFY(message_of(event).contains("\nSince 2026-11-22 02:14 (1 min).\n"));
}

void WatchTextsTest::a_reason_ends_as_one_sentence()
{
    Event event = event_of_condition(Condition::Done);
    event.situation.facts.reason = "User clicked 'Start'.";
    QVERIFY(message_of(event).contains("\nLast change: User clicked 'Start'.\n"));
}

void WatchTextsTest::a_pack_without_a_name_goes_by_its_log()
{
    Event event = event_of_condition(Condition::Done);
    event.situation.facts = TestFacts();
    QCOMPARE(name_of(event), QString("Pack A_1042"));
}

void WatchTextsTest::durations_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("text");
    add_row("before its time", -3LL, "0 s");
    add_row("seconds", 59LL, "59 s");
    add_row("a minute", 60LL, "1 min");
    add_row("minutes", 3599LL, "59 min");
    add_row("an hour", 3600LL, "1 h 00 min");
    add_row("hours", 86399LL, "23 h 59 min");
    add_row("a day", 86400LL, "1 d 00 h");
    add_row("days", 10LL * 86400 + 7200, "10 d 02 h");
}

void WatchTextsTest::durations()
{
    QFETCH(qint64, seconds);
    QTEST(duration_text(seconds), "text");
}

void WatchTextsTest::an_event_survives_the_memory_whole()
{
    for (const HostileName& hostile : hostile_names()) {
        const Event event = event_named(hostile.name);
        const QByteArray document = QJsonDocument(stored_event(event)).toJson();
        const std::optional<Event> read = event_of(QJsonDocument::fromJson(document).object());
        QVERIFY2(read.has_value(), hostile.what);
        QCOMPARE(read->number, event.number);
        QCOMPARE(read->situation.log, event.situation.log);
        QCOMPARE(read->situation.facts.battery, event.situation.facts.battery);
        QCOMPARE(read->time, event.time);
        QCOMPARE(event_json(*read), event_json(event));
    }
}

void WatchTextsTest::a_hostile_name_stays_a_name_data()
{
    QTest::addColumn<QString>("name");
    for (const HostileName& hostile : hostile_names())
        QTest::newRow(hostile.what) << hostile.name;
}

void WatchTextsTest::a_hostile_name_stays_a_name()
{
    QFETCH(QString, name);
    const Event event = event_named(name);
    const QString title = title_of(event);
    QCOMPARE(lines_of(title).size(), 1);
    QVERIFY(title.contains(visible(name)));
    QCOMPARE(lines_of(message_of(event)).size(),
             lines_of(message_of(event_named("Pack A"))).size());
    QCOMPARE(QString::fromUtf8(title.toUtf8()), title);

    const QByteArray json = one_line_json(event_json(event));
    QCOMPARE(lines_of(QString::fromUtf8(json)).size(), 1);
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    QCOMPARE(object["battery"].toString(), name);
    QCOMPARE(object["file_url"].toString(), QString("file:///logs/not%20%FF%20UTF-8%0A.csv"));

    const QList<QByteArray> variables = event_environment(event);
    QVERIFY(variables.contains("KEST_BATTERY=" + name.toUtf8().replace('\0', "\xEF\xBF\xBD")));
    QVERIFY(variables.contains(QByteArray("KEST_FILE=/logs/not \xFF UTF-8\n.csv")));

    const QByteArray mail = mail_of(event, "anna@example.org");
    const int head = mail.indexOf("\n\n");
    const QByteArray subject = mail.left(head).split('\n').mid(1).join('\n');
    QCOMPARE(mail.count("Subject:"), 1);
    QVERIFY(!mail.left(head).contains("Bcc"));
    QCOMPARE(decoded(subject.mid(9, subject.indexOf("\nDate: ") - 9)), title);
    QCOMPARE(QString::fromUtf8(QByteArray::fromBase64(mail.mid(head))), message_of(event) + "\n");
    for (const QByteArray& line : mail.split('\n'))
        QVERIFY2(line.size() <= 85, line.constData());
}

void WatchTextsTest::a_mail_is_in_form()
{
    const QByteArray mail = mail_of(event_of_condition(Condition::Done), "anna@example.org");
    QCOMPARE(mail.left(mail.indexOf("\n\n")), QByteArray("To: anna@example.org\n"
                                                         "Subject: Pack A 1042: is done\n"
                                                         "Date: Sun, 22 Nov 2026 05:19:00 +0000\n"
                                                         "Auto-Submitted: auto-generated\n"
                                                         "MIME-Version: 1.0\n"
                                                         "Content-Type: text/plain; charset=utf-8\n"
                                                         "Content-Transfer-Encoding: base64"));
}

void WatchTextsTest::a_variable_is_not_endless()
{
    const QString name = QString::fromUtf8("\u00e4").repeated(100000);
    const QList<QByteArray> variables = event_environment(event_named(name));
    for (const QByteArray& variable : variables) {
        QVERIFY(variable.size() < 33000);
        if (variable.startsWith("KEST_BATTERY="))
            QVERIFY(name.startsWith(QString::fromUtf8(variable.mid(13))));
    }
}

KEST_GUILESS_TEST(WatchTextsTest)
#include "tst_watch_texts.moc"
