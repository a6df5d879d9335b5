#include "app/startup.h"

#include "common/console.h"
#include "common/message_boxes.h"

#include <QSharedMemory>

#include <cstdlib>

bool test_library()
{
    print_to_console("Q_ASSERT is disabled; unable to test library functions.\n");
    return true;
}

void prevent_multiple_instances()
{
    QSharedMemory memory("5bd399cd-d3b0-49de-8a69-b9fc02905849");
    if (memory.create(512, QSharedMemory::ReadWrite))
        return;
    show_error("The program is already running.");
    std::exit(0);
}
