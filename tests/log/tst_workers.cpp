#include "program_run.h"
#include "support/test_program.h"

#include <QtTest>

/** What the threads of kest-log share with each other. */
class WorkersTest : public QObject
{
    Q_OBJECT

private slots:
    void the_calendar_is_made_before_the_first_thread();
};

/** Made by two threads at once, it is missing to one of them, whose dates are none then. */
void WorkersTest::the_calendar_is_made_before_the_first_thread()
{
    QCOMPARE(Run(KEST_CALENDAR_PROGRAM, {}).output, QString("made\n"));
    QCOMPARE(Run(KEST_CALENDAR_PROGRAM, {"workers"}).output, QString("there already\n"));
}

KEST_GUILESS_TEST(WorkersTest)
#include "tst_workers.moc"
