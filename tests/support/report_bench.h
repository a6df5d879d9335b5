#pragma once

#include "support/station_bench.h"

#include <QObject>
#include <QStringList>

class TestCycle;

/** What a cycle's curves and figures are to look like. */
struct CycleShape
{
    double amp_hours = 4.0;  ///< delivered at 2 A
    int readings = 8;        ///< of the resistance
    double milliohms = 60.0;
    bool ticked = true;
};

/** A station with a test loaded, its charts in the window's dress; files opened are caught. */
class ReportBench : public QObject
{
    Q_OBJECT

public:
    ReportBench();
    ~ReportBench() override;

    /** The clock's day is its start. A point every 18 seconds. */
    TestCycle* add_cycle(const CycleShape& shape);
    /** Presses the button. */
    void generate();
    /** The report's file in the PDF directory, which is the bench's folder at first. */
    QString pdf_path() const;

    StationBench bench;
    QStringList opened;  ///< files that a viewer would show

public slots:
    void slot_open(const QUrl& url);
};
