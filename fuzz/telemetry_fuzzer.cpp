#include "common/date_time.h"
#include "common/parse_int.h"
#include "device/kestrometer.h"
#include "support/read_log.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDateTime>
#include <QStringList>

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace
{
/** What an instrument makes of its lines, field by field. */
struct LiteralReadings
{
    double voltage = 0.0;
    double current = 0.0;
    int id = -1;
    KestrometerState state = Off;
    int valid_lines = 0;

    void take(const QString& line)
    {
        const QStringList fields = line.split('\t');
        if (fields.size() != 7)
            return;
        bool ok = false;
        voltage = fields[1].toDouble(&ok);
        if (!ok)
            return;
        current = fields[2].toDouble(&ok);
        if (!ok || !parse_int(QString(fields[5]).remove("ID="), id) || fields[6].size() != 1)
            return;
        state = state_from_letter(fields[6][0]);
        ++valid_lines;
    }
};

/** As the port would deliver it: what a chunk holds behind a zero byte is lost. */
QString decoded(const QByteArray& chunk)
{
    return QString::fromUtf8(chunk.constData());
}

void require(bool condition)
{
    if (!condition)
        std::abort();
}

/** Made once: each attempt to open its port, which stays closed, waits for the disk. */
std::unique_ptr<Kestrometer> instrument;

/** As new, for the next input. */
void start_anew()
{
    // Whatever was left of a line is taken as one.
    instrument->receive_buffer += "\r\n";
    QMetaObject::invokeMethod(instrument.get(), "receive_data");
    instrument->voltage = 0.0;
    instrument->current = 0.0;
    instrument->id = -1;
    instrument->state = Off;
    instrument->last_data_time = QDateTime();
    instrument->previous_data_time = QDateTime();
}
}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static const QCoreApplication application(*argc, *argv);
    // One time for all: asking for it, and for what it is here, would be half of the work.
    Time::set_clock([start = Time::now()] { return start; });
    instrument = std::make_unique<Kestrometer>("no port");
    return 0;
}

/** Chunks, each led by a byte with its length, to an instrument whose port stays closed. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QBuffer traffic;
    traffic.open(QIODevice::WriteOnly);
    instrument->telemetry_log = &traffic;
    int valid_lines = 0;
    const auto counting = QObject::connect(instrument.get(), &Kestrometer::sig_measurement,
                                           [&valid_lines] { ++valid_lines; });

    QString text;
    for (size_t at = 0; at < size;) {
        const size_t length = qMin(size_t(data[at]), size - at - 1);
        const QByteArray bytes(reinterpret_cast<const char*>(data + at + 1), int(length));
        at += 1 + length;
        text += decoded(bytes);
        instrument->receive_buffer += decoded(bytes);
        QMetaObject::invokeMethod(instrument.get(), "receive_data");
    }
    instrument->get_status();

    QStringList lines = text.split("\r\n");
    require(instrument->receive_buffer == lines.takeLast());
    LiteralReadings literal;
    for (const QString& line : lines)
        literal.take(line);
    require(valid_lines == literal.valid_lines);
    require(same_bits(instrument->voltage, literal.voltage));
    require(same_bits(instrument->current, literal.current));
    require(instrument->id == literal.id);
    require(instrument->state == literal.state);
    QObject::disconnect(counting);
    instrument->telemetry_log = nullptr;
    start_anew();
    return 0;
}
