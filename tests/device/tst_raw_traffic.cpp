#include "device/raw_traffic.h"
#include "support/test_program.h"

#include <QtTest>

class RawTrafficTest : public QObject
{
    Q_OBJECT

private slots:
    void what_a_label_cannot_show_becomes_its_code_data();
    void what_a_label_cannot_show_becomes_its_code();
    void every_character_below_128_is_judged();
    void bytes_become_pairs_of_digits_data();
    void bytes_become_pairs_of_digits();
};

void RawTrafficTest::what_a_label_cannot_show_becomes_its_code_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("sanitised");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("plain") << QString("x\t48.02 ~\x7F") << QString("x\t48.02 ~\x7F");
    QTest::newRow("escape") << QString("\x1B[0m") << QString("[0x1B][0m");
    QTest::newRow("one digit") << QString("\x07") << QString("[0x7]");
    QTest::newRow("line ends") << QString("a\rb\nc") << QString("a[0xD]b[0xA]c");
    QTest::newRow("Latin-1") << QString(QChar(0xE9)) << QString("[0xE9]");
    QTest::newRow("128") << QString(QChar(0x80)) << QString("[0x80]");
    QTest::newRow("replacement") << QString(QChar(0xFFFD)) << QString("[0xFFFD]");
    add_row("surrogates", QString::fromUtf8("\xF0\x9F\x94\x8B"), QString("[0xD83D][0xDD0B]"));
}

void RawTrafficTest::what_a_label_cannot_show_becomes_its_code()
{
    QFETCH(QString, text);
    QTEST(sanitised_text(text), "sanitised");
}

void RawTrafficTest::every_character_below_128_is_judged()
{
    for (int code = 0; code < 128; ++code) {
        const QString text(QChar{code});
        const bool stays = code == 9 || code >= 32;
        const QString coded = QString("[0x%1]").arg(QString::number(code, 16).toUpper());
        QCOMPARE(sanitised_text(text), stays ? text : coded);
    }
}

void RawTrafficTest::bytes_become_pairs_of_digits_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << QByteArray() << QString();
    QTest::newRow("one") << QByteArray("O") << QString("4F");
    add_row("reset", QByteArray("UUUUUU\0\0\0\4", 10), QString("55 55 55 55 55 55 00 00 00 04"));
    QTest::newRow("high") << QByteArray("\xFF\x80") << QString("FF 80");
}

void RawTrafficTest::bytes_become_pairs_of_digits()
{
    QFETCH(QByteArray, bytes);
    QTEST(hex_text(bytes), "text");
}

KEST_GUILESS_TEST(RawTrafficTest)
#include "tst_raw_traffic.moc"
