#include "report/report_layout.h"
#include "support/test_program.h"

#include <QtTest>

/** The places of the page's elements, on Letter paper at 600 dots per inch and on odder devices. */
class ReportLayoutTest : public QObject
{
    Q_OBJECT

private slots:
    void elements_stand_where_they_belong();
    void the_header_image_keeps_its_proportions_data();
    void the_header_image_keeps_its_proportions();
    void rows_are_half_as_high_again_as_their_text_data();
    void rows_are_half_as_high_again_as_their_text();
    void charts_share_what_the_table_leaves_and_touch_data();
    void charts_share_what_the_table_leaves_and_touch();
    void fractions_of_the_resolution_are_truncated();
};

namespace
{
const QSize PAGE(4930, 6430);
}

void ReportLayoutTest::elements_stand_where_they_belong()
{
    const ReportLayout layout(600, PAGE);
    QCOMPARE(layout.title(), QPointF(2465, 900));
    QCOMPARE(layout.subtitle(), QPointF(2465, 1200));
    QCOMPARE(layout.table(), QPoint(450, 1500));
    QCOMPARE(layout.footer(), QPointF(4630, 6130));
    QCOMPARE(layout.gridline_pixels(), 300.0);
    QCOMPARE(layout.dot_radius(), 9);
}

void ReportLayoutTest::the_header_image_keeps_its_proportions_data()
{
    QTest::addColumn<QSize>("image");
    QTest::addColumn<QRectF>("rect");
    QTest::newRow("ten to one") << QSize(2400, 240) << QRectF(450, 300, 4030, 403);
    QTest::newRow("a third, truncated") << QSize(300, 100) << QRectF(450, 300, 4030, 1343);
    QTest::newRow("higher than wide") << QSize(100, 200) << QRectF(450, 300, 4030, 8060);
    QTest::newRow("a line") << QSize(5000, 1) << QRectF(450, 300, 4030, 0);
    QTest::newRow("none") << QSize(0, 0) << QRectF();
}

void ReportLayoutTest::the_header_image_keeps_its_proportions()
{
    QFETCH(QSize, image);
    QTEST(ReportLayout(600, PAGE).header_image(image), "rect");
}

void ReportLayoutTest::rows_are_half_as_high_again_as_their_text_data()
{
    QTest::addColumn<int>("resolution");
    QTest::addColumn<int>("points");
    QTest::addColumn<int>("height");
    QTest::newRow("the report's") << 600 << 8 << 100;
    QTest::newRow("truncated") << 100 << 8 << 16;
    QTest::newRow("other text") << 600 << 11 << 137;
}

void ReportLayoutTest::rows_are_half_as_high_again_as_their_text()
{
    QFETCH(int, resolution);
    QFETCH(int, points);
    QTEST(ReportLayout(resolution, PAGE).table_row_height(points), "height");
}

void ReportLayoutTest::charts_share_what_the_table_leaves_and_touch_data()
{
    QTest::addColumn<int>("page_height");
    QTest::addColumn<QRect>("upper");
    QTest::addColumn<QRect>("lower");
    QTest::newRow("an even rest") << 6430 << QRect(300, 2400, 4330, 1865)
                                  << QRect(300, 4265, 4330, 1865);
    QTest::newRow("an odd rest") << 6431 << QRect(300, 2400, 4330, 1865)
                                 << QRect(300, 4265, 4330, 1865);
}

void ReportLayoutTest::charts_share_what_the_table_leaves_and_touch()
{
    QFETCH(int, page_height);
    const ReportLayout layout(600, QSize(4930, page_height));
    QTEST(layout.upper_chart(600), "upper");
    QTEST(layout.lower_chart(600), "lower");
    QCOMPARE(layout.upper_chart(600).right(), 4930 - 300 - 1);
}

void ReportLayoutTest::fractions_of_the_resolution_are_truncated()
{
    const ReportLayout layout(99, QSize(801, 1101));
    QCOMPARE(layout.header_image(QSize(2, 1)), QRectF(74, 49, 653, 326));
    QCOMPARE(layout.title(), QPointF(400.5, 148));
    QCOMPARE(layout.subtitle(), QPointF(400.5, 148 + 48));
    QCOMPARE(layout.table(), QPoint(74, 148 + 96));
    QCOMPARE(layout.upper_chart(100), QRect(49, 244 + 100 + 49, 703, (1101 - 344 - 98) / 2));
    QCOMPARE(layout.footer(), QPointF(752, 1052));
    QCOMPARE(layout.gridline_pixels(), 49.5);
    QCOMPARE(layout.dot_radius(), 1);
}

KEST_GUILESS_TEST(ReportLayoutTest)
#include "tst_report_layout.moc"
