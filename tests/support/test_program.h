#pragma once

#include "support/state_names.h"

#include <QApplication>
#include <QtTest>

/**
 * A class of tests in the program of its folder, where it goes by the name of its file: what follows
 * that name on the command line is for the class alone.
 */
class TestProgram
{
public:
    using Main = int (*)(int argc, char** argv);

    TestProgram(const char* file, Main run);

    /** Runs the class that the first argument names; without one, tells the names that there are. */
    static int main(int argc, char** argv);
};

template <typename Application, typename Tests> int run_tests(int argc, char** argv)
{
    const Application application(argc, argv);
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi, true);
    Tests tests;
    return QTest::qExec(&tests, argc, argv);
}

/** Columns of one type, in this order: add_columns<QString>({"name", "number"}). */
template <typename Type> void add_columns(std::initializer_list<const char*> names)
{
    for (const char* name : names)
        QTest::addColumn<Type>(name);
}

/** A row of a data table in one line: add_row("both good", "Pack A", "1042", true). */
template <typename... Values> void add_row(const char* name, const Values&... values)
{
    (QTest::newRow(name) << ... << values);
}

#define KEST_TEST_MAIN(run) static const TestProgram test_program(__FILE__, run);
#define KEST_TEST(Tests) KEST_TEST_MAIN((run_tests<QApplication, Tests>))
#define KEST_GUILESS_TEST(Tests) KEST_TEST_MAIN((run_tests<QCoreApplication, Tests>))
