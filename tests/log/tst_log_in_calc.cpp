#include "program_run.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QDir>
#include <QImage>
#include <QRegularExpression>
#include <QtTest>

/** What is exported, as a spreadsheet program shows it. */
class LogInCalcTest : public QObject
{
    Q_OBJECT

private slots:
    void every_sheet_and_table_is_read();
    void the_summary_is_one_page_with_charts();
    void every_sheet_has_a_print_area();
    void charts_show_their_curves_and_none_is_empty();
    void names_may_hold_anything();

private:
    Run calc(const QString& filter, const QStringList& files) const;

    const Place place{};
};

/** Into the folder "out", with settings of its own. */
Run LogInCalcTest::calc(const QString& filter, const QStringList& files) const
{
    const QString settings = QUrl::fromLocalFile(place.path("settings")).toString();
    return Run("soffice",
               QStringList{"-env:UserInstallation=" + settings, "--headless", "--convert-to",
                           filter, "--outdir", place.path("out")} +
                   files,
               place.path("."));
}

void LogInCalcTest::every_sheet_and_table_is_read()
{
    place.write("a.csv", content_of(test_data("logs/current_two_cycles.csv")));
    for (const char* format : {"csv", "xlsx"})
        QCOMPARE(place.run({"export", "-f", format, "--zone", "UTC", "a.csv"}).status, 0);
    // All sheets, with commas, as they are shown.
    const Run run = calc("csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,true,true,false,"
                         "false,-1",
                         {"a.xlsx", "a.tidy.csv"});
    QCOMPARE(run.status, 0);
    QCOMPARE(QDir(place.path("out")).entryList(QDir::Files, QDir::Name),
             (QStringList{"a-Charge 1.csv", "a-Charge 2.csv", "a-Cycle 1.csv", "a-Cycle 2.csv",
                          "a-Parameters.csv", "a-Summary.csv", "a.tidy-a.tidy.csv"}));
    QCOMPARE(
        content_of(place.path("out/a-Summary.csv")),
        QByteArray("battery,serial number,kind,number,start,duration (s),rows,first (V),lowest (V),"
                   "last (V),charge (Ah),energy live (Wh),energy after loading (Wh),resistances,"
                   "mean (mOhm)\n"
                   "Pack: B,7,charge,1,2020-04-03T09:15:02.000+00:00,0.0,0,,,,,,,,\n"
                   "Pack: B,7,discharge,1,2020-04-03T10:02:44.000+00:00,3600.5,2,40.97,31.02,31.02,"
                   "9.981,309.640,359.389,0,\n"
                   "Pack: B,7,charge,2,2020-04-03T11:40:10.000+00:00,0.8,1,38.02,38.02,38.02,,,,,\n"
                   "Pack: B,7,discharge,2,2020-04-03T13:00:00.000+00:00,91.2,3,40.80,40.09,40.09,"
                   "0.253,10.147,-348.222,1,0.0\n"));
    QCOMPARE(content_of(place.path("out/a-Cycle 2.csv")),
             QByteArray("section time (s),test time (s),time,voltage (V),current (A),charge (Ah),"
                        "energy live (Wh),resistance (mOhm)\n"
                        "0.9,13498.9,2020-04-03T13:00:00.900+00:00,40.80,-9.97,0.002,0.0816,\n"
                        "90.2,13588.2,2020-04-03T13:01:30.200+00:00,40.10,-9.98,0.250,10.0264,0\n"
                        "91.2,13589.2,2020-04-03T13:01:31.200+00:00,40.09,-9.98,0.253,10.1467,"
                        "\n"));
    QCOMPARE(content_of(place.path("out/a.tidy-a.tidy.csv")).split('\n')[5],
             QByteArray("Pack: B,7,2,discharge,90.2,13588.2,2020-04-03T13:01:30.200+00:00,40.1,"
                        "-9.98,0.25,10.0264,0"));
}

void LogInCalcTest::the_summary_is_one_page_with_charts()
{
    place.write("b.csv", content_of(test_data("logs/current_two_cycles.csv")));
    QCOMPARE(place.run({"export", "-f", "xlsx", "--zone", "UTC", "b.csv"}).status, 0);
    QCOMPARE(calc("pdf", {"b.xlsx"}).status, 0);
    const QString pdf = place.path("out/b.pdf");
    QVERIFY(Run("pdfinfo", {pdf}).output.contains(QRegularExpression("Pages: +6\n")));
    const QString text = Run("pdftotext", {"-l", "1", "-layout", pdf, "-"}).output;
    for (const char* word : {"Pack: B, 7", "energy after loading (Wh)", "359.389", "Cycle 2",
                             "resistance (mOhm)", "Page 1 of 6"})
        QVERIFY2(text.contains(word), word);
    QCOMPARE(
        Run("pdftoppm", {"-r", "150", "-l", "1", "-singlefile", "-png", pdf, place.path("page")})
            .status,
        0);
    const QImage page(place.path("page.png"));
    QVERIFY(!page.isNull());
    int coloured = 0;
    for (int y = 0; y < page.height(); ++y)
        for (int x = 0; x < page.width(); ++x)
            coloured += QColor(page.pixel(x, y)).hsvSaturation() > 100 ? 1 : 0;
    // All but curves and marks is black, grey or white.
    QVERIFY2(coloured > 100, qPrintable(QString::number(coloured)));
}

void LogInCalcTest::every_sheet_has_a_print_area()
{
    place.write("c.csv", content_of(test_data("logs/current_two_cycles.csv")));
    QCOMPARE(place.run({"export", "-f", "xlsx", "c.csv"}).status, 0);
    const Run run("/usr/bin/python3",
                  {"-c",
                   "import openpyxl, sys\n"
                   "for s in openpyxl.load_workbook(sys.argv[1]): print(s.title, *s.print_area)\n",
                   place.path("c.xlsx")});
    QCOMPARE(run.complaints, QString());
    QCOMPARE(run.output, QString("Summary $A$1:$O$75\n"
                                 "Charge 1 $A$1:$D$1\n"
                                 "Cycle 1 $A$1:$H$3\n"
                                 "Charge 2 $A$1:$D$2\n"
                                 "Cycle 2 $A$1:$H$4\n"
                                 "Parameters $A$1:$C$28\n"));
}

/** Volts from below the lowest on; no chart of resistances where none was measured. */
void LogInCalcTest::charts_show_their_curves_and_none_is_empty()
{
    place.write("c.csv", content_of(test_data("logs/current_two_cycles.csv")));
    QCOMPARE(place.run({"export", "-f", "xlsx", "--force", "c.csv"}).status, 0);
    const Run run("/usr/bin/python3",
                  {"-c",
                   "import openpyxl, sys\n"
                   "for s in openpyxl.load_workbook(sys.argv[1]):\n"
                   "    print(s.title, len(s._charts), *[c.y_axis.scaling.min for c in s._charts])",
                   place.path("c.xlsx")});
    QCOMPARE(run.complaints, QString());
    QCOMPARE(run.output, QString("Summary 3 31.0 None None\n"
                                 "Charge 1 0\n"
                                 "Cycle 1 2 31.0 None\n"
                                 "Charge 2 0\n"
                                 "Cycle 2 3 40.0 None None\n"
                                 "Parameters 0\n"));
}

/** A single character that no XML may hold makes a workbook unreadable. */
void LogInCalcTest::names_may_hold_anything()
{
    place.write("d.csv", content_of(test_data("logs/current_two_cycles.csv"))
                             .replace("Pack: B", "a\x01\x1b[31m\xef\xbf\xbf\xff&<>\"&P"));
    QCOMPARE(place.run({"export", "-f", "xlsx", "d.csv"}).status, 0);
    const Run run("/usr/bin/python3",
                  {"-c",
                   "import openpyxl, sys\n"
                   "for s in openpyxl.load_workbook(sys.argv[1]): print(s.title, s['A2'].value)",
                   place.path("d.xlsx")});
    QCOMPARE(run.complaints, QString());
    const QString name =
        QString("a__[31m__&<>\"&P").replace('_', QChar(QChar::ReplacementCharacter));
    QCOMPARE(run.output.section('\n', 0, 0), "Summary " + name);
}

KEST_GUILESS_TEST(LogInCalcTest)
#include "tst_log_in_calc.moc"
