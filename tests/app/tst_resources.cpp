#include "common/colors.h"
#include "support/test_program.h"

#include <QImage>
#include <QtTest>

class ResourcesTest : public QObject
{
    Q_OBJECT

private slots:
    void an_image_has_its_size_and_its_red_data();
    void an_image_has_its_size_and_its_red();
    void the_small_logo_lets_the_window_through();
};

void ResourcesTest::an_image_has_its_size_and_its_red_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPoint>("inside_the_battery");

    QTest::newRow("battery_tester_logo.png") << QSize(1068, 268) << QPoint(100, 200);
    QTest::newRow("battery_tester_logo_267x67.png") << QSize(267, 67) << QPoint(25, 50);
    QTest::newRow("kest_pdf_header.png") << QSize(2400, 240) << QPoint(100, 170);
}

void ResourcesTest::an_image_has_its_size_and_its_red()
{
    QFETCH(QPoint, inside_the_battery);
    const QImage image(QString(":/%1").arg(QTest::currentDataTag()));
    QTEST(image.size(), "size");
    QCOMPARE(image.pixelColor(inside_the_battery), QColor(Colors::KEST_RED));
}

void ResourcesTest::the_small_logo_lets_the_window_through()
{
    const QImage image(":/battery_tester_logo_267x67.png");
    QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
}

KEST_GUILESS_TEST(ResourcesTest)
#include "tst_resources.moc"
