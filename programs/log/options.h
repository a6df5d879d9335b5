#pragma once

#include <QString>
#include <QStringList>
#include <QTimeZone>

enum class Command
{
    None,
    Info,
    Check,
    Repair,
    Export
};

enum class Format
{
    None,
    Csv,
    Xlsx,
    Bdf,
    Json
};

/** The command line as values. */
struct Options
{
    Command command = Command::None;
    Format format = Format::None;
    QStringList files;
    QString to;  ///< folder; empty for the one of each log
    QTimeZone zone = QTimeZone::systemTimeZone();
    int jobs = 1;
    bool recursive = false;
    bool force = false;
    bool json = false;

    QString answer;  ///< to be printed in place of any work: help or version
    QString error;   ///< a sentence about wrong arguments
};

Options read_options(const QStringList& arguments);
