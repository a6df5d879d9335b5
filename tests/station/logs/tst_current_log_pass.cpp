#include "station/logs/current_log_reader.h"
#include "support/test_program.h"

#include <QtTest>

/** A current log that is read while it grows, one line after the other. */
class CurrentLogPassTest : public QObject
{
    Q_OBJECT

private slots:
    void lines_are_told_by_their_numbers();
};

namespace
{
/** Tells of the lines outside a curve, and of the refused one. */
class LineListener : public LogSink
{
public:
    void take_other_line(const LogLine& line) override
    {
        told += QString("%1: %2").arg(line.number).arg(line.text);
    }
    void refuse(const LogRefusal& refusal) override
    {
        told += QString("%1, %2 refused").arg(refusal.line).arg(refusal.column);
    }

    QStringList told;
};
}  // namespace

void CurrentLogPassTest::lines_are_told_by_their_numbers()
{
    LineListener listener;
    CurrentLogPass pass(listener);
    for (const char* line : {"Charge Number: 1", "Time (s),Voltage (V)", "1.0,24.00"})
        QVERIFY(pass.take_line(line));
    QVERIFY(!pass.take_line("2.0"));
    QVERIFY(pass.take_line("3.0,24.01"));
    const QStringList told = {"3: Time (s),Voltage (V)", "4: 1.0,24.00", "5, 1 refused",
                              "6: 3.0,24.01"};
    QCOMPARE(listener.told, told);
}

KEST_GUILESS_TEST(CurrentLogPassTest)
#include "tst_current_log_pass.moc"
