#include "log/exporter.h"

Exporter::Exporter(OutputFile& to, const QTimeZone& zone) : out(to), clock(zone)
{
}

void Exporter::finish()
{
}

QStringList Exporter::notes() const
{
    return QStringList();
}

void Exporter::refuse(const LogRefusal& why)
{
    refusal = why;
}

// An older log knows one start for all its sections: there, each goes on where the last one ended.
void Exporter::section_begun(const Section& section)
{
    ++step;
    const bool known = section.start.isValid();
    start_known = known;
    section_start = known ? clock.milliseconds_of(section.start) : 0;
    if (known && !first_known) {
        first_known = true;
        first_start = section_start;
    }
    const bool own_start = known && generation == LogGeneration::Current;
    const double by_clock = own_start ? double(section_start - first_start) / 1000.0 : 0.0;
    section_offset = qMax(by_clock, last_test_seconds);
    if (!own_start && known)
        section_start += qint64(last_test_seconds * 1000.0);
}

double Exporter::test_seconds(const Row& row) const
{
    return section_offset + row.seconds;
}

void Exporter::note_row(const Row& row)
{
    last_test_seconds = qMax(last_test_seconds, test_seconds(row));
}

bool Exporter::time_known() const
{
    return start_known;
}

qint64 Exporter::milliseconds(const Row& row) const
{
    return section_start + qRound64(row.seconds * 1000.0);
}
