#include "charts/expected_drawing.h"
#include "station/test_station.h"
#include "support/pdf_file.h"
#include "support/report_bench.h"
#include "support/test_program.h"

#include "config/settings.h"

#include <QApplication>
#include <QFontInfo>
#include <QtTest>

#include <cmath>

/** The page as a reader of the file sees it: places in points from its upper left corner. */
class PrintedPageTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void every_text_is_in_its_place_data();
    void every_text_is_in_its_place();
    void titles_are_centred_data();
    void titles_are_centred();
    void the_table_begins_three_quarters_of_an_inch_from_the_margin();
    void the_footer_ends_half_an_inch_from_the_margins();
    void the_image_reaches_from_margin_to_margin();
    void odd_readings_leave_a_page_data();
    void odd_readings_leave_a_page();
    void a_log_of_odd_numbers_leaves_a_page_data();
    void a_log_of_odd_numbers_leaves_a_page();
    void the_page_looks_as_expected_data();
    void the_page_looks_as_expected();
};

namespace
{
constexpr double POINTS = 72.0 / 600.0;  // to the dot

// The printer's own margin of ten points, in whole dots, and the printable part.
constexpr int MARGIN = 83;
constexpr int WIDTH = 4934;
constexpr int HEIGHT = 6434;

/** What a dot is wide, and the blank around a letter's ink. */
constexpr double TOLERANCE = 1.2;

/** A page of three cycles of which two are ticked, or none. */
struct Printed
{
    explicit Printed(bool ticked)
    {
        pin_fonts(TestStation::voltage_vs_amphours_chart);
        pin_fonts(TestStation::internal_resistance_chart);
        TestCycle* const first = report.add_cycle({4.0, 7, 60.0, ticked});
        first->voltage_vs_amphours.pen = QPen(Qt::blue);
        first->internal_resistance.pen = QPen(Qt::blue);
        report.add_cycle({1.0, 1, 130.0, false});
        report.bench.clock.advance_seconds(86400.0);
        report.add_cycle({3.5, 6, 80.0, ticked});
        report.generate();
    }

    PdfFile pdf() const
    {
        return PdfFile(report.pdf_path());
    }

    ReportBench report;
};

void add_pages()
{
    QTest::addColumn<bool>("ticked");
    QTest::newRow("report_two_of_three") << true;
    QTest::newRow("report_without_ticks") << false;
}

bool is_near(double actual, double expected)
{
    return std::abs(actual - expected) <= TOLERANCE;
}
}  // namespace

void PrintedPageTest::initTestCase()
{
    QApplication::setFont(pinned_font(9));
    QVERIFY2(QFontInfo(pinned_font(8)).family() == "DejaVu Sans",
             "the expected pages are in DejaVu Sans, of the package fonts-dejavu-core");
}

void PrintedPageTest::every_text_is_in_its_place_data()
{
    add_pages();
}

void PrintedPageTest::every_text_is_in_its_place()
{
    QFETCH(bool, ticked);
    const Printed printed(ticked);
    QStringList lines;
    for (const PdfWord& word : printed.pdf().words())
        lines << QString("%1,%2 %3")
                     .arg(word.box.left(), 0, 'f', 1)
                     .arg(word.box.top(), 0, 'f', 1)
                     .arg(word.text);
    const QString name = QString(QTest::currentDataTag()) + ".txt";
    const QString difference = difference_to_file(lines, name);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void PrintedPageTest::titles_are_centred_data()
{
    QTest::addColumn<int>("top");
    QTest::newRow("Battery Discharge Test Results") << 900;
    QTest::newRow("Pack A SN: 1042") << 1200;
}

void PrintedPageTest::titles_are_centred()
{
    QFETCH(int, top);
    const QRectF box = Printed(true).pdf().box_of(QTest::currentDataTag());
    QVERIFY2(is_near(box.center().x(), 306.0), qPrintable(QString::number(box.center().x())));
    QVERIFY2(is_near(box.top(), (MARGIN + top) * POINTS), qPrintable(QString::number(box.top())));
}

void PrintedPageTest::the_table_begins_three_quarters_of_an_inch_from_the_margin()
{
    // At 288 dots per inch the table's lines are there, each thinner than a dot.
    const QImage page = Printed(true).pdf().rendered(288);
    const int y = static_cast<int>((MARGIN + 1550) * 288 / 600.0);
    int x = 0;
    while (x < page.width() && qGray(page.pixel(x, y)) > 200)
        ++x;
    QCOMPARE(x, qRound((MARGIN + 450) * 288 / 600.0));
}

void PrintedPageTest::the_footer_ends_half_an_inch_from_the_margins()
{
    const QRectF box = Printed(true).pdf().box_of("Software Version: v1.0.0b1, Apr 03 2020");
    QVERIFY2(is_near(box.right(), (MARGIN + WIDTH - 300) * POINTS),
             qPrintable(QString::number(box.right())));
    QVERIFY2(is_near(box.bottom(), (MARGIN + HEIGHT - 300) * POINTS),
             qPrintable(QString::number(box.bottom())));
}

void PrintedPageTest::the_image_reaches_from_margin_to_margin()
{
    ReportBench report;
    QImage image(300, 20, QImage::Format_RGB32);
    image.fill(Qt::green);
    QVERIFY(image.save(report.bench.path("own.png")));
    Settings::set_header_image_filename(report.bench.path("own.png"));
    report.generate();

    const QImage page = PdfFile(report.pdf_path()).rendered(150);
    const auto is_green = [&page](int x, int y) {
        const QColor colour = page.pixelColor(x, y);
        return colour.green() > 250 && colour.red() < 5;
    };
    // From 533,383 to 4567,651 in dots, four of which are a pixel here.
    QVERIFY(is_green(135, 97));
    QVERIFY(is_green(1140, 161));
    for (const QPoint& outside :
         {QPoint(131, 130), QPoint(1143, 130), QPoint(600, 94), QPoint(600, 164)})
        QCOMPARE(page.pixelColor(outside), QColor(Qt::white));
}

void PrintedPageTest::odd_readings_leave_a_page_data()
{
    QTest::addColumn<double>("amps");
    QTest::addColumn<double>("milliohms");
    QTest::newRow("no current") << 0.0 << 60.0;
    QTest::newRow("hardly a current") << 1e-300 << 60.0;
    QTest::newRow("a current backward") << -2.0 << 60.0;
    QTest::newRow("no number for a current") << qQNaN() << 60.0;
    QTest::newRow("no number for a resistance") << 2.0 << qQNaN();
    QTest::newRow("endless") << 2.0 << qInf();
    QTest::newRow("huge") << 2.0 << 1e300;
}

void PrintedPageTest::odd_readings_leave_a_page()
{
    QFETCH(double, amps);
    QFETCH(double, milliohms);
    ReportBench report;
    TestCycle* const cycle = report.add_cycle({1.0, 1, 60.0, true});
    cycle->current_vs_amphours.add(2.0, amps);
    cycle->internal_resistance.add(2.0, milliohms);
    report.generate();
    const PdfFile pdf(report.pdf_path());
    QCOMPARE(pdf.info("Pages"), QString("1"));
    QVERIFY(!pdf.box_of("Avg. Int. Resistance").isNull());
    QVERIFY(!pdf.box_of("Software Version:").isNull());
    QCOMPARE(pdf.rendered(36).size(), QSize(306, 396));
}

void PrintedPageTest::a_log_of_odd_numbers_leaves_a_page_data()
{
    QTest::addColumn<double>("amp_hours");
    QTest::addColumn<double>("volts");
    for (const double odd : {qQNaN(), qInf(), -1e300}) {
        QTest::addRow("%g amp-hours", odd) << odd << 25.0;
        QTest::addRow("%g volts", odd) << 2.0 << odd;
        QTest::addRow("%g of both", odd) << odd << odd;
    }
}

void PrintedPageTest::a_log_of_odd_numbers_leaves_a_page()
{
    QFETCH(double, amp_hours);
    QFETCH(double, volts);
    ReportBench report;
    TestCycle* const cycle = report.add_cycle({1.0, 1, 60.0, true});
    cycle->amp_hours = amp_hours;
    cycle->watt_hours = volts;
    cycle->voltage_vs_amphours.add(amp_hours, volts);
    cycle->current_vs_amphours.add(amp_hours, 2.0);
    cycle->internal_resistance.add(amp_hours, 60.0);
    report.generate();
    const PdfFile pdf(report.pdf_path());
    QCOMPARE(pdf.info("Pages"), QString("1"));
    QVERIFY(!pdf.box_of("Avg. Int. Resistance").isNull());
    QVERIFY(!pdf.box_of("Software Version:").isNull());
    QCOMPARE(pdf.rendered(36).size(), QSize(306, 396));
}

void PrintedPageTest::the_page_looks_as_expected_data()
{
    add_pages();
}

void PrintedPageTest::the_page_looks_as_expected()
{
    QFETCH(bool, ticked);
    const Printed printed(ticked);
    const QString name = QString(QTest::currentDataTag()) + ".png";
    const QString difference = difference_to_image(printed.pdf().rendered(75), name);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

KEST_TEST(PrintedPageTest)
#include "tst_printed_page.moc"
