#include "config/tool_tips.h"
#include "support/console_capture.h"
#include "support/modal_answer.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QLabel>
#include <QTextDocument>
#include <QtTest>

namespace
{
/** Loads a document of these entries into an empty map, and records what comes of it. */
struct Document
{
    explicit Document(const QByteArray& entries)
    {
        ToolTips::tooltips.clear();
        ToolTips::used_tooltip_ids.clear();
        load_also("<html><body><dl>" + entries + "</dl></body></html>");
    }

    void load_also(const QByteArray& content)
    {
        const QString path = folder.filePath("help.html");
        if (!write_file(path, content))
            qFatal("The document of the test cannot be written.");
        ConsoleCapture console;
        ToolTips::load(path);
        printed += console.text();
    }

    /** The errors shown since the last call. */
    QStringList errors()
    {
        QStringList texts;
        for (const SeenBox& box : answers.seen)
            texts.append(box.caption + ": " + box.text);
        answers.seen.clear();
        return texts;
    }

    QTemporaryDir folder;
    ModalAnswer answers;
    QByteArray printed;
};

const QMap<int, QString> NOTHING;
}  // namespace

class ToolTipsTest : public QObject
{
    Q_OBJECT

private slots:
    void a_text_is_kept_by_its_id();
    void each_sentence_gets_a_line_of_its_own_data();
    void each_sentence_gets_a_line_of_its_own();
    void only_dd_elements_count();
    void markup_within_a_text_is_dropped();
    void entities_of_the_document_are_resolved();
    void an_id_is_a_number_in_any_radix_data();
    void an_id_is_a_number_in_any_radix();
    void a_text_without_id_is_told_on_the_console();
    void a_bad_id_is_told_on_the_console_data();
    void a_bad_id_is_told_on_the_console();
    void a_second_definition_is_shown_and_wins();
    void a_second_document_adds_to_the_first();
    void a_double_quote_is_shown_and_kept();
    void both_faults_of_one_text_are_shown_in_turn();
    void no_document_gives_no_texts_data();
    void no_document_gives_no_texts();
    void a_missing_file_gives_no_texts();
    void a_widget_gets_its_text_as_rich_text();
    void a_missing_id_is_shown_and_leaves_the_widget();
    void ids_handed_out_are_remembered();
    void widgets_share_one_copy_of_a_text();
    void a_text_defined_anew_reaches_the_widgets_that_ask_then();
    void a_thousand_texts_and_a_long_one_are_taken();
};

void ToolTipsTest::a_text_is_kept_by_its_id()
{
    Document document("<dt>Start (button)</dt><dd id=\"30\">Starts a test</dd>"
                      "<dt>X (button)</dt><dd id=\"34\">Close the test station.</dd>");
    QCOMPARE(ToolTips::tooltips,
             (QMap<int, QString>{{30, "Starts a test"}, {34, "Close the test station."}}));
    QCOMPARE(document.errors(), QStringList());
    QCOMPARE(document.printed, QByteArray());
}

void ToolTipsTest::each_sentence_gets_a_line_of_its_own_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("tooltip");

    const auto row = [](const char* name, const char* text, const char* tooltip) {
        QTest::newRow(name) << QByteArray(text) << QString(tooltip);
    };
    row("one", "One sentence.", "One sentence.");
    row("two", "One. Two.", "One.<br />Two.");
    row("two blanks", "One.  Two.", "One.<br /> Two.");
    row("a blank at the end", "One. ", "One.<br />");
    row("abbreviations too", "Current vs. Ah, e.g. 5", "Current vs.<br />Ah, e.g.<br />5");
    row("no blank behind it", "File.cfg, 0.5 V,\nOne.\nTwo", "File.cfg, 0.5 V,\nOne.\nTwo");
    row("other ends", "One! Two? Three", "One! Two? Three");
    row("nothing", "", "");
}

void ToolTipsTest::each_sentence_gets_a_line_of_its_own()
{
    QFETCH(QByteArray, text);
    Document document("<dd id=\"1\">" + text + "</dd>");
    QTEST(ToolTips::tooltips.value(1), "tooltip");
    QVERIFY(ToolTips::tooltips.contains(1));
}

void ToolTipsTest::only_dd_elements_count()
{
    Document document("<dt id=\"\">Delete (button)</dt><dt id=\"7\">a heading</dt>"
                      "<p id=\"8\">a paragraph</p><div><dd id=\"9\">deep inside</dd></div>");
    QCOMPARE(ToolTips::tooltips, (QMap<int, QString>{{9, "deep inside"}}));
    QCOMPARE(document.printed, QByteArray());
}

void ToolTipsTest::markup_within_a_text_is_dropped()
{
    Document document("<dd id=\"13\">are not (or <i>were</i> not) <!-- why --> collected</dd>");
    QCOMPARE(ToolTips::tooltips.value(13), QString("are not (or were not)  collected"));
}

void ToolTipsTest::entities_of_the_document_are_resolved()
{
    Document document("");
    document.load_also("<!DOCTYPE html [<!ENTITY ldquo \"&#8220;\">]><html>"
                       "<dd id=\"1\">&ldquo;off&#8221; &amp; &#x25bc; File->Settings</dd></html>");
    QCOMPARE(ToolTips::tooltips.value(1), QString::fromUtf8("“off” & ▼ File->Settings"));
    QCOMPARE(document.errors(), QStringList());
}

void ToolTipsTest::an_id_is_a_number_in_any_radix_data()
{
    QTest::addColumn<int>("id");

    QTest::newRow("16") << 16;
    QTest::newRow("0x10") << 16;
    QTest::newRow("0b11") << 3;
    QTest::newRow("0o17") << 15;
    QTest::newRow("010") << 10;
    QTest::newRow("0") << 0;
    QTest::newRow("-5") << -5;
}

void ToolTipsTest::an_id_is_a_number_in_any_radix()
{
    QFETCH(int, id);
    Document document("<dd id=\"" + QByteArray(QTest::currentDataTag()) + "\">text</dd>");
    QCOMPARE(ToolTips::tooltips, (QMap<int, QString>{{id, "text"}}));
    QCOMPARE(document.printed, QByteArray());
}

void ToolTipsTest::a_text_without_id_is_told_on_the_console()
{
    Document document("<dd>Nobody <b>asks</b>. For \"this\".</dd><dd id=\"2\">taken</dd>");
    QCOMPARE(document.printed, QByteArray("dd without id: Nobody asks. For \"this\".\n"));
    QCOMPARE(ToolTips::tooltips, (QMap<int, QString>{{2, "taken"}}));
    QCOMPARE(document.errors(), QStringList());
}

void ToolTipsTest::a_bad_id_is_told_on_the_console_data()
{
    QTest::addColumn<QByteArray>("id");

    for (const char* id : {"abc", "", "0x", "12abc", "1.5", "99999999999"})
        QTest::newRow(id) << QByteArray(id);
}

void ToolTipsTest::a_bad_id_is_told_on_the_console()
{
    QFETCH(QByteArray, id);
    Document document("<dd id=\"" + id + "\">text</dd><dd id=\"2\">taken</dd>");
    QCOMPARE(document.printed, "dd with bad id: " + id + "\n");
    QCOMPARE(ToolTips::tooltips, (QMap<int, QString>{{2, "taken"}}));
    QCOMPARE(document.errors(), QStringList());
}

void ToolTipsTest::a_second_definition_is_shown_and_wins()
{
    Document document("<dd id=\"16\">first</dd><dd id=\"0x10\">second</dd><dd id=\"17\">x</dd>");
    QCOMPARE(document.errors(), QStringList{"Error: Tooltip 16 has been defined more than once."});
    QCOMPARE(ToolTips::tooltips, (QMap<int, QString>{{16, "second"}, {17, "x"}}));
}

void ToolTipsTest::a_second_document_adds_to_the_first()
{
    Document document("<dd id=\"1\">first</dd>");
    document.load_also("<html><dd id=\"2\">second</dd><dd id=\"1\">third</dd></html>");
    QCOMPARE(document.errors(), QStringList{"Error: Tooltip 1 has been defined more than once."});
    QCOMPARE(ToolTips::tooltips, (QMap<int, QString>{{1, "third"}, {2, "second"}}));
}

void ToolTipsTest::a_double_quote_is_shown_and_kept()
{
    Document document("<dd id=\"3\">the \"off\" command</dd><dd id=\"4\">the &quot;on&quot;</dd>");
    QCOMPARE(document.errors(), (QStringList{"Error: Tooltip 3 contains a double-quote.",
                                             "Error: Tooltip 4 contains a double-quote."}));
    QCOMPARE(ToolTips::tooltips,
             (QMap<int, QString>{{3, "the \"off\" command"}, {4, "the \"on\""}}));
}

void ToolTipsTest::both_faults_of_one_text_are_shown_in_turn()
{
    Document document("<dd id=\"3\">x</dd><dd id=\"3\">\"</dd>");
    QCOMPARE(document.errors(), (QStringList{"Error: Tooltip 3 has been defined more than once.",
                                             "Error: Tooltip 3 contains a double-quote."}));
}

void ToolTipsTest::no_document_gives_no_texts_data()
{
    QTest::addColumn<QByteArray>("content");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no markup") << QByteArray("Help yourself.");
    QTest::newRow("not closed") << QByteArray("<html><dd id=\"1\">text</dd>");
    QTest::newRow("crossed") << QByteArray("<html><dd id=\"1\"><b>text</dd></b></html>");
    QTest::newRow("bytes") << QByteArray("\0\xff\xfe<dd id=\"1\">", 14);
}

void ToolTipsTest::no_document_gives_no_texts()
{
    QFETCH(QByteArray, content);
    Document document("");
    document.load_also(content);
    QCOMPARE(ToolTips::tooltips, NOTHING);
    QCOMPARE(document.errors(), QStringList());
    QCOMPARE(document.printed, QByteArray());
    QLabel label;
    ToolTips::assign(&label, 1);
    QCOMPARE(document.errors(),
             QStringList{"Error: Tooltip 1 requested but not present in help file."});
}

void ToolTipsTest::a_missing_file_gives_no_texts()
{
    Document document("");
    ToolTips::load(document.folder.filePath("no such file"));
    QCOMPARE(ToolTips::tooltips, NOTHING);
    QCOMPARE(document.errors(), QStringList());
}

void ToolTipsTest::a_widget_gets_its_text_as_rich_text()
{
    Document document("<dd id=\"1\">One. Two.</dd>");
    QLabel label;
    label.setToolTip("before");
    ToolTips::assign(&label, 1);
    QCOMPARE(label.toolTip(), QString("<qt>One.<br />Two.</qt>"));
    // The toolkit wraps only what it takes for rich text.
    QVERIFY(Qt::mightBeRichText(label.toolTip()));
    QCOMPARE(document.errors(), QStringList());
}

void ToolTipsTest::a_missing_id_is_shown_and_leaves_the_widget()
{
    Document document("<dd id=\"37\">text</dd>");
    QLabel label;
    label.setToolTip("before");
    ToolTips::assign(&label, 38);
    QCOMPARE(label.toolTip(), QString("before"));
    QCOMPARE(document.errors(),
             QStringList{"Error: Tooltip 38 requested but not present in help file."});
    QCOMPARE(ToolTips::used_tooltip_ids, QSet<int>());
    QCOMPARE(ToolTips::tooltips.size(), 1);
}

void ToolTipsTest::ids_handed_out_are_remembered()
{
    Document document("<dd id=\"1\">a</dd><dd id=\"2\">b</dd><dd id=\"3\">c</dd>");
    QLabel label;
    ToolTips::assign(&label, 3);
    ToolTips::assign(&label, 1);
    ToolTips::assign(&label, 3);
    QCOMPARE(ToolTips::used_tooltip_ids, (QSet<int>{1, 3}));
    QCOMPARE(label.toolTip(), QString("<qt>c</qt>"));
}

void ToolTipsTest::widgets_share_one_copy_of_a_text()
{
    Document document("<dd id=\"1\">a</dd><dd id=\"2\">a</dd>");
    QLabel labels[2];
    for (QLabel& label : labels)
        ToolTips::assign(&label, 1);
    QVERIFY(labels[0].toolTip().isSharedWith(labels[1].toolTip()));
}

void ToolTipsTest::a_text_defined_anew_reaches_the_widgets_that_ask_then()
{
    Document document("<dd id=\"1\">a</dd>");
    QLabel before;
    ToolTips::assign(&before, 1);
    document.load_also("<p><dd id=\"1\">b</dd></p>");
    QLabel after;
    ToolTips::assign(&after, 1);
    QCOMPARE(before.toolTip(), QString("<qt>a</qt>"));
    QCOMPARE(after.toolTip(), QString("<qt>b</qt>"));

    // An empty text is one, too.
    document.load_also("<p><dd id=\"1\"></dd></p>");
    ToolTips::assign(&after, 1);
    QCOMPARE(after.toolTip(), QString("<qt></qt>"));
}

void ToolTipsTest::a_thousand_texts_and_a_long_one_are_taken()
{
    QByteArray entries;
    for (int id = 1; id <= 1000; ++id)
        entries += "<dd id=\"" + QByteArray::number(id) + "\">x</dd>";
    Document document(entries + "<dd id=\"0\">" + QByteArray(1000000, 'x') + "</dd>");
    QCOMPARE(ToolTips::tooltips.size(), 1001);
    QCOMPARE(ToolTips::tooltips.value(0).size(), 1000000);
}

KEST_TEST(ToolTipsTest)
#include "tst_tool_tips.moc"
