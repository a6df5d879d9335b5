#include "records/exact_row.h"
#include "support/test_program.h"

#include "common/number_row.h"
#include "station/logs/log_format.h"

#include <QtTest>

/** The form in which the application writes a row, and everything beside it. */
class ExactRowTest : public QObject
{
    Q_OBJECT

private slots:
    void a_row_is_exact_or_not_data();
    void a_row_is_exact_or_not();
    void what_the_application_writes_is_exact_data();
    void what_the_application_writes_is_exact();
};

void ExactRowTest::a_row_is_exact_or_not_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<bool>("charge");
    QTest::addColumn<bool>("discharge");
    QTest::newRow("charge") << "0.9,41.52" << true << false;
    QTest::newRow("discharge") << "181.2,0.502,40.11,9.97" << false << true;
    QTest::newRow("with a resistance") << "181.2,0.502,40.11,9.97,0.014" << false << true;
    QTest::newRow("negative") << "-0.1,-0.001,-40.11,-9.97,-0.014" << false << true;
    QTest::newRow("a decimal lost") << "181.2,0.502,40.11,9.9" << false << false;
    QTest::newRow("all decimals lost") << "181.2,0.502,40.11,9" << false << false;
    QTest::newRow("a decimal more") << "0.90,41.52" << false << false;
    QTest::newRow("a digit of the resistance lost")
        << "1.0,0.502,40.11,9.97,0.01" << false << false;
    QTest::newRow("a column more") << "1.0,0.502,40.11,9.97,0.014,1.0" << false << false;
    QTest::newRow("a zero in front") << "00.9,41.52" << false << false;
    QTest::newRow("no digit in front") << ".9,41.52" << false << false;
    QTest::newRow("a plus") << "+0.9,41.52" << false << false;
    QTest::newRow("a blank") << "0.9, 41.52" << false << false;
    QTest::newRow("an exponent") << "1.0,1e-3,40.11,9.97" << false << false;
    QTest::newRow("no number") << "0.9,nan" << false << false;
    QTest::newRow("another separator") << "0.9;41.52" << false << false;
    QTest::newRow("a comma at the end") << "0.9,41.52," << false << false;
    QTest::newRow("nothing") << "" << false << false;
}

void ExactRowTest::a_row_is_exact_or_not()
{
    QFETCH(QString, row);
    QTEST(is_exact_charge_row(row), "charge");
    QTEST(is_exact_discharge_row(row), "discharge");
}

void ExactRowTest::what_the_application_writes_is_exact_data()
{
    QTest::addColumn<double>("number");
    for (const double number : {0.0, -0.0, 0.004, -0.004, 9.995, 41.52, 123456.789, 1e12, -3.0})
        QTest::addRow("%g", number) << number;
}

void ExactRowTest::what_the_application_writes_is_exact()
{
    QFETCH(double, number);
    NumberRow charge;
    LogFormat::put_charge_row(charge, number, number);
    QVERIFY(is_exact_charge_row(charge.view().chopped(1)));
    NumberRow discharge;
    LogFormat::put_discharge_row(discharge, number, number, number, number, number);
    QVERIFY(is_exact_discharge_row(discharge.view().chopped(1)));
}

KEST_GUILESS_TEST(ExactRowTest)
#include "tst_exact_row.moc"
