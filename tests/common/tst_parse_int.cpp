#include "common/parse_int.h"
#include "support/test_program.h"

#include <QtTest>

#include <limits>

class ParseIntTest : public QObject
{
    Q_OBJECT

private slots:
    void numbers_are_read_in_the_radix_of_their_prefix_data();
    void numbers_are_read_in_the_radix_of_their_prefix();
    void what_is_no_number_leaves_the_value_alone_data();
    void what_is_no_number_leaves_the_value_alone();
    void numbers_beyond_32_bits_fail_with_their_low_bits_data();
    void numbers_beyond_32_bits_fail_with_their_low_bits();
    void a_given_radix_is_taken_data();
    void a_given_radix_is_taken();
    void a_radix_that_does_not_exist_fails_data();
    void a_radix_that_does_not_exist_fails();
};

void ParseIntTest::numbers_are_read_in_the_radix_of_their_prefix_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("value");

    QTest::newRow("decimal") << "31" << 31;
    QTest::newRow("hexadecimal") << "0x1F" << 31;
    QTest::newRow("hexadecimal, upper case") << "0X1f" << 31;
    QTest::newRow("octal") << "0o17" << 15;
    QTest::newRow("octal, upper case") << "0O17" << 15;
    QTest::newRow("binary") << "0b101" << 5;
    QTest::newRow("binary, upper case") << "0B101" << 5;
    QTest::newRow("zero") << "0" << 0;
    QTest::newRow("a leading zero is not octal") << "010" << 10;
    QTest::newRow("nor are two") << "009" << 9;
    QTest::newRow("negative") << "-12" << -12;
    QTest::newRow("plus sign") << "+12" << 12;
    QTest::newRow("blanks around") << " 12 " << 12;
    QTest::newRow("greatest") << "2147483647" << std::numeric_limits<int>::max();
    QTest::newRow("least") << "-2147483648" << std::numeric_limits<int>::min();
    QTest::newRow("greatest, hexadecimal") << "0x7FFFFFFF" << std::numeric_limits<int>::max();
}

void ParseIntTest::numbers_are_read_in_the_radix_of_their_prefix()
{
    QFETCH(QString, text);
    QFETCH(int, value);
    int read = -77;
    QVERIFY(parse_int(text, read));
    QCOMPARE(read, value);
}

void ParseIntTest::what_is_no_number_leaves_the_value_alone_data()
{
    QTest::addColumn<QString>("text");

    const QStringList texts = {"",
                               " ",
                               "x",
                               "-",
                               "12abc",
                               "1.0",
                               "1,0",
                               "0x",
                               "0b",
                               "0o",
                               "0b102",
                               "0o8",
                               "0xG",
                               "-0x1F",
                               "1e3",
                               "nan",
                               "inf",
                               "1 2",
                               "0d10",
                               "Yes",
                               "+-1",
                               "99999999999999999999",
                               "-99999999999999999999"};
    for (const QString& text : texts)
        QTest::newRow(qPrintable('"' + text + '"')) << text;
}

void ParseIntTest::what_is_no_number_leaves_the_value_alone()
{
    QFETCH(QString, text);
    int read = -77;
    QVERIFY(!parse_int(text, read));
    QCOMPARE(read, -77);
}

void ParseIntTest::numbers_beyond_32_bits_fail_with_their_low_bits_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("low_bits");

    QTest::newRow("one above") << "2147483648" << std::numeric_limits<int>::min();
    QTest::newRow("one below") << "-2147483649" << std::numeric_limits<int>::max();
    QTest::newRow("2 to the 32 and 5") << "4294967301" << 5;
    QTest::newRow("all bits") << "0xFFFFFFFF" << -1;
    QTest::newRow("hexadecimal") << "0x123456789" << 0x23456789;
}

void ParseIntTest::numbers_beyond_32_bits_fail_with_their_low_bits()
{
    QFETCH(QString, text);
    QFETCH(int, low_bits);
    int read = -77;
    QVERIFY(!parse_int(text, read));
    QCOMPARE(read, low_bits);
}

void ParseIntTest::a_given_radix_is_taken_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("radix");
    QTest::addColumn<int>("value");

    QTest::newRow("octal") << "17" << 8 << 15;
    QTest::newRow("hexadecimal") << "1F" << 16 << 31;
    QTest::newRow("decimal") << "010" << 10 << 10;
    QTest::newRow("binary") << "101" << 2 << 5;
    QTest::newRow("greatest radix") << "z" << 36 << 35;
}

void ParseIntTest::a_given_radix_is_taken()
{
    QFETCH(QString, text);
    QFETCH(int, radix);
    QFETCH(int, value);
    int read = -77;
    QVERIFY(parse_int(text, read, radix));
    QCOMPARE(read, value);
}

void ParseIntTest::a_radix_that_does_not_exist_fails_data()
{
    QTest::addColumn<int>("radix");

    for (const int radix : {1, 0, -2, -10, 37})
        QTest::newRow(qPrintable(QString::number(radix))) << radix;
}

void ParseIntTest::a_radix_that_does_not_exist_fails()
{
    QFETCH(int, radix);
    int read = -77;
    QVERIFY(!parse_int("1", read, radix));
    QCOMPARE(read, -77);
}

KEST_GUILESS_TEST(ParseIntTest)
#include "tst_parse_int.moc"
