#include "support/test_program.h"

int main(int argc, char** argv)
{
    return TestProgram::main(argc, argv);
}
