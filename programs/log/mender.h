#pragma once

#include "log/reading.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

/** Lines of a log that its mended copy does not have. */
struct LeftOut
{
    qint64 first = 0;  ///< lines counted from 1
    qint64 last = 0;
    QString reason;
};

/** Where mended logs go: usually one, more where several logs stood in one file. */
class MendedParts
{
public:
    virtual ~MendedParts() = default;
    virtual void begin_part() = 0;
    virtual void write(const QByteArray& bytes) = 0;
};

/**
 * Mends a log line by line. What it keeps is one line and the head of the log, however long that is.
 *
 * Every row in the exact form of the application stays, in its order. What stands under a head that
 * is lost goes with it: it would join the section before.
 */
class Mender
{
public:
    explicit Mender(MendedParts& to);

    /** What an earlier log left stands from this line on; to be called before the first one. */
    void expect_tail(qint64 first_line);

    /** @param complete whether the line has an end; a last one without is cut */
    void take_line(const QByteArray& line, bool complete);
    void finish();

    /** What was done besides leaving lines out, as sentences. */
    QStringList notes;
    QList<LeftOut> left_out;  ///< the first MOST_LISTED
    qint64 lines_left_out = 0;
    int parts = 0;
    QString failure;  ///< why nothing can be mended; empty if it can

    static constexpr int MOST_LISTED = 1000;

    /** Nothing had to be done. */
    bool untouched() const;

private:
    enum class In
    {
        Start,
        FileHead,
        Charge,
        Discharge,
        Lost,  ///< under a head that is lost
        Older
    };

    void take_first_line(const QByteArray& line);
    void take_current_line(const QByteArray& line);
    bool take_number_line(const QByteArray& line);
    bool take_key_line(const QByteArray& line);
    void take_charge_row(const QByteArray& line);
    void take_discharge_row(const QByteArray& line);
    void take_older_line(const QByteArray& line);
    bool take_older_marker(const QByteArray& line);
    void take_older_row(const QByteArray& line);

    void begin_section(bool charge, int number);
    void put_charge_head();
    void begin_part(const QByteArray& head);
    void split_off(const QString& why);
    void lose_section(const QString& why);
    void leave_out(const QString& reason);
    void note_left_out(qint64 number, const QString& reason);
    void write(const QByteArray& line);
    void settle_suspect(bool good);
    bool reader_accepts(const QByteArray& line) const;

    MendedParts& out;
    In in = In::Start;
    qint64 line_number = 0;
    qint64 tail_line = 0;  ///< where an earlier log begins; 0 for none
    QByteArray battery_line = "Battery Name:  \n";
    QByteArray serial_line = "Serial Number: \n";
    QByteArray section_head;  ///< of the section in progress, without number and titles
    QByteArray older_head;    ///< the first seven lines of an older log
    int older_head_lines = 0;
    int discharges = 0;          ///< in the part in progress
    int discharges_in_file = 0;  ///< as its numbers count
    int offset = 0;              ///< what the numbers of the file are ahead of those written
    bool kind_lost = false;      ///< a head was lost: perhaps a discharge's
    bool tail = false;           ///< the next section begins a part
    bool rows_begun = false;     ///< titles or rows of this section were there
    bool has_timestamp = false;
    bool garbage_before = false;  ///< since the last good row
    Reading last;
    Reading before_suspect;
    QByteArray suspect;  ///< a row that fits neither end nor beginning yet
    qint64 suspect_number = 0;
};
