#include "doctor/doctor.h"
#include "doctor/doctor_options.h"

#include "common/console.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    // The settings' place follows the name of the program that made them.
    QCoreApplication::setApplicationName("kest-battery-tester");
    DoctorOptions options;
    QString message;
    switch (read_doctor_options(QCoreApplication::arguments(), options, message)) {
    case DoctorStart::Tell:
        print_to_console(message);
        return 0;
    case DoctorStart::Refuse:
        std::fprintf(stderr, "kest-doctor: %s\n", qPrintable(message));
        return 2;
    case DoctorStart::Run:
        break;
    }
    return run_doctor(options);
}
