#include "fault_course.h"

#include "common/date_time.h"
#include "device/kestrometer.h"
#include "station/test_station.h"

#include <QFile>
#include <QLabel>

namespace
{
/** What the panel tells of an instrument that does not do as it should. */
const char* const WARNINGS[] = {"laLostCommunication", "laKestrometerIsStuck", "laNotDischarging"};

const QByteArray DIGITS = "0123456789";

/** How many of the bytes are a babble of digits. */
int babble_length(const QByteArray& bytes)
{
    if (bytes.size() < 10000 || !bytes.startsWith(DIGITS))
        return 0;
    return bytes.indexOf("KEST");
}
}  // namespace

FaultCourse::FaultCourse(WholeTest& whole_test, const QString& path) : test(whole_test), file(path)
{
    if (!file.open(QIODevice::WriteOnly))
        qFatal("The course cannot be written.");
    test.bench.clock.now = test.bench.clock.now.toUTC();
    const QDateTime& now = test.bench.clock.now;
    Time::set_clock([&now] { return Time::local_time(now.toMSecsSinceEpoch()); });
    // What the instrument has said before.
    test.bench.instrument->last_data_time = Time::now();
    note("begin");
    test.link.on_send = [this](const QByteArray& bytes) {
        note_chunk(bytes);
    };
    test.on_event = [this](const char* what) {
        note_event(what);
    };
}

void FaultCourse::note(const QByteArray& what)
{
    file.write(QByteArray::number(test.bench.clock.now.toMSecsSinceEpoch()) + ' ' + what + '\n');
    file.flush();
}

void FaultCourse::note_chunk(const QByteArray& bytes)
{
    const int digits = babble_length(bytes);
    if (digits > 0)
        note("digits " + QByteArray::number(digits));
    note("chunk " + bytes.mid(digits).toHex());
}

void FaultCourse::note_event(const char* what)
{
    note(qstrcmp(what, "tick") == 0 ? "tick " + shown_warnings() : QByteArray(what));
}

QByteArray FaultCourse::shown_warnings()
{
    QByteArray shown;
    for (const char* name : WARNINGS) {
        const auto* label = test.bench.widget<QLabel>(name);
        shown += label->isVisible() ? '1' : '0';
        if (label->isVisible())
            seen.insert(label->text());
    }
    return shown;
}
