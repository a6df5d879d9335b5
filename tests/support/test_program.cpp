#include "support/test_program.h"

#include <QFileInfo>
#include <QMap>

#include <cstdio>

namespace
{
/** By name, "tst_axis". A function's own, as the classes enter themselves before main. */
QMap<QByteArray, TestProgram::Main>& programs()
{
    static QMap<QByteArray, TestProgram::Main> all;
    return all;
}
}  // namespace

TestProgram::TestProgram(const char* file, Main run)
{
    programs().insert(QFileInfo(file).completeBaseName().toUtf8(), run);
}

int TestProgram::main(int argc, char** argv)
{
    const Main run = argc > 1 ? programs().value(argv[1]) : nullptr;
    if (run != nullptr)
        return run(argc - 1, argv + 1);
    std::fputs("Name one of these, and what it is to do:\n", stderr);
    for (const QByteArray& name : programs().keys())
        std::fprintf(stderr, "  %s\n", name.constData());
    return 2;
}
