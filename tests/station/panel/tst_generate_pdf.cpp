#include "station/test_station.h"
#include "support/ordinary_user.h"
#include "support/pdf_file.h"
#include "support/report_bench.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include "common/date_time.h"
#include "config/settings.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QtTest>

/** The report as a file: where it goes, what comes with it, and what is said. */
class GeneratePdfTest : public QObject
{
    Q_OBJECT

private slots:
    void the_file_is_one_letter_page_and_is_shown();
    void without_a_log_there_is_nothing_to_report();
    void names_are_taken_as_they_are_data();
    void names_are_taken_as_they_are();
    void an_earlier_report_is_replaced();
    void other_numbers_have_other_files();
    void a_page_that_cannot_be_begun_is_passed_over_in_silence_data();
    void a_page_that_cannot_be_begun_is_passed_over_in_silence();
    void a_page_in_a_read_only_directory_is_passed_over_in_silence();
    void logs_are_copied_if_so_set();
    void logs_are_not_copied_onto_themselves();
    void every_log_that_fails_is_named_and_the_page_still_shown();
    void without_a_pdf_directory_nothing_is_copied();
    void a_test_under_way_is_reported_up_to_now();
    void a_missing_header_image_is_named_and_left_out();
    void telemetry_during_that_message_is_on_the_page();
    void the_message_comes_only_with_a_page();
    void a_header_image_that_cannot_be_read_is_left_out_in_silence();
    void the_built_in_header_image_is_above_the_titles();
    void a_header_image_of_ones_own_takes_its_place();
    void all_fonts_are_embedded();
    void the_top_of_the_resistance_scale_stays_behind();
};

namespace
{
const QStringList LOG_NAMES = {"Pack A_1042.csv", "Pack A_1042.txt"};

QStringList files_in(const QString& directory)
{
    return QDir(directory).entryList(QDir::Files, QDir::Name);
}

QStringList texts_seen(const ReportBench& report)
{
    QStringList texts;
    for (const SeenBox& box : report.bench.answers.seen)
        texts << box.text;
    return texts;
}

/** The PDF directory is not the one of the logs. */
QString use_own_pdf_directory(const ReportBench& report)
{
    const QString directory = report.bench.path("pdf");
    QDir().mkpath(directory);
    Settings::set_pdf_dir(directory);
    return directory;
}

QString copy_failure(const QString& source, const QString& target)
{
    return "Could not copy file to PDF directory.\nSource: " + source + "\nTarget: " + target;
}
}  // namespace

void GeneratePdfTest::the_file_is_one_letter_page_and_is_shown()
{
    ReportBench report;
    report.add_cycle({});
    report.generate();
    const PdfFile pdf(report.bench.path("Pack A_1042.pdf"));
    QCOMPARE(pdf.info("Pages"), QString("1"));
    QCOMPARE(pdf.info("Page size"), QString("612 x 792 pts (letter)"));
    QCOMPARE(report.opened, QStringList{report.bench.path("Pack A_1042.pdf")});
    QCOMPARE(texts_seen(report), QStringList());
}

void GeneratePdfTest::without_a_log_there_is_nothing_to_report()
{
    ReportBench report;
    report.bench.station->unload_test_data();
    const QStringList before = files_in(report.bench.folder.path());
    report.bench.answers.click(QMessageBox::Ok);
    report.generate();
    QCOMPARE(texts_seen(report), QStringList{"No data loaded."});
    QCOMPARE(report.bench.answers.seen[0].caption, QString("Error"));
    QCOMPARE(files_in(report.bench.folder.path()), before);
    QCOMPARE(report.opened, QStringList());
}

void GeneratePdfTest::names_are_taken_as_they_are_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("serial_number");
    QTest::addColumn<QString>("file_name");
    add_row("plain", "Pack A", "1042", "Pack A_1042.pdf");
    add_row("place markers", "%1 %2", "%1", "%1 %2_%1.pdf");
    QTest::newRow("Latin-1") << QString::fromUtf8("Zündakku") << QString::fromUtf8("Nº 7")
                             << QString::fromUtf8("Zündakku_Nº 7.pdf");
    QTest::newRow("beyond Latin-1") << QString::fromUtf8("Батарея") << QString::fromUtf8("№7")
                                    << QString::fromUtf8("Батарея_№7.pdf");
}

void GeneratePdfTest::names_are_taken_as_they_are()
{
    QFETCH(QString, name);
    QFETCH(QString, serial_number);
    QFETCH(QString, file_name);
    ReportBench report;
    report.bench.station->profile_name = name;
    report.bench.station->serial_number = serial_number;
    report.generate();
    QCOMPARE(report.opened, QStringList{report.bench.path(file_name)});
    const QStringList lines = PdfFile(report.bench.path(file_name)).lines();
    QCOMPARE(lines.value(1), name + " SN: " + serial_number);
}

void GeneratePdfTest::an_earlier_report_is_replaced()
{
    ReportBench report;
    report.add_cycle({});
    report.generate();
    report.add_cycle({});
    report.generate();
    QCOMPARE(texts_seen(report), QStringList());
    QCOMPARE(files_in(report.bench.folder.path()).filter(".pdf"), QStringList{"Pack A_1042.pdf"});
    QVERIFY(!PdfFile(report.pdf_path()).box_of("Discharge # 2").isNull());
}

void GeneratePdfTest::other_numbers_have_other_files()
{
    ReportBench report;
    report.generate();
    report.bench.station->serial_number = "1043";
    report.generate();
    QCOMPARE(files_in(report.bench.folder.path()).filter(".pdf"),
             QStringList({"Pack A_1042.pdf", "Pack A_1043.pdf"}));
}

void GeneratePdfTest::a_page_that_cannot_be_begun_is_passed_over_in_silence_data()
{
    QTest::addColumn<QString>("pdf_directory");
    QTest::addColumn<QString>("name");
    add_row("a directory that is not there", "gone", "Pack A");
    add_row("a file for a directory", "Pack A_1042.csv", "Pack A");
    add_row("a directory of the page's name", "taken", "Pack A");
    add_row("a name with a directory", "taken", "Packs/A");
}

void GeneratePdfTest::a_page_that_cannot_be_begun_is_passed_over_in_silence()
{
    QFETCH(QString, pdf_directory);
    QFETCH(QString, name);
    ReportBench report;
    report.add_cycle({});
    QVERIFY(QDir().mkpath(report.bench.path("taken/Pack A_1042.pdf")));
    report.bench.station->profile_name = name;
    Settings::set_pdf_dir(report.bench.path(pdf_directory));
    Settings::set_copy_logs(true);
    Settings::set_header_image_filename(report.bench.path("gone.png"));
    const double scale = TestStation::internal_resistance_chart.left_axis.forced_range.max;
    QTest::ignoreMessage(QtWarningMsg, "QPainter::begin(): Returned false");
    report.generate();
    QCOMPARE(texts_seen(report), QStringList());
    QVERIFY(!QFile::exists(report.bench.path("gone")));
    QCOMPARE(files_in(report.bench.path("taken")), QStringList());
    QCOMPARE(report.opened, QStringList());
    QCOMPARE(TestStation::internal_resistance_chart.left_axis.forced_range.max, scale);
}

void GeneratePdfTest::a_page_in_a_read_only_directory_is_passed_over_in_silence()
{
    ReportBench report;
    const QString directory = use_own_pdf_directory(report);
    // For root no directory is read-only; anybody else has to get there.
    QVERIFY(QFile::setPermissions(directory, QFile::Permissions(0x5555)));
    QVERIFY(QFile::setPermissions(report.bench.folder.path(), QFile::Permissions(0x7755)));
    const OrdinaryUser user;
    QVERIFY(user.active());
    QTest::ignoreMessage(QtWarningMsg, "QPainter::begin(): Returned false");
    report.generate();
    QCOMPARE(texts_seen(report), QStringList());
    QCOMPARE(report.opened, QStringList());
}

void GeneratePdfTest::logs_are_copied_if_so_set()
{
    ReportBench report;
    const QString directory = use_own_pdf_directory(report);
    report.generate();
    QCOMPARE(files_in(directory), QStringList{"Pack A_1042.pdf"});

    Settings::set_copy_logs(true);
    report.generate();
    QCOMPARE(files_in(directory), QStringList(LOG_NAMES.first())
                                      << "Pack A_1042.pdf" << LOG_NAMES.last());
    for (const QString& name : LOG_NAMES)
        QCOMPARE(content_of(directory + "/" + name), content_of(report.bench.path(name)));
    QVERIFY(content_of(directory + "/Pack A_1042.csv").startsWith("Kestrometer Log\n"));
    QCOMPARE(texts_seen(report), QStringList());
    QCOMPARE(report.opened.size(), 2);
}

void GeneratePdfTest::logs_are_not_copied_onto_themselves()
{
    ReportBench report;
    Settings::set_copy_logs(true);
    report.bench.answers.click(QMessageBox::Ok);
    report.bench.answers.click(QMessageBox::Ok);
    report.generate();
    QStringList expected;
    for (const QString& name : LOG_NAMES)
        expected << copy_failure(report.bench.path(name), report.bench.path(name));
    QCOMPARE(texts_seen(report), expected);
    QCOMPARE(report.opened, QStringList{report.pdf_path()});
}

void GeneratePdfTest::every_log_that_fails_is_named_and_the_page_still_shown()
{
    ReportBench report;
    const QString directory = use_own_pdf_directory(report);
    Settings::set_copy_logs(true);
    QVERIFY(QDir().mkpath(directory + "/Pack A_1042.txt/in the way"));
    report.bench.answers.click(QMessageBox::Ok);
    report.generate();
    QCOMPARE(texts_seen(report), QStringList{copy_failure(report.bench.path("Pack A_1042.txt"),
                                                          directory + "/Pack A_1042.txt")});
    QCOMPARE(files_in(directory), QStringList({"Pack A_1042.csv", "Pack A_1042.pdf"}));
    QCOMPARE(report.opened, QStringList{report.pdf_path()});
}

void GeneratePdfTest::without_a_pdf_directory_nothing_is_copied()
{
    ReportBench report;
    const QString former_directory = QDir::currentPath();
    QVERIFY(QDir(report.bench.folder.path()).mkdir("here"));
    QVERIFY(QDir::setCurrent(report.bench.path("here")));
    Settings::set_pdf_dir("");
    Settings::set_copy_logs(true);
    report.generate();
    QDir::setCurrent(former_directory);
    QCOMPARE(files_in(report.bench.path("here")), QStringList{"Pack A_1042.pdf"});
    QCOMPARE(texts_seen(report), QStringList());
    QCOMPARE(report.opened.size(), 1);
}

void GeneratePdfTest::a_test_under_way_is_reported_up_to_now()
{
    ReportBench report;
    report.bench.press("pbStartSkip");
    report.bench.receive("25.00", "10.0", "D");
    report.bench.receive_after(60.0, "24.00", "10.0", "D");
    report.generate();
    QCOMPARE(report.bench.station->phase, PHASE_DISCHARGING);
    const TestCycle* cycle = report.bench.station->current_cycle;
    const QStringList lines = PdfFile(report.pdf_path()).lines();
    QVERIFY(cycle->amp_hours > 0.1);
    QCOMPARE(lines.value(2), QString("Discharge # 1"));
    QCOMPARE(lines.value(3), "Date " + cycle->start_time.toString(Time::ISO_8601_DATE_FORMAT));
    QCOMPARE(lines.value(4),
             "Discharge Capacity " + QString::number(cycle->amp_hours, 'f', 2) + " Ah");
    QCOMPARE(lines.value(6), QString("Avg. Discharge Current 10.00 A"));
}

void GeneratePdfTest::a_missing_header_image_is_named_and_left_out()
{
    ReportBench report;
    const QString image = report.bench.path("no %1.png");
    Settings::set_header_image_filename(image);
    report.bench.answers.click(QMessageBox::Ok);
    report.generate();
    QCOMPARE(texts_seen(report), QStringList{"PDF header file (" + image + ") does not exist."});
    QCOMPARE(PdfFile(report.pdf_path()).images(), QStringList());
    QCOMPARE(report.opened, QStringList{report.pdf_path()});
}

void GeneratePdfTest::telemetry_during_that_message_is_on_the_page()
{
    ReportBench report;
    report.bench.press("pbStartSkip");
    report.bench.receive("25.00", "10.0", "D");
    Settings::set_header_image_filename("gone.png");
    report.bench.answers.handle([&report](QWidget* box) {
        report.bench.receive_after(360.0, "24.00", "10.0", "D");
        static_cast<QDialog*>(box)->accept();
    });
    report.generate();
    QCOMPARE(PdfFile(report.pdf_path()).lines().value(4), QString("Discharge Capacity 1.00 Ah"));
}

void GeneratePdfTest::the_message_comes_only_with_a_page()
{
    ReportBench report;
    report.bench.station->unload_test_data();
    Settings::set_header_image_filename("gone.png");
    report.bench.answers.click(QMessageBox::Ok);
    report.generate();
    QCOMPARE(texts_seen(report), QStringList{"No data loaded."});
}

void GeneratePdfTest::a_header_image_that_cannot_be_read_is_left_out_in_silence()
{
    ReportBench report;
    QVERIFY(write_file(report.bench.path("broken.png"), "this is no image"));
    Settings::set_header_image_filename(report.bench.path("broken.png"));
    report.generate();
    QCOMPARE(texts_seen(report), QStringList());
    QCOMPARE(PdfFile(report.pdf_path()).images(), QStringList());
    QCOMPARE(report.opened, QStringList{report.pdf_path()});
}

void GeneratePdfTest::the_built_in_header_image_is_above_the_titles()
{
    ReportBench report;
    report.generate();
    const QStringList images = PdfFile(report.pdf_path()).images();
    QCOMPARE(images.size(), 1);
    const QStringList columns = images[0].simplified().split(' ');
    QCOMPARE(columns.value(2), QString("image"));
    QCOMPARE(columns.value(3) + " x " + columns.value(4), QString("2400 x 240"));
}

void GeneratePdfTest::a_header_image_of_ones_own_takes_its_place()
{
    ReportBench report;
    QImage image(300, 20, QImage::Format_RGB32);
    image.fill(Qt::green);
    QVERIFY(image.save(report.bench.path("own.png")));
    Settings::set_header_image_filename(report.bench.path("own.png"));
    report.generate();
    const PdfFile pdf(report.pdf_path());
    QCOMPARE(pdf.images().value(0).simplified().split(' ').mid(3, 2), QStringList({"300", "20"}));
    const QColor drawn = pdf.rendered(72).pixelColor(306, 55);
    QVERIFY2(drawn.green() > 250 && drawn.red() < 5, qPrintable(drawn.name()));
}

void GeneratePdfTest::all_fonts_are_embedded()
{
    ReportBench report;
    report.add_cycle({});
    report.generate();
    const QStringList fonts = PdfFile(report.pdf_path()).fonts();
    QVERIFY(!fonts.isEmpty());
    for (const QString& font : fonts) {
        const QStringList columns = font.simplified().split(' ');
        QCOMPARE(columns.value(columns.size() - 5), QString("yes"));
    }
}

void GeneratePdfTest::the_top_of_the_resistance_scale_stays_behind()
{
    ReportBench report;
    report.add_cycle({});
    report.add_cycle({4.0, 4, 200.0, false});
    report.generate();
    // The highest reading of the cycle without a tick, and 150 milliohms at 2 amps.
    QCOMPARE(TestStation::internal_resistance_chart.left_axis.forced_range.max, 204.0 + 75.0);
    report.bench.station->unload_test_data();
    QCOMPARE(TestStation::internal_resistance_chart.left_axis.forced_range.max, 204.0 + 75.0);
}

KEST_TEST(GeneratePdfTest)
#include "tst_generate_pdf.moc"
