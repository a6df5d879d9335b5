#include "program_run.h"
#include "records/log_check.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

/** What the documents show is what the programs read and say. */
class LogDocumentsTest : public QObject
{
    Q_OBJECT

private slots:
    void the_log_of_the_format_is_exact();
    void the_events_of_the_format_are_read();
    void the_lines_for_pandas_work();
    void the_example_of_the_watt_hours_holds();
    void the_example_of_the_resistances_holds();
    void every_key_is_explained();
};

namespace
{
/** The lines of the indented block that begins with this line, without the indent. */
QByteArray block(const char* document, const QByteArray& first_line)
{
    const QByteArray text = content_of(source_file(document));
    QByteArray found;
    const int begin = text.indexOf("    " + first_line);
    for (const QByteArray& line : text.mid(begin).split('\n')) {
        if (!line.startsWith("    "))
            break;
        found += line.mid(4) + '\n';
    }
    return found;
}

const QByteArray DISCHARGE = "Kestrometer Log\nDischarge Number: 1\n";

LogFile checked(const QByteArray& log)
{
    const Place place;
    place.write("a.csv", log);
    LogFile file;
    if (!check_log(place.path("a.csv"), file))
        qFatal("The log cannot be read.");
    return file;
}

QStringList keys_of(const QJsonValue& value)
{
    QStringList keys;
    if (value.isArray())
        for (const QJsonValue item : value.toArray())
            keys << keys_of(item);
    const QJsonObject object = value.toObject();
    for (auto entry = object.begin(); entry != object.end(); ++entry)
        keys << entry.key() << keys_of(entry.value());
    keys.removeDuplicates();
    return keys;
}
}  // namespace

void LogDocumentsTest::the_log_of_the_format_is_exact()
{
    const LogFile file = checked(block("docs/log-format.md", "Kestrometer Log"));
    QVERIFY(file.accepted);
    QCOMPARE(file.warnings.size(), 1);
    QCOMPARE(file.warnings[0].text, QString("no event log beside it"));
    QCOMPARE(file.cycles.size(), 1);
    QCOMPARE(file.cycles[0].resistance.mean, 0.014 * 1000.0);
}

void LogDocumentsTest::the_events_of_the_format_are_read()
{
    QByteArray text = block("docs/log-format.md", "2020-04-03 09:15:02 Switching");
    QBuffer events(&text);
    events.open(QIODevice::ReadOnly | QIODevice::Text);
    const EventLog log = read_event_log(events);
    QCOMPARE(log.changes.size(), 3);
    QCOMPARE(log.changes[2].phase, QString("Recovering from IR Test"));
}

void LogDocumentsTest::the_lines_for_pandas_work()
{
    const Place place;
    place.write("Pack A_1042.csv", content_of(test_data("logs/current_one_cycle.csv")));
    for (const char* format : {"csv", "bdf", "xlsx", "json"})
        QCOMPARE(place.run({"export", "-f", format, "Pack A_1042.csv"}).status, 0);
    const QString document = content_of(source_file("docs/log-format.md"));
    const QString lines = document.section("```python\n", 1).section("```", 0, 0);
    QCOMPARE(lines.count("pandas.read") + lines.count("json.load"), 4);
    const Run run("/usr/bin/python3",
                  {"-c", lines + "print(len(tidy), len(bdf), len(cycle), len(rows))"},
                  place.path("."));
    QCOMPARE(run.complaints, QString());
    QCOMPARE(run.output, QString("6 3 3 3\n"));
}

void LogDocumentsTest::the_example_of_the_watt_hours_holds()
{
    const LogFile file = checked(DISCHARGE + block("docs/numbers.md", "1.0,0.003,40.00,10.00"));
    QCOMPARE(QString::number(file.cycles[0].watt_hours_live, 'f', 3), QString("0.351"));
    QCOMPARE(QString::number(file.cycles[0].watt_hours_error, 'f', 3), QString("0.020"));
    const QByteArray text = content_of(source_file("docs/numbers.md"));
    QVERIFY(text.contains("= 0.351, give or take 0.0005 x (38 + 2) = 0.020."));
    const LogFile sample = checked(content_of(test_data("logs/current_two_cycles.csv")));
    QCOMPARE(QString::number(sample.cycles[1].watt_hours_loaded, 'f', 0), QString("-348"));
    QVERIFY(text.contains("shows -348 Wh"));
}

void LogDocumentsTest::the_example_of_the_resistances_holds()
{
    Resistance resistance;
    for (const double milliohms : {10.0, 12.0, 17.0, -1.0})
        resistance.add(milliohms);
    QCOMPARE(QString::number(resistance.mean, 'f', 1), QString("9.5"));
    QCOMPARE(QString::number(resistance.spread, 'f', 1), QString("7.6"));
}

void LogDocumentsTest::every_key_is_explained()
{
    const Place place;
    place.write("a.csv", content_of(test_data("logs/current_one_cycle.csv")));
    place.write("a.txt", "2020-04-03 10:00:02 Switching to phase Charging because x\n");
    place.write("b.csv", content_of(test_data("logs/current_one_cycle.csv")) + "cut");
    QStringList keys;
    for (const char* command : {"info", "check", "repair"})
        keys << keys_of(place.run({command, "--json", "a.csv", "b.csv", "c.csv"}).json());
    place.run({"export", "-f", "bdf", "a.csv"});
    place.run({"export", "-f", "json", "a.csv"});
    for (const char* made : {"a.bdf.metadata.json", "a.json"})
        keys << keys_of(QJsonDocument::fromJson(content_of(place.path(made))).object());
    QVERIFY(keys.contains("watt_hours_live_error"));
    QVERIFY(keys.contains("left_out"));
    const QByteArray document = content_of(source_file("docs/json.md"));
    for (const QString& key : keys)
        QVERIFY2(document.contains("`" + key.toUtf8() + "`") ||
                     document.contains("\"" + key.toUtf8() + "\""),
                 qPrintable(key));
}

KEST_GUILESS_TEST(LogDocumentsTest)
#include "tst_log_documents.moc"
