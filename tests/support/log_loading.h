#pragma once

#include "support/station_bench.h"

#include "station/test_station.h"

#include <QByteArray>
#include <QLabel>
#include <QPushButton>
#include <QString>
#include <QStringList>

/** A file of tests/data/logs. */
QByteArray sample_log(const char* name);

/** Puts a sample into the folder of the bench; its path. */
QString place_log(const StationBench& bench, const char* name, const QString& as);

/** Presses Load Log and chooses this file; an empty path cancels. */
void load_log(StationBench& bench, const QString& path);

/** As a new station is, but for the parameters: nothing loaded, nothing open, nothing locked. */
bool in_start_state(const TestStation& station);

/** Answers the question about an earlier log of the same name: "rbAppend", "rbOverwrite", ... */
void choose(StationBench& bench, const char* radio_button);

/** A second station without an instrument, with the folder and the answers of a bench. */
class PreviewStation
{
public:
    void load(StationBench& bench, const QString& path);

    template <typename Widget> Widget* find(const char* name) const
    {
        return station.findChild<Widget*>(name);
    }

    QString text(const char* label) const
    {
        return find<QLabel>(label)->text();
    }

    TestStation station{nullptr, nullptr};
};
