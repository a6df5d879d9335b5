#include "common/distributor.h"
#include "config/tool_tips.h"
#include "support/console_capture.h"
#include "support/help_table.h"
#include "support/modal_answer.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QDomDocument>
#include <QTextDocument>
#include <QTextTable>
#include <QXmlStreamReader>
#include <QtTest>

namespace
{
const QString PATH = ":/help.html";

QString raw_document()
{
    return QString::fromUtf8(content_of(PATH));
}

/** The parsed document; a fault of its form fails the test. */
QDomElement parsed_document()
{
    QFile file(PATH);
    QDomDocument document;
    QString error;
    if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file, &error))
        qFatal("%s", qPrintable(error));
    return document.documentElement();
}

QStringList texts_of(const QString& tag)
{
    QStringList texts;
    const QDomNodeList nodes = parsed_document().elementsByTagName(tag);
    for (int i = 0; i < nodes.size(); ++i)
        texts.append(nodes.at(i).toElement().text());
    return texts;
}

/** The headings of all levels in order, each with its level before it, and each list as "dl". */
QStringList outline()
{
    QStringList lines;
    const QDomElement body = parsed_document().firstChildElement("body");
    for (QDomElement e = body.firstChildElement(); !e.isNull(); e = e.nextSiblingElement())
        lines.append(e.tagName().startsWith('h') ? e.tagName() + " " + e.text() : e.tagName());
    return lines;
}
}  // namespace

/** The manual, which is the source of the tooltips too. */
class HelpDocumentTest : public QObject
{
    Q_OBJECT

private slots:
    void it_is_well_formed();
    void every_entry_stands_word_for_word_and_in_order();
    void every_id_is_there_once_and_38_is_not();
    void it_loads_without_a_word();
    void every_text_becomes_a_tooltip();
    void the_sections_stand_in_order();
    void it_begins_with_title_logo_and_version();
    void the_product_page_is_the_distributors();
    void a_paragraph_outside_the_lists_has_no_id();
    void the_heading_of_delete_has_an_empty_id();
    void the_reader_shows_all_of_it_and_nothing_else();
    void headings_of_entries_are_bold();
};

void HelpDocumentTest::it_is_well_formed()
{
    QXmlStreamReader reader(content_of(PATH));
    int elements = 0;
    while (!reader.atEnd())
        if (reader.readNext() == QXmlStreamReader::StartElement)
            ++elements;
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    QVERIFY(elements > 2 * help_table().size());
}

void HelpDocumentTest::every_entry_stands_word_for_word_and_in_order()
{
    const QString raw = raw_document();
    int position = 0;
    QCOMPARE(help_table().size(), 64);
    for (const HelpEntry& entry : help_table()) {
        const QString heading = QString(">%1</dt>").arg(entry.heading);
        const QString text = QString("<dd id=\"%1\">%2</dd>").arg(entry.id).arg(entry.text);
        const int of_heading = raw.indexOf(heading, position);
        QVERIFY2(of_heading >= 0, qPrintable(heading));
        position = raw.indexOf(text, of_heading);
        QVERIFY2(position >= 0, qPrintable(text));
        // Between the two there is nothing but the break of the line.
        QCOMPARE(raw.mid(of_heading + heading.size(), position - of_heading - heading.size()),
                 QString("\n  "));
    }
    QCOMPARE(raw.count("<dd"), help_table().size());
    QCOMPARE(raw.count("<dt"), help_table().size());
}

void HelpDocumentTest::every_id_is_there_once_and_38_is_not()
{
    QList<int> ids;
    for (const HelpEntry& entry : help_table())
        ids.append(entry.id);
    std::sort(ids.begin(), ids.end());
    QList<int> expected;
    for (int id = 1; id <= 65; ++id)
        if (id != 38)
            expected.append(id);
    QCOMPARE(ids, expected);
}

void HelpDocumentTest::it_loads_without_a_word()
{
    ModalAnswer answers;
    ConsoleCapture console;
    ToolTips::tooltips.clear();
    ToolTips::load(PATH);
    QCOMPARE(console.text(), QByteArray());
    QVERIFY(answers.seen.empty());
    QCOMPARE(ToolTips::tooltips.size(), help_table().size());
}

void HelpDocumentTest::every_text_becomes_a_tooltip()
{
    ToolTips::tooltips.clear();
    ToolTips::load(PATH);
    for (const HelpEntry& entry : help_table())
        QCOMPARE("<qt>" + ToolTips::tooltips.value(entry.id) + "</qt>", entry.tooltip());
    QCOMPARE(ToolTips::tooltips.value(2), QString("Displays the Settings dialog.<br />See below."));
}

void HelpDocumentTest::the_sections_stand_in_order()
{
    const QStringList expected = {
        "img",
        "h1 Kest Battery Tester",
        "table",
        "h2 Main Window Controls",
        "h3 Main Menu",
        "dl",
        "h3 Test Station Scroll Window",
        "dl",
        "h3 Grid above the Chart Area",
        "dl",
        "h3 Features Common to Upper and Lower Charts",
        "dl",
        "h3 Features of the Lower Chart",
        "dl",
        "h2 New Test Station Dialog",
        "dl",
        "p",
        "h2 Settings Dialog",
        "dl",
        "h2 About Dialog",
        "dl",
        "h2 Test Station Controls",
        "dl",
    };
    QCOMPARE(outline(), expected);
}

void HelpDocumentTest::it_begins_with_title_logo_and_version()
{
    const QDomElement root = parsed_document();
    QCOMPARE(texts_of("title"), QStringList{"Kest Battery Tester Help"});
    QCOMPARE(texts_of("td"),
             (QStringList{"Document Version: 2020-04-01", "Kestrometer Product Page"}));
    const QDomElement logo = root.elementsByTagName("img").at(0).toElement();
    QCOMPARE(logo.attribute("src"), QString("qrc:/battery_tester_logo_267x67.png"));
    QCOMPARE(logo.attribute("style"), QString("float: right"));
    const QDomElement table = root.elementsByTagName("table").at(0).toElement();
    QCOMPARE(table.attribute("bgcolor"), QString("#942432"));
    QCOMPARE(texts_of("tr").size(), 1);
}

void HelpDocumentTest::the_product_page_is_the_distributors()
{
    const QDomNodeList links = parsed_document().elementsByTagName("a");
    QCOMPARE(links.size(), 1);
    QCOMPARE(links.at(0).toElement().attribute("href"), QString(Distributor::product_page));
    QVERIFY(QUrl(Distributor::product_page).path() == "/product-info/kestrometer.html");
}

void HelpDocumentTest::a_paragraph_outside_the_lists_has_no_id()
{
    const QDomNodeList paragraphs = parsed_document().elementsByTagName("p");
    QCOMPARE(paragraphs.size(), 1);
    QVERIFY(!paragraphs.at(0).toElement().hasAttribute("id"));
    QVERIFY(raw_document().contains(
        "<p>If you have selected a valid port, but the Kestrometer connected to it is not "
        "broadcasting its ID and not responding to commands, when you click the &ldquo;OK&rdquo; "
        "button you will be alerted to this fact, and you will have the option to cancel or "
        "continue anyway.</p>"));
}

void HelpDocumentTest::the_heading_of_delete_has_an_empty_id()
{
    const QDomNodeList headings = parsed_document().elementsByTagName("dt");
    QStringList with_id;
    for (int i = 0; i < headings.size(); ++i) {
        const QDomElement heading = headings.at(i).toElement();
        if (heading.hasAttribute("id"))
            with_id.append(heading.text() + "=" + heading.attribute("id"));
    }
    QCOMPARE(with_id, QStringList{"Delete (button)="});
}

void HelpDocumentTest::the_reader_shows_all_of_it_and_nothing_else()
{
    QTextDocument document;
    document.setHtml(raw_document());
    QString shown = document.toPlainText();
    // A picture is one character of its own.
    shown.remove(QChar::ObjectReplacementCharacter).replace(" \n", "\n");
    QVERIFY2(shown.trimmed().startsWith("Kest Battery Tester\n"), qPrintable(shown.left(80)));
    QVERIFY(shown.trimmed().endsWith("(charging or discharging)."));
    QCOMPARE(document.metaInformation(QTextDocument::DocumentTitle),
             QString("Kest Battery Tester Help"));
    const QStringList lines = shown.trimmed().split('\n');
    for (const HelpEntry& entry : help_table()) {
        const int heading = lines.indexOf(entry.shown_heading());
        QVERIFY2(heading >= 0, qPrintable(entry.shown_heading()));
        QVERIFY2(lines.contains(entry.shown_text()), qPrintable(entry.shown_text()));
    }
}

void HelpDocumentTest::headings_of_entries_are_bold()
{
    QTextDocument document;
    document.setHtml(raw_document());
    for (const HelpEntry& entry : help_table()) {
        const QTextCursor heading = document.find(entry.shown_heading());
        QVERIFY2(heading.charFormat().fontWeight() >= QFont::Bold,
                 qPrintable(entry.shown_heading()));
    }
    QVERIFY(document.find("Displays this help document.").charFormat().fontWeight() < QFont::Bold);
}

KEST_TEST(HelpDocumentTest)
#include "tst_help_document.moc"
