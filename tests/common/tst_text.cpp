#include "common/text.h"
#include "common/unicode.h"
#include "support/test_program.h"

#include <QtTest>

class TextTest : public QObject
{
    Q_OBJECT

private slots:
    void string_between_finds_what_lies_between_data();
    void string_between_finds_what_lies_between();
    void string_between_leaves_the_output_alone_on_failure_data();
    void string_between_leaves_the_output_alone_on_failure();
    void split_at_first_splits_at_the_first_delimiter_data();
    void split_at_first_splits_at_the_first_delimiter();
    void split_at_first_leaves_the_outputs_alone_on_failure_data();
    void split_at_first_leaves_the_outputs_alone_on_failure();
    void split_at_first_may_write_into_its_own_text();
    void string_before_gives_the_text_before_the_delimiter_data();
    void string_before_gives_the_text_before_the_delimiter();
    void line_breaks_become_blanks();
    void round_formats_with_fixed_decimals_data();
    void round_formats_with_fixed_decimals();
    void round_hides_no_rounding_of_numbers();
    void ordinals_take_their_suffix_data();
    void ordinals_take_their_suffix();
    void the_thin_space_is_one_character();
};

void TextTest::string_between_finds_what_lies_between_data()
{
    add_columns<QString>({"text", "left", "right", "middle"});

    add_row("plain", "a[b]c", "[", "]", "b");
    add_row("nothing between", "[]", "[", "]", "");
    add_row("first right after left", "[a]b]", "[", "]", "a");
    add_row("first left", "[a[b]", "[", "]", "a[b");
    add_row("right before left does not count", "]a[b]", "[", "]", "b");
    add_row("same delimiter", "a'b'c", "'", "'", "b");
    add_row("long delimiters", "x<<y>>z", "<<", ">>", "y");
    add_row("delimiters do not overlap", "aaba", "aa", "a", "b");
    add_row("blanks are kept", "( a )", "(", ")", " a ");
}

void TextTest::string_between_finds_what_lies_between()
{
    QFETCH(QString, text);
    QFETCH(QString, left);
    QFETCH(QString, right);
    QFETCH(QString, middle);
    QString found = "before";
    QVERIFY(string_between(text, left, found, right));
    QCOMPARE(found, middle);
}

void TextTest::string_between_leaves_the_output_alone_on_failure_data()
{
    add_columns<QString>({"text", "left", "right"});

    add_row("left is empty", "a]", "", "]");
    add_row("right is empty", "[a", "[", "");
    add_row("no left", "a]", "[", "]");
    add_row("no right", "[a", "[", "]");
    add_row("right only before left", "]a[", "[", "]");
    add_row("one delimiter for both", "a'b", "'", "'");
    add_row("case differs", "xAyBz", "a", "b");
    add_row("empty text", "", "[", "]");
}

void TextTest::string_between_leaves_the_output_alone_on_failure()
{
    QFETCH(QString, text);
    QFETCH(QString, left);
    QFETCH(QString, right);
    QString found = "before";
    QVERIFY(!string_between(text, left, found, right));
    QCOMPARE(found, QString("before"));
}

void TextTest::split_at_first_splits_at_the_first_delimiter_data()
{
    add_columns<QString>({"text", "delimiter", "before", "after"});

    add_row("plain", "a=b", "=", "a", "b");
    add_row("further delimiters", "a=b=c", "=", "a", "b=c");
    add_row("at the start", "=b", "=", "", "b");
    add_row("at the end", "a=", "=", "a", "");
    add_row("only the delimiter", "=", "=", "", "");
    add_row("long delimiter", "a::b", "::", "a", "b");
    add_row("nothing is trimmed", " a = b ", "=", " a ", " b ");
}

void TextTest::split_at_first_splits_at_the_first_delimiter()
{
    QFETCH(QString, text);
    QFETCH(QString, delimiter);
    QFETCH(QString, before);
    QFETCH(QString, after);
    QString left = "old";
    QString right = "old";
    QVERIFY(split_at_first(text, left, delimiter, right));
    QCOMPARE(left, before);
    QCOMPARE(right, after);
}

void TextTest::split_at_first_leaves_the_outputs_alone_on_failure_data()
{
    add_columns<QString>({"text", "delimiter"});

    add_row("delimiter is empty", "a=b", "");
    add_row("delimiter is absent", "ab", "=");
    add_row("case differs", "aXb", "x");
    add_row("empty text", "", "=");
}

void TextTest::split_at_first_leaves_the_outputs_alone_on_failure()
{
    QFETCH(QString, text);
    QFETCH(QString, delimiter);
    QString left = "old left";
    QString right = "old right";
    QVERIFY(!split_at_first(text, left, delimiter, right));
    QCOMPARE(left, QString("old left"));
    QCOMPARE(right, QString("old right"));
}

void TextTest::split_at_first_may_write_into_its_own_text()
{
    QString text = "a=b=c";
    QString rest;
    QVERIFY(split_at_first(text, text, "=", rest));
    QCOMPARE(text, QString("a"));
    QCOMPARE(rest, QString("b=c"));
}

void TextTest::string_before_gives_the_text_before_the_delimiter_data()
{
    add_columns<QString>({"text", "delimiter", "before"});

    add_row("plain", "12.5", ".", "12");
    add_row("first of several", "1.2.3", ".", "1");
    add_row("at the start", ".5", ".", "");
    add_row("absent", "12", ".", "");
    add_row("delimiter is empty", "12", "", "");
    add_row("empty text", "", ".", "");
}

void TextTest::string_before_gives_the_text_before_the_delimiter()
{
    QFETCH(QString, text);
    QFETCH(QString, delimiter);
    QFETCH(QString, before);
    QCOMPARE(string_before(text, delimiter), before);
}

void TextTest::line_breaks_become_blanks()
{
    QCOMPARE(in_one_line("\na\n\nb\tc\n"), QString(" a  b\tc "));
    QCOMPARE(in_one_line(""), QString());
}

void TextTest::round_formats_with_fixed_decimals_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<QString>("text");

    QTest::newRow("no decimals") << 2.4 << 0 << "2";
    QTest::newRow("padded") << 2.5 << 3 << "2.500";
    QTest::newRow("cut") << 3.14159 << 2 << "3.14";
    QTest::newRow("negative") << -0.126 << 2 << "-0.13";
    QTest::newRow("no exponent") << 1e20 << 0 << "100000000000000000000";
}

void TextTest::round_formats_with_fixed_decimals()
{
    QFETCH(double, value);
    QFETCH(int, decimals);
    QFETCH(QString, text);
    QCOMPARE(round(value, decimals), text);
}

void TextTest::round_hides_no_rounding_of_numbers()
{
    // The formatting overload must not take over calls of the function that rounds.
    const double rounded = round(2.5);
    QCOMPARE(rounded, 3.0);
}

void TextTest::ordinals_take_their_suffix_data()
{
    QTest::addColumn<int>("n");
    QTest::addColumn<QString>("text");

    const QStringList texts = {"0th",  "1st",  "2nd",   "3rd",   "4th",   "9th",   "10th",
                               "11th", "12th", "13th",  "14th",  "20th",  "21st",  "22nd",
                               "23rd", "24th", "101st", "111th", "112th", "113th", "121st"};
    for (const QString& text : texts)
        QTest::newRow(qPrintable(text)) << text.left(text.size() - 2).toInt() << text;
}

void TextTest::ordinals_take_their_suffix()
{
    QFETCH(int, n);
    QFETCH(QString, text);
    QCOMPARE(ordinal_string(n), text);
}

void TextTest::the_thin_space_is_one_character()
{
    const QString text = QString("12") + Unicode::thin_space + "V";
    QCOMPARE(text.size(), 4);
    QCOMPARE(int(text.at(2).unicode()), 0x2009);
}

KEST_GUILESS_TEST(TextTest)
#include "tst_text.moc"
