#include "log/mender.h"

#include "log/log_line.h"
#include "station/logs/log_format.h"
#include "station/logs/log_reader.h"

namespace
{
const QByteArray CHARGE_TITLES = LogFormat::CHARGE_TITLES;
const QByteArray DISCHARGE_TITLES = LogFormat::DISCHARGE_TITLES;
const QByteArray BYTE_ORDER_MARK = "\xef\xbb\xbf";
constexpr int OLDER_HEAD_LINES = 7;

const char* const NO_SENSE = "no line in the application's own form";
const char* const HEAD_LOST = "its section has lost its head";
const char* const TAIL = "left of another log that was written over";
}  // namespace

Mender::Mender(MendedParts& to) : out(to)
{
}

bool Mender::untouched() const
{
    return failure.isEmpty() && notes.isEmpty() && lines_left_out == 0;
}

void Mender::expect_tail(qint64 first_line)
{
    tail_line = first_line;
}

void Mender::take_line(const QByteArray& line, bool complete)
{
    if (!failure.isEmpty())
        return;
    if (++line_number == tail_line) {
        settle_suspect(true);
        in = In::Lost;
        tail = true;
    }
    if (!complete)
        note_left_out(line_number, "the last line, which has no end");
    else if (in == In::Start)
        take_first_line(line);
    else if (in == In::Older)
        take_older_line(line);
    else
        take_current_line(line);
}

void Mender::finish()
{
    settle_suspect(true);
    if (parts == 0 && failure.isEmpty())
        failure = "it has no whole line";
    if (in == In::Older && older_head_lines < OLDER_HEAD_LINES)
        failure = "the head of the log is cut off";
}

void Mender::take_first_line(const QByteArray& whole_line)
{
    const bool marked = whole_line.startsWith(BYTE_ORDER_MARK);
    const QByteArray line = marked ? whole_line.mid(BYTE_ORDER_MARK.size()) : whole_line;
    if (marked)
        notes << "The byte order mark at its beginning is left out.";
    switch (log_generation(text_of(line.left(LONGEST_ROW)))) {
    case LogGeneration::Current:
        in = In::FileHead;
        begin_part(line + '\n');
        break;
    case LogGeneration::Older:
        in = In::Older;
        ++parts;
        out.begin_part();
        older_head = line + '\n';
        older_head_lines = 1;
        write(line);
        break;
    case LogGeneration::None:
        failure = "its first line is not the mark of a data log";
        break;
    }
}

void Mender::take_current_line(const QByteArray& line)
{
    const Form form = form_of(line);
    if (form == Form::Other && line == MARK) {
        split_off("another log begins");
        begin_part(line + '\n');
        in = In::FileHead;
    } else if (form == Form::Other && take_number_line(line)) {
        return;
    } else if (in == In::Lost) {
        note_left_out(line_number, tail ? TAIL : HEAD_LOST);
    } else if (form == Form::Charge) {
        take_charge_row(line);
    } else if (form == Form::Discharge) {
        take_discharge_row(line);
    } else if (!take_key_line(line)) {
        leave_out(NO_SENSE);
    }
}

/** A line with a section's number, right or wrong; false for every other. */
bool Mender::take_number_line(const QByteArray& line)
{
    const QByteArray key = key_of(line);
    const bool charge = key == CHARGE_NUMBER;
    if (!charge && key != DISCHARGE_NUMBER)
        return false;
    settle_suspect(true);
    bool ok = false;
    const QByteArray value = line.mid(line.indexOf(':') + 1).trimmed();
    const int number = value.toInt(&ok);
    if (!ok || number < 1) {
        lose_section("a section without a number");
        return true;
    }
    const int due = discharges_in_file + 1;
    const bool fits = number == due || (kind_lost && number == due + 1);
    if (tail || !fits) {
        split_off(QString("%1 %2 does not follow what stands before it")
                      .arg(charge ? "charge" : "discharge")
                      .arg(number));
        begin_part(MARK + '\n' + battery_line + serial_line);
        offset = number - 1;
    } else if (number - offset != discharges + 1) {
        offset = number - discharges - 1;
        notes << QString("Sections from line %1 on have new numbers.").arg(line_number);
    }
    begin_section(charge, number);
    if (offset == 0 && value != QByteArray::number(number))
        notes << QString("Line %1 has its number in the right form now.").arg(line_number);
    if (offset == 0 && value == QByteArray::number(number))
        write(line);
    else
        write(number_line(charge, number - offset));
    return true;
}

void Mender::begin_section(bool charge, int number)
{
    in = charge ? In::Charge : In::Discharge;
    discharges_in_file = charge ? number - 1 : number;
    if (!charge)
        ++discharges;
    section_head.clear();
    kind_lost = tail = rows_begun = has_timestamp = garbage_before = false;
    last = Reading();
}

/** Titles and the lines of heads, where they may stand; false for what makes no sense. */
bool Mender::take_key_line(const QByteArray& line)
{
    const bool titles = line == CHARGE_TITLES || line == DISCHARGE_TITLES;
    const QByteArray key = key_of(line);
    const bool timestamp = key == TIMESTAMP;
    if (titles &&
        (in == In::FileHead || rows_begun || (line == CHARGE_TITLES) != (in == In::Charge)))
        return false;
    if (!titles && !reader_accepts(line))
        return false;
    if (in != In::FileHead && !titles && (rows_begun || (timestamp && has_timestamp))) {
        lose_section(HEAD_LOST);
        return true;
    }
    if (key == "Battery Name")
        battery_line = line + '\n';
    if (key == "Serial Number")
        serial_line = line + '\n';
    has_timestamp = has_timestamp || timestamp;
    rows_begun = rows_begun || titles;
    if (in != In::FileHead && !titles)
        section_head += line + '\n';
    write(line);
    return true;
}

bool Mender::reader_accepts(const QByteArray& line) const
{
    if (!line.contains(':'))
        return false;
    QByteArray context = MARK + '\n';
    if (in == In::Charge)
        context += "Charge Number: 1\n";
    if (in == In::Discharge)
        context += "Discharge Number: 1\n";
    return loads(context + line + '\n');
}

void Mender::take_charge_row(const QByteArray& line)
{
    if (in == In::FileHead || (in == In::Discharge && garbage_before)) {
        lose_section(HEAD_LOST);
        return;
    }
    if (in == In::Discharge)
        put_charge_head();
    const Reading reading = charge_reading(line);
    if (garbage_before && last.known && reading.seconds < last.seconds) {
        tail = true;
        lose_section(TAIL);
        return;
    }
    rows_begun = true;
    garbage_before = false;
    last = reading;
    write(line);
}

// A charge test that falls due on the very line that ends the charge goes on under the head of the
// discharge that was begun.
void Mender::put_charge_head()
{
    settle_suspect(true);
    in = In::Charge;
    last = Reading();
    notes << QString("Line %1 begins a charge, which now has a head of its own.").arg(line_number);
    out.write(number_line(true, discharges + 1) + '\n' + section_head + CHARGE_TITLES + '\n');
}

void Mender::take_discharge_row(const QByteArray& line)
{
    if (in != In::Discharge) {
        kind_lost = true;
        lose_section(HEAD_LOST);
        return;
    }
    const Reading reading = discharge_reading(line);
    rows_begun = true;
    if (!suspect.isEmpty()) {
        // A lone odd row is one; two that fit each other and nothing before belong to another log.
        const bool goes_on = continues(before_suspect, reading);
        if (!goes_on && continues(last, reading)) {
            settle_suspect(false);
            tail = true;
            lose_section(TAIL);
            return;
        }
        settle_suspect(true);
        if (goes_on)
            last = before_suspect;
    }
    const bool fits = !last.known || continues(last, reading);
    garbage_before = false;
    if (fits) {
        write(line);
    } else {
        before_suspect = last;
        suspect = line;
        suspect_number = line_number;
    }
    last = reading;
}

void Mender::settle_suspect(bool good)
{
    if (suspect.isEmpty())
        return;
    if (good)
        write(suspect);
    else
        note_left_out(suspect_number, TAIL);
    suspect.clear();
}

void Mender::take_older_line(const QByteArray& line)
{
    if (older_head_lines < OLDER_HEAD_LINES) {
        older_head += line + '\n';
        if (++older_head_lines == OLDER_HEAD_LINES && !loads(older_head))
            failure = "the head of the log is damaged";
        write(line);
        return;
    }
    if (key_of(line) == CHARGE_NUMBER || key_of(line) == DISCHARGE_NUMBER) {
        const QList<QByteArray> battery = older_head.split('\n')[3].split('\t');
        battery_line = "Battery Name:  " + battery.value(1) + '\n';
        serial_line = "Serial Number: " + battery.value(3) + '\n';
        in = In::FileHead;
        tail = true;
        take_number_line(line);
    } else if (!take_older_marker(line)) {
        take_older_row(line);
    }
}

bool Mender::take_older_marker(const QByteArray& line)
{
    const bool row = line.count('\t') >= LEAST_COLUMNS - 1;
    if (row || !loads(older_head + line + '\n'))
        return false;
    last = Reading();
    garbage_before = tail = false;
    write(line);
    return true;
}

void Mender::take_older_row(const QByteArray& line)
{
    LogRow row;
    const bool plain = line.size() <= LONGEST_ROW && read_plain_row(text_of(line), '\t', row);
    if (!plain && !loads(older_head + "Discharge cycle: 1\n" + line + '\n')) {
        leave_out(NO_SENSE);
        return;
    }
    const double seconds = line.left(line.indexOf('\t')).toDouble();
    tail = tail || (garbage_before && last.known && seconds < last.seconds);
    if (tail) {
        note_left_out(line_number, HEAD_LOST);
        return;
    }
    garbage_before = false;
    last.seconds = seconds;
    last.known = true;
    write(line);
}

void Mender::begin_part(const QByteArray& head)
{
    ++parts;
    out.begin_part();
    out.write(head);
    discharges = 0;
    discharges_in_file = 0;
    offset = 0;
}

void Mender::split_off(const QString& why)
{
    settle_suspect(true);
    notes << QString("From line %1 on it is another log: %2.").arg(line_number).arg(why);
}

void Mender::lose_section(const QString& why)
{
    settle_suspect(true);
    in = In::Lost;
    kind_lost = true;
    note_left_out(line_number, why);
}

void Mender::leave_out(const QString& reason)
{
    garbage_before = true;
    note_left_out(line_number, reason);
}

void Mender::note_left_out(qint64 number, const QString& reason)
{
    ++lines_left_out;
    if (!left_out.isEmpty() && left_out.last().last == number - 1 &&
        left_out.last().reason == reason)
        left_out.last().last = number;
    else if (left_out.size() < MOST_LISTED)
        left_out.append({number, number, reason});
}

void Mender::write(const QByteArray& line)
{
    out.write(line + '\n');
}
