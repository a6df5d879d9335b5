#include "program_run.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QDir>
#include <QJsonArray>
#include <QtTest>

/** What export makes, byte for byte and as other people's programs read it. */
class KestLogExportTest : public QObject
{
    Q_OBJECT

private slots:
    void the_tidy_table_is_exact();
    void names_are_quoted_where_they_must_be();
    void time_never_restarts_in_an_older_log();
    void bdf_leaves_charges_out_and_says_so();
    void pandas_reads_every_format();
    void a_log_that_does_not_load_leaves_no_file_data();
    void a_log_that_does_not_load_leaves_no_file();
    void a_folder_that_takes_no_file_is_told();
};

namespace
{
QByteArray sample(const QString& name)
{
    return content_of(test_data("logs/" + name));
}

/** The columns, the number of rows and the sums of all numbers, as pandas has them. */
const char* const PANDAS = R"(
import json, pandas, sys
kind, path = sys.argv[1], sys.argv[2]
if kind == 'json':
    sections = json.load(open(path))['sections']
    table = pandas.concat([pandas.DataFrame(s['rows'], columns=s['columns']) for s in sections])
elif kind == 'xlsx':
    sheets = pandas.read_excel(path, sheet_name=None)
    print(list(sheets))
    table = sheets['Cycle 1']
else:
    table = pandas.read_csv(path)
print(list(table.columns))
print(len(table))
print([round(float(x), 4) for x in table.select_dtypes('number').sum()])
)";
}  // namespace

void KestLogExportTest::the_tidy_table_is_exact()
{
    const Place place;
    place.write("a.csv", sample("current_one_cycle.csv"));
    const Run run = place.run({"export", "-f", "csv", "--zone", "Europe/Berlin", "a.csv"});
    QCOMPARE(run.output, QString("a.tidy.csv\n"));
    QCOMPARE(run.status, 0);
    QCOMPARE(content_of(place.path("a.tidy.csv")),
             QByteArray("battery,serial_number,cycle,kind,section_time_s,test_time_s,time,"
                        "voltage_V,current_A,charge_Ah,energy_live_Wh,internal_resistance_mOhm\r\n"
                        "Pack A,1042,1,charge,0.9,0.9,2020-04-03T09:15:02.900+02:00,41.52,,,,\r\n"
                        "Pack A,1042,1,charge,1.9,1.9,2020-04-03T09:15:03.900+02:00,41.53,,,,\r\n"
                        "Pack A,1042,1,discharge,1.0,2863.0,2020-04-03T10:02:45.000+02:00,40.97,"
                        "-9.98,0.003,0.1229,\r\n"
                        "Pack A,1042,1,discharge,2.0,2864.0,2020-04-03T10:02:46.000+02:00,40.95,"
                        "-9.99,0.006,0.2458,\r\n"
                        "Pack A,1042,1,discharge,181.2,3043.2,2020-04-03T10:05:45.200+02:00,40.11,"
                        "-9.97,0.502,20.1403,14\r\n"
                        "Pack A,1042,2,charge,0.8,8708.8,2020-04-03T11:40:10.800+02:00,38.02,,,,"
                        "\r\n"));
}

void KestLogExportTest::names_are_quoted_where_they_must_be()
{
    const Place place;
    place.write("a.csv", sample("current_one_cycle.csv").replace("Pack A", "Pack \"A\", left"));
    place.run({"export", "-f", "csv", "a.csv"});
    QVERIFY(content_of(place.path("a.tidy.csv")).contains("\n\"Pack \"\"A\"\", left\",1042,1,"));
}

void KestLogExportTest::time_never_restarts_in_an_older_log()
{
    const Place place;
    place.write("a.csv", sample("older_two_cycles.csv"));
    place.run({"export", "-f", "csv", "--zone", "UTC", "a.csv"});
    double before = -1.0;
    const QList<QByteArray> lines = content_of(place.path("a.tidy.csv")).split('\n');
    QCOMPARE(lines.size(), 12);
    for (const QByteArray& line : lines.mid(1, 10)) {
        const double seconds = line.split(',')[5].toDouble();
        QVERIFY(seconds > before);
        before = seconds;
    }
    QVERIFY(lines[2].contains(",2.0,2.0,2016-04-03T09:15:04.000+00:00,"));
    QVERIFY(lines[3].contains(",1.0,3.0,2016-04-03T09:15:05.000+00:00,"));
}

void KestLogExportTest::bdf_leaves_charges_out_and_says_so()
{
    const Place place;
    place.write("a.csv", sample("current_one_cycle.csv"));
    const Run run = place.run({"export", "-f", "bdf", "--zone", "UTC", "a.csv"});
    QCOMPARE(
        run.complaints,
        QString("kest-log: a.csv: 3 rows of charges are left out: the log holds no current there, "
                "which the Battery Data Format requires.\n"));
    QCOMPARE(content_of(place.path("a.bdf.csv")),
             QByteArray("Test Time / s,Voltage / V,Current / A,Unix Time / s,Cycle Count / 1,"
                        "Step Count / 1,Discharging Capacity / Ah,Discharging Energy / Wh,"
                        "Internal Resistance / Ohm\r\n"
                        "2863.0,40.97,-9.98,1585908165.0,1,2,0.003,0.1229,\r\n"
                        "2864.0,40.95,-9.99,1585908166.0,1,2,0.006,0.2458,\r\n"
                        "3043.2,40.11,-9.97,1585908345.2,1,2,0.502,20.1403,0.014\r\n"));
    QVERIFY(content_of(place.path("a.bdf.metadata.json")).contains("\"serial_number\": \"1042\""));
    QCOMPARE(place.names(), (QStringList{"a.bdf.csv", "a.bdf.metadata.json", "a.csv"}));
}

void KestLogExportTest::pandas_reads_every_format()
{
    const Place place;
    place.write("a.csv", sample("current_one_cycle.csv"));
    const QList<QStringList> files = {
        {"csv", "a.tidy.csv"}, {"json", "a.json"}, {"bdf", "a.bdf.csv"}, {"xlsx", "a.xlsx"}};
    QString seen;
    for (const QStringList& file : files) {
        QCOMPARE(place.run({"export", "-f", file[0], "--zone", "UTC", "a.csv"}).status, 0);
        const Run run("/usr/bin/python3", {"-c", PANDAS, file[0], place.path(file[1])});
        QCOMPARE(run.complaints, QString());
        seen += run.output;
    }
    QCOMPARE(seen,
             QString("['battery', 'serial_number', 'cycle', 'kind', 'section_time_s', "
                     "'test_time_s', 'time', 'voltage_V', 'current_A', 'charge_Ah', "
                     "'energy_live_Wh', 'internal_resistance_mOhm']\n6\n"
                     "[6252.0, 7.0, 187.8, 17481.8, 243.1, -29.94, 0.511, 20.509, 14.0]\n"
                     "['section_time_s', 'test_time_s', 'voltage_V', 'current_A', 'charge_Ah', "
                     "'energy_live_Wh', 'internal_resistance_mOhm']\n6\n"
                     "[187.8, 17481.8, 243.1, -29.94, 0.511, 20.509, 14.0]\n"
                     "['Test Time / s', 'Voltage / V', 'Current / A', 'Unix Time / s', "
                     "'Cycle Count / 1', 'Step Count / 1', 'Discharging Capacity / Ah', "
                     "'Discharging Energy / Wh', 'Internal Resistance / Ohm']\n3\n"
                     "[8770.2, 122.03, -29.94, 4757724676.2, 3.0, 6.0, 0.511, 20.509, 0.014]\n"
                     "['Summary', 'Charge 1', 'Cycle 1', 'Charge 2', 'Parameters']\n"
                     "['section time (s)', 'test time (s)', 'time', 'voltage (V)', 'current (A)', "
                     "'charge (Ah)', 'energy live (Wh)', 'resistance (mOhm)']\n3\n"
                     "[184.2, 8770.2, 122.03, -29.94, 0.511, 20.509, 14.0]\n"));
}

void KestLogExportTest::a_log_that_does_not_load_leaves_no_file_data()
{
    QTest::addColumn<QString>("format");
    for (const char* format : {"csv", "json", "bdf", "xlsx"})
        QTest::newRow(format) << format;
}

void KestLogExportTest::a_log_that_does_not_load_leaves_no_file()
{
    QFETCH(QString, format);
    const Place place;
    place.write("a.csv", sample("current_one_cycle.csv") + "cut");
    const Run run = place.run({"export", "-f", format, "a.csv"});
    QCOMPARE(run.complaints,
             QString("kest-log: a.csv does not load: line 42, column 1: 1 column instead of 2 in a "
                     "charge. A copy made by kest-log repair can be exported.\n"));
    QCOMPARE(run.status, 1);
    QCOMPARE(place.names(), QStringList{"a.csv"});
}

void KestLogExportTest::a_folder_that_takes_no_file_is_told()
{
    const Place place;
    place.write("a.csv", sample("current_one_cycle.csv"));
    const Run run = place.run({"export", "-f", "csv", "--to", "nowhere", "a.csv"});
    QCOMPARE(run.complaints,
             QString("kest-log: nowhere/a.tidy.csv cannot be written: No such file or directory. "
                     "Choose another folder with --to.\n"));
    QCOMPARE(run.status, 1);
}

KEST_GUILESS_TEST(KestLogExportTest)
#include "tst_kest_log_export.moc"
