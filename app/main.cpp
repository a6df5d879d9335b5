#include "app/main_window.h"
#include "app/startup.h"

#include <QApplication>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    test_library();
    MainWindow window(nullptr);
    window.show();
    return QApplication::exec();
}
