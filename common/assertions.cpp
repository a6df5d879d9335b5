#include "common/assertions.h"

#include "common/console.h"

#include <cstdlib>
#include <iostream>
#include <string>

void assert_fatal(bool condition, QString text, bool fatal)
{
    if (condition)
        return;
    print_to_console(text + "\n");
    if (!fatal)
        return;
    print_to_console("the application will now terminate\n");
    std::string line;
    std::getline(std::cin >> std::ws, line);
    std::exit(1);
}
