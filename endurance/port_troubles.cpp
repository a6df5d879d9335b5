#include "port_troubles.h"

#include "support/test_files.h"

#include "config/settings.h"

#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr int MOST_SECONDS = 600;
constexpr uid_t NOBODY = 65534;

PackModel small_pack()
{
    PackModel pack = WholeTest::quick_pack();
    pack.capacity_ah = 0.02;
    return pack;
}

/** For root no permission is missing: as somebody else while this lives. */
class SomebodyElse
{
public:
    SomebodyElse() : was_root(::geteuid() == 0 && ::seteuid(NOBODY) == 0)
    {
    }
    ~SomebodyElse()
    {
        if (was_root && ::seteuid(0) != 0)
            qFatal("Root cannot be had again.");
    }
    SomebodyElse(const SomebodyElse&) = delete;
    SomebodyElse& operator=(const SomebodyElse&) = delete;

private:
    bool was_root;
};

std::unique_ptr<TestStation> station_on(const QString& port)
{
    return std::make_unique<TestStation>(nullptr, new Kestrometer(port));
}

std::unique_ptr<TestStation> add_without_permission(const Wire& wire)
{
    const QByteArray path = "/dev/" + wire.port_name().toLocal8Bit();
    ::chmod(path.constData(), 0);
    const SomebodyElse nobody;
    return station_on(wire.port_name());
}

/** "permission", "busy" or "gone". */
std::unique_ptr<TestStation> add_on_bad_port(const QString& trouble, Wire& wire, WholeTest& first)
{
    if (trouble == "permission")
        return add_without_permission(wire);
    if (trouble == "busy")
        return station_on(first.bench.instrument->get_port_name());
    const QString port = wire.port_name();
    wire.hang_up();
    return station_on(port);
}
}  // namespace

Neighbour::Neighbour(WholeTest& first_test, int id)
    : station(nullptr, new Kestrometer(wire.port_name())),
      link(wire, station, small_pack(), id),
      first(first_test)
{
    station.kestrometer->set_state(Off);
    station.max_charge_time = 60;
    station.show();
    link.advance(1);
}

void Neighbour::start(const char* name, const char* serial_number)
{
    QTest::keyClicks(station.findChild<QLineEdit*>("leProfileName"), name);
    QTest::keyClicks(station.findChild<QLineEdit*>("leSerialNumber"), serial_number);
    station.findChild<QPushButton*>("pbStartSkip")->click();
    link.take_commands();
}

void Neighbour::run_second()
{
    link.take_commands();
    link.advance(1);
    blink_on = !blink_on;
    station.slot_blink(blink_on);
    if (station.phase == PHASE_READY_FOR_DISCHARGE)
        station.findChild<QPushButton*>("pbStartSkip")->click();
    link.take_commands();
}

QString PortTroubles::add_station_on(const QString& trouble, WholeTest& first, int seconds)
{
    Wire wire;
    const auto station = add_on_bad_port(trouble, wire, first);
    const size_t boxes = first.bench.answers.seen.size();
    station->kestrometer->set_state(Off);
    for (int second = 0; second < seconds; ++second) {
        first.run(1);
        station->slot_blink(second % 2 == 0);
    }
    if (station->kestrometer->port.isOpen() || station->kestrometer->id != -1)
        return "the port is open";
    if (station->findChild<QWidget*>("laLostCommunication")->isVisibleTo(station.get()))
        return "a station without any line has lost communication";
    return first.bench.answers.seen.size() == boxes ? QString() : "a box came up";
}

QString PortTroubles::go_on_at_new_port(WholeTest& first, bool under_another_name,
                                        const QString& log)
{
    const bool has_log = !first.bench.csv().isEmpty();
    const QByteArray before = first.bench.csv();
    // As the operator, who closes the panel: it lets go of port and logs.
    first.bench.station->unload_test_data();
    std::unique_ptr<Wire> other;
    if (under_another_name)
        other = std::make_unique<Wire>();
    Neighbour again(first, 7);
    const QString path = first.bench.path("Pack A_1042.csv");
    if (has_log) {
        first.bench.answers.choose_path(path);
        again.station.findChild<QPushButton*>("pbLoadLog")->click();
        again.station.findChild<QPushButton*>("pbStartSkip")->click();
    } else {
        again.start("Pack A", "1042");
    }
    for (int second = 0; second < MOST_SECONDS && again.station.phase != PHASE_DONE; ++second) {
        first.bench.clock.advance_seconds(1);
        again.run_second();
    }
    const QByteArray csv = content_of(path);
    write_file(log + ".csv", csv);
    write_file(log + ".txt", content_of(first.bench.path("Pack A_1042.txt")));
    if (again.station.phase != PHASE_DONE)
        return "the test does not go on to its end";
    return csv.startsWith(before) && csv.size() > before.size() ? QString() : "rows were lost";
}
