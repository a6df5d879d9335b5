#include "doctor/judge.h"

#include "machine_situations.h"

#include "device/telemetry_line.h"
#include "doctor/report_text.h"
#include "support/test_program.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QtTest>

namespace
{
/** "id|sentence|command" of each finding, worst first. */
QStringList lines_of(const QList<Finding>& findings)
{
    QStringList lines;
    for (const Finding& finding : findings)
        lines << finding.id + "|" + finding.sentence + "|" + finding.command;
    return lines;
}
}  // namespace

/** Every sentence of kest-doctor with the command that mends it. */
class DoctorJudgementTest : public QObject
{
    Q_OBJECT

private slots:
    void a_healthy_machine_has_no_trouble();
    void each_situation_has_its_sentence_and_command_data();
    void each_situation_has_its_sentence_and_command();
    void every_sentence_is_held_by_a_row();
    void a_place_takes_a_text_as_it_stands();
    void the_worst_comes_first();
    void what_is_left_alone_is_not_warned_about();
    void two_ports_are_told_apart();
    void a_text_is_quoted_for_the_shell_data();
    void a_text_is_quoted_for_the_shell();
    void a_reason_is_given_exactly_where_the_reader_refuses();
    void text_and_json_hold_the_same();
    void a_terminal_is_sent_no_control_characters();
};

void DoctorJudgementTest::a_healthy_machine_has_no_trouble()
{
    const QList<Finding> findings = judge(healthy());
    QVERIFY(!has_trouble(findings));
    QCOMPARE(findings_as_text(findings),
             "All is well.\n"
             "\n"
             "Also seen:\n"
             "   ttyUSB0: " +
                 ADAPTER_IN_WORDS +
                 ".\n"
                 "   On ttyUSB0 an instrument speaks: 24.10 V, 4.8 A, instrument 7, "
                 "discharging.\n");
}

void DoctorJudgementTest::each_situation_has_its_sentence_and_command_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("line");
    for (const Situation& situation : situations())
        QTest::newRow(situation.name) << situation.change << situation.line;
}

void DoctorJudgementTest::each_situation_has_its_sentence_and_command()
{
    QFETCH(Change, change);
    QFETCH(QString, line);
    Seen seen = healthy();
    change(seen);
    const QStringList lines = lines_of(judge(seen));
    QVERIFY2(lines.contains(line), qPrintable("\n" + lines.join('\n')));
    // Nothing else is made of it: what the healthy machine has to tell are notes.
    int troubles = 0;
    for (const Finding& finding : judge(seen))
        troubles += finding.severity == Severity::Trouble;
    QCOMPARE(troubles, rank_of(line.section('|', 0, 0)) < rank_of("port") ? 1 : 0);
}

void DoctorJudgementTest::every_sentence_is_held_by_a_row()
{
    QSet<QString> held;
    for (const Situation& situation : situations())
        held << situation.line.section('|', 0, 0);
    const QStringList ids = all_finding_ids();
    QCOMPARE(held, QSet<QString>(ids.begin(), ids.end()));
    QCOMPARE(held.size(), ids.size());
}

void DoctorJudgementTest::a_place_takes_a_text_as_it_stands()
{
    Seen seen = healthy();
    seen.ports[0].name = "%2";
    QVERIFY(lines_of(judge(seen)).contains("port|%2: " + ADAPTER_IN_WORDS + ".|"));
}

void DoctorJudgementTest::the_worst_comes_first()
{
    Seen seen = healthy();
    seen.clock.has_zone = false;
    seen.folders[0].exists = false;
    says_nothing(seen);
    seen.stores[1].state = StoreState::Unreadable;
    QStringList ids;
    for (const Finding& finding : judge(seen))
        ids << finding.id;
    QCOMPARE(ids, QStringList({"store-unreadable", "silent", "folder-missing", "no-zone", "port"}));
}

void DoctorJudgementTest::what_is_left_alone_is_not_warned_about()
{
    Seen seen = healthy();
    seen.modem_manager = true;
    seen.brltty = true;
    seen.ports[0].adapter.left_alone = true;
    QVERIFY(!has_trouble(judge(seen)));
}

void DoctorJudgementTest::two_ports_are_told_apart()
{
    Seen seen = healthy();
    seen.ports << seen.ports[0];
    seen.ports[1].name = "ttyUSB1";
    says_nothing(seen);
    const QStringList lines = lines_of(judge(seen));
    QVERIFY(lines.constFirst().startsWith("silent|ttyUSB0 was"));
    QVERIFY(lines.constLast().startsWith("instrument|On ttyUSB1 "));
}

void DoctorJudgementTest::a_text_is_quoted_for_the_shell_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("quoted");
    QTest::newRow("plain") << "/home/ann/Logs-2_a.b"
                           << "/home/ann/Logs-2_a.b";
    QTest::newRow("blank") << "a b"
                           << "'a b'";
    QTest::newRow("apostrophe") << "Ann's"
                                << "'Ann'\\''s'";
    QTest::newRow("command") << "$(reboot)"
                             << "'$(reboot)'";
    QTest::newRow("nothing") << ""
                             << "''";
}

void DoctorJudgementTest::a_text_is_quoted_for_the_shell()
{
    QFETCH(QString, text);
    QTEST(shell_quoted(text), "quoted");
}

void DoctorJudgementTest::a_reason_is_given_exactly_where_the_reader_refuses()
{
    const QStringList pieces = {"",    "x", "24.1", "-1", "inf", "1,5", "ID=7",
                                "ID=", "7", "0x1F", "D",  "OO",  "c",   "ID=4294967296"};
    QRandomGenerator random(13);
    int valid = 0;
    for (int i = 0; i < 20000; ++i) {
        QStringList fields = {"x", "24.1", "1", "", "", "ID=7", "D"};
        for (int change = random.bounded(4); change > 0; --change)
            fields[random.bounded(fields.size())] = pieces[random.bounded(pieces.size())];
        if (random.bounded(8) == 0)
            fields.removeLast();
        const QString line = fields.join('\t');
        double number = 0.0;
        int id = 0;
        KestrometerState state = Unknown;
        const bool read = read_telemetry_line(line, number, number, id, state);
        QVERIFY2(read == why_no_telemetry(line).isEmpty(), qPrintable(line));
        valid += read;
    }
    QVERIFY(valid > 1000 && valid < 19000);
}

void DoctorJudgementTest::text_and_json_hold_the_same()
{
    Seen seen = healthy();
    seen.folders[0].exists = false;
    const QList<Finding> findings = judge(seen);
    QVERIFY(findings_as_text(findings).startsWith(
        "1. The log folder /home/ann/logs is not there: nothing can be written to it.\n"
        "       mkdir -p /home/ann/logs\n"
        "\n"
        "Also seen:\n"));
    const QJsonObject document = QJsonDocument::fromJson(findings_as_json(findings)).object();
    QCOMPARE(document.keys(), QStringList({"findings", "healthy", "version"}));
    QCOMPARE(document["version"].toInt(), 1);
    QCOMPARE(document["healthy"].toBool(true), false);
    QCOMPARE(document["findings"].toArray().size(), 3);
    const QJsonObject first = document["findings"].toArray()[0].toObject();
    QCOMPARE(first, QJsonObject({{"id", "folder-missing"},
                                 {"severity", "trouble"},
                                 {"subject", "/home/ann/logs"},
                                 {"sentence", findings[0].sentence},
                                 {"command", "mkdir -p /home/ann/logs"}}));
}

void DoctorJudgementTest::a_terminal_is_sent_no_control_characters()
{
    Seen seen = healthy();
    seen.folders[0].path = "/a\x1B[31m";
    seen.folders[0].exists = false;
    const QString text = findings_as_text(judge(seen));
    QVERIFY(!text.contains(QChar(0x1B)));
    QVERIFY(text.contains(QString("/a%1[31m is").arg(QChar(0xFFFD))));
}

KEST_GUILESS_TEST(DoctorJudgementTest)
#include "tst_doctor_judgement.moc"
