#pragma once

#include <QString>
#include <QStringList>

/** What the command line of kest-doctor asks for. */
struct DoctorOptions
{
    QString root = "/";   ///< below which /sys, /proc, /dev, /run and /etc are looked at
    QString listen_port;  ///< "ttyUSB0" or a path; empty for the look at everything
    int seconds = 10;     ///< of listening to that port
    bool listens = true;  ///< to the free ports, in the look at everything
    bool json = false;
};

enum class DoctorStart
{
    Run,
    Tell,  ///< help or version
    Refuse
};

/** Reads the arguments, program name first. `message` is what to tell, or what is wrong with them. */
DoctorStart read_doctor_options(const QStringList& arguments, DoctorOptions& options,
                                QString& message);
