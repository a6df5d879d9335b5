#pragma once

#include <QString>
#include <QStringList>

/** What the command line of the demo asks for. */
struct DemoOptions
{
    double speed = 60.0;        ///< seconds of the test that pass in one second
    QString unattended_folder;  ///< where an unattended run leaves its files; empty for a window
};

enum class DemoStart
{
    Run,
    Help,
    Refuse
};

/** Reads the arguments, program name first. `message` is the help or what is wrong with them. */
DemoStart read_demo_options(const QStringList& arguments, DemoOptions& options, QString& message);
