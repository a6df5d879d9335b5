#include "common/colors.h"
#include "support/test_program.h"

#include <QtTest>

namespace
{
// Made before main: shows that the colours exist for the constants of other files.
const QColor copied_before_main = Colors::resistor_color_code[7];
}  // namespace

class ColorsTest : public QObject
{
    Q_OBJECT

private slots:
    void colors_have_their_channels_data();
    void colors_have_their_channels();
    void the_resistor_code_counts_from_black_to_white();
    void colors_exist_before_main();
    void brightness_is_perceived_data();
    void brightness_is_perceived();
    void a_gray_is_as_bright_as_its_channels();
};

void ColorsTest::colors_have_their_channels_data()
{
    QTest::addColumn<QColor>("color");
    add_columns<int>({"red", "green", "blue"});

    QTest::newRow("black") << Colors::black << 0 << 0 << 0;
    QTest::newRow("brown") << Colors::brown << 87 << 49 << 5;
    QTest::newRow("red") << Colors::red << 255 << 0 << 0;
    QTest::newRow("orange") << Colors::orange << 255 << 127 << 0;
    QTest::newRow("yellow") << Colors::yellow << 255 << 255 << 0;
    QTest::newRow("green") << Colors::green << 0 << 127 << 0;
    QTest::newRow("blue") << Colors::blue << 0 << 0 << 255;
    QTest::newRow("violet") << Colors::violet << 148 << 0 << 211;
    QTest::newRow("gray") << Colors::gray << 134 << 136 << 138;
    QTest::newRow("white") << Colors::white << 255 << 255 << 255;
    QTest::newRow("pale_gray") << Colors::pale_gray << 240 << 240 << 240;
    QTest::newRow("KEST_RED") << Colors::KEST_RED << 148 << 36 << 50;
}

void ColorsTest::colors_have_their_channels()
{
    QFETCH(QColor, color);
    QFETCH(int, red);
    QFETCH(int, green);
    QFETCH(int, blue);
    QCOMPARE(color.red(), red);
    QCOMPARE(color.green(), green);
    QCOMPARE(color.blue(), blue);
    QCOMPARE(color.alpha(), 255);
}

void ColorsTest::the_resistor_code_counts_from_black_to_white()
{
    const QColor expected[] = {Colors::black,  Colors::brown, Colors::red,  Colors::orange,
                               Colors::yellow, Colors::green, Colors::blue, Colors::violet,
                               Colors::gray,   Colors::white};
    QCOMPARE(std::size(Colors::resistor_color_code), std::size(expected));
    for (size_t digit = 0; digit < std::size(expected); ++digit)
        QCOMPARE(Colors::resistor_color_code[digit], expected[digit]);
}

void ColorsTest::colors_exist_before_main()
{
    QCOMPARE(copied_before_main, QColor(148, 0, 211));
}

void ColorsTest::brightness_is_perceived_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<int>("brightness");

    const int brightness[] = {0, 58, 127, 163, 247, 109, 76, 93, 136, 255};
    for (int digit = 0; digit < 10; ++digit)
        add_row(qPrintable(QString("digit %1").arg(digit)), Colors::resistor_color_code[digit],
                brightness[digit]);
    QTest::newRow("on the straight part") << QColor(10, 10, 10) << 10;
    QTest::newRow("one") << QColor(1, 1, 1) << 1;
    QTest::newRow("middle") << QColor(128, 128, 128) << 128;
}

void ColorsTest::brightness_is_perceived()
{
    QFETCH(QColor, color);
    QFETCH(int, brightness);
    QCOMPARE(grayscale_value(color), brightness);
}

void ColorsTest::a_gray_is_as_bright_as_its_channels()
{
    for (int channel = 0; channel < 256; ++channel)
        QCOMPARE(grayscale_value(QColor(channel, channel, channel)), channel);
}

KEST_GUILESS_TEST(ColorsTest)
#include "tst_colors.moc"
