#include "machine_situations.h"

const QString ADAPTER_IN_WORDS = "FTDI FT232R USB UART, number A50285BI (0403:6001)";

namespace
{
const QString TELEMETRY = "KEST\t24.10\t4.8\t25.0\t0\tID=7\tD";

SeenAdapter ftdi()
{
    SeenAdapter adapter;
    adapter.vendor_id = "0403";
    adapter.product_id = "6001";
    adapter.maker = "FTDI";
    adapter.product = "FT232R USB UART";
    adapter.serial_number = "A50285BI";
    return adapter;
}

SeenFolder folder(const QString& role, const QString& path)
{
    SeenFolder seen;
    seen.role = role;
    seen.path = path;
    seen.exists = true;
    seen.writable = true;
    seen.bytes_free = 50000000000;
    return seen;
}

Change says(const QByteArray& bytes, const QString& other)
{
    return [=](Seen& seen) {
        seen.ports[0].speech = {true, bytes, other.isEmpty() ? 0 : 1, 0, {}, other};
    };
}

Change closed(const std::function<void(SeenPort&)>& change)
{
    return [=](Seen& seen) {
        seen.ports[0].may_open = false;
        seen.ports[0].user_in_group = false;
        seen.ports[0].session_in_group = false;
        seen.ports[0].speech = {};
        change(seen.ports[0]);
    };
}

Change store(int index, StoreState state, const QString& path, const Refusal& refusal = {})
{
    return [=](Seen& seen) {
        seen.stores[index].state = state;
        seen.stores[index].path = path;
        seen.stores[index].refusal = refusal;
    };
}

const QString KEEP_AWAY =
    "echo 'ACTION!=\"remove\", SUBSYSTEM==\"usb\", ATTR{idVendor}==\"0403\", "
    "ATTR{idProduct}==\"6001\", ENV{ID_MM_DEVICE_IGNORE}=\"1\", ENV{SYSTEMD_WANTS}=\"\"' | "
    "sudo tee -a /etc/udev/rules.d/99-kest-adapters.rules && sudo udevadm control --reload && "
    "sudo udevadm trigger --attr-match=idVendor=0403";
}  // namespace

Seen healthy()
{
    SeenPort port;
    port.name = "ttyUSB0";
    port.adapter = ftdi();
    port.has_node = true;
    port.may_open = true;
    port.group = "dialout";
    port.user_in_group = true;
    port.session_in_group = true;
    port.speech.listened = true;
    port.speech.bytes = TELEMETRY.toUtf8() + "\r\n";
    port.speech.lines = 1;
    port.speech.valid = 1;
    port.speech.telemetry = TELEMETRY;
    Seen seen;
    seen.user = "ann";
    seen.ports = {port};
    seen.folders = {folder("log", "/home/ann/logs"), folder("PDF", "/home/ann/pages")};
    seen.stores = {{"settings", "/s/kestrometer.cfg", StoreState::Good, {}},
                   {"profiles", "/s/battery_profiles.txt", StoreState::Good, {}}};
    return seen;
}

void says_nothing(Seen& seen)
{
    says({}, {})(seen);
}

namespace
{
/** Takes a row of the table: name, change, and what is then told. */
class Rows
{
public:
    void operator()(const char* name, const Change& change, const QString& line)
    {
        all.append({name, change, line});
    }

    QList<Situation> all;
};

void add_stores(Rows& row)
{
    const QString at_start = "The program ends at its start: ";
    row("settings folder cannot be made", store(0, StoreState::NoFolder, "/home/ann/my data/k"),
        "settings-no-folder|" + at_start +
            "its settings folder /home/ann/my data/k cannot be made.|"
            "ls -ld '/home/ann/my data/k'");
    row("settings folder read-only", store(0, StoreState::FolderReadOnly, "/s"),
        "settings-folder-read-only|" + at_start +
            "its settings folder /s may not be written.|"
            "sudo chown -R \"$USER\": /s && chmod u+rwx /s");
    row("settings read-only", store(0, StoreState::ReadOnly, "/s/kestrometer.cfg"),
        "settings-read-only|" + at_start +
            "its settings file /s/kestrometer.cfg may not be written.|"
            "sudo chown \"$USER\": /s/kestrometer.cfg && chmod u+rw /s/kestrometer.cfg");
    row("profiles unreadable", store(1, StoreState::Unreadable, "/s/battery_profiles.txt"),
        "store-unreadable|" + at_start +
            "its profiles file /s/battery_profiles.txt cannot be opened.|"
            "ls -ld /s/battery_profiles.txt");
    row("settings refused",
        store(0, StoreState::Refused, "/s/kestrometer.cfg", {3, "x", "is neither"}),
        "store-refused|" + at_start +
            "in its settings file /s/kestrometer.cfg, line 3 is neither.|"
            "editor +3 /s/kestrometer.cfg");
}

void add_missing_ports(Rows& row)
{
    row(
        "no port", [](Seen& seen) { seen.ports.clear(); },
        "no-port|There is no USB serial port: no instrument is plugged in, or by a cable that "
        "carries "
        "power only. Watch what the kernel says while you plug it in.|sudo dmesg --follow");
    const auto without_port = [](bool claimed, bool brltty, const QString& vendor = "0403") {
        return [=](Seen& seen) {
            SeenAdapter adapter = ftdi();
            adapter.vendor_id = vendor;
            adapter.claimed_by_program = claimed;
            seen.adapters_without_port = {adapter};
            seen.brltty = brltty;
            seen.ports[0].adapter.left_alone = true;
        };
    };
    row("brltty has it", without_port(true, true),
        "taken-by-brltty|brltty, which drives Braille displays, has taken the adapter " +
            ADAPTER_IN_WORDS +
            ", so that it has no port. Take its line in the file, then unplug the adapter and plug "
            "it in again.|" +
            KEEP_AWAY);
    const auto service_has_it = [=](Seen& seen) {
        without_port(true, true)(seen);
        seen.ports.clear();
        seen.brltty_is_a_service = true;
    };
    row("brltty's service has it", service_has_it,
        "taken-by-brltty-service|brltty, which drives Braille displays, has taken the adapter " +
            ADAPTER_IN_WORDS +
            ", so that it has no port. It runs as a service that looks at all adapters. If nobody "
            "here reads Braille, switch it off, then unplug the adapter and plug it in again.|"
            "sudo systemctl disable --now brltty");
    row("a program has it", without_port(true, false),
        "taken-by-a-program|A program has taken the adapter " + ADAPTER_IN_WORDS +
            " for itself, so that it has no port. See which one, end it, then unplug the adapter "
            "and plug it in again.|sudo lsof /dev/bus/usb/*/*");
    const QString no_driver =
        "no-driver|The adapter FTDI FT232R USB UART, number A50285BI (%1:6001) is plugged in, but "
        "no driver gives it a port.|sudo modprobe %2";
    row("no driver, FTDI", without_port(false, false), no_driver.arg("0403", "ftdi_sio"));
    row("no driver, PL2303", without_port(false, false, "067b"), no_driver.arg("067b", "pl2303"));
    row("no driver, CP210x", without_port(false, false, "10c4"), no_driver.arg("10c4", "cp210x"));
    row("no driver, CH341", without_port(false, true, "1a86"), no_driver.arg("1a86", "ch341"));
    row("no driver, another", without_port(false, false, "2341"), no_driver.arg("2341", "cdc_acm"));
    row(
        "no node", [](Seen& seen) { seen.ports[0].has_node = false; },
        "no-node|The kernel knows the port ttyUSB0, but there is no /dev/ttyUSB0.|"
        "sudo udevadm trigger --subsystem-match=tty");
}

void add_closed_ports(Rows& row)
{
    row("not in the group", closed([](SeenPort&) {}),
        "no-permission|You may not open ttyUSB0: it belongs to the group dialout, and ann is not "
        "in "
        "it. Join it, then log in again.|sudo usermod -aG dialout ann");
    row("login older than the group", closed([](SeenPort& port) { port.user_in_group = true; }),
        "login-too-old|You may not open ttyUSB0: ann has joined the group dialout, but this login "
        "is "
        "older than that. Log out and in again; in this terminal alone, a command does it.|"
        "newgrp dialout");
    row("logged in from elsewhere", closed([](SeenPort& port) { port.given_to_the_seat = true; }),
        "not-at-the-seat|You may not open ttyUSB0: it is given to whoever sits at this computer, "
        "and "
        "ann is logged in from elsewhere. The group dialout may open it from everywhere. Join it, "
        "then log in again.|sudo usermod -aG dialout ann");
    row("rights taken away", closed([](SeenPort& port) {
            port.user_in_group = true;
            port.session_in_group = true;
        }),
        "no-right|You may not open ttyUSB0, although ann is in its group dialout: its rights were "
        "changed.|sudo chmod g+rw /dev/ttyUSB0");
    row(
        "busy",
        [](Seen& seen) {
            seen.ports[0].holders = {{4242, "minicom"}};
        },
        "busy|ttyUSB0 is in use by minicom (process 4242), so that no instrument shows on it. End "
        "that program.|kill 4242");
}

void add_speech(Rows& row)
{
    row(
        "not to be opened",
        [](Seen& seen) {
            seen.ports[0].speech = {};
            seen.ports[0].not_heard = "cannot be opened: Device or resource busy";
        },
        "not-heard|ttyUSB0 could not be listened to: it cannot be opened: Device or resource "
        "busy. A program of another user may hold it; see which one.|sudo lsof /dev/ttyUSB0");
    row("silent", says({}, {}),
        "silent|ttyUSB0 was silent: the instrument has no power, its plug is out, or it is in its "
        "bootloader. See to power and plug first; the command gets it out of its bootloader and "
        "switches it off.|kest-guard --off ttyUSB0");
    row("another speed", says("\xFE\x80\x98\xE0\xFE\x1E", {}),
        "no-text|ttyUSB0 sends bytes that are no text: another kind of instrument, or another "
        "speed "
        "than 9600 baud.|kest-doctor --listen ttyUSB0");
    const QString foreign = "foreign|ttyUSB0 speaks, but no Kestrometer's language: \"%1\" %2.|"
                            "kest-doctor --listen ttyUSB0";
    row("another line end", says("12.5 V\n12.6 V\n", {}),
        foreign.arg("12.5 V[0xA]12.6 V", "has no line end of CR and LF"));
    row("another form", says("12.5 V\r\n", "12.5 V"),
        foreign.arg("12.5 V", "has no TAB, where telemetry has 7 fields between TABs"));
    row("too few fields", says("a\tb\r\n", "a\tb"), foreign.arg("a<TAB>b", "has 2 fields, not 7"));
    row("a long line", says(QByteArray(70, 'a') + "\r\n", QString(70, 'a')),
        foreign.arg(QString(60, 'a') + "...",
                    "has no TAB, where telemetry has 7 fields between TABs"));
}

void add_machine(Rows& row)
{
    row(
        "ModemManager", [](Seen& seen) { seen.modem_manager = true; },
        "modem-manager|ModemManager runs, and nothing keeps it away from ttyUSB0. What it sends to "
        "find out about a modem are commands to an instrument: C, D, O, U. Take the line of the "
        "adapter in the file.|" +
            KEEP_AWAY);
    row(
        "brltty runs", [](Seen& seen) { seen.brltty = true; },
        "brltty-runs|brltty, which drives Braille displays, runs and may take the adapter of "
        "ttyUSB0. Take the line of the adapter in the file.|" +
            KEEP_AWAY);
    row(
        "brltty's service runs",
        [](Seen& seen) {
            seen.brltty = true;
            seen.brltty_is_a_service = true;
            seen.ports[0].adapter.left_alone = true;
        },
        "brltty-service-runs|brltty, which drives Braille displays, runs as a service that looks "
        "at all adapters, and may take that of ttyUSB0. If nobody here reads Braille, switch it "
        "off.|sudo systemctl disable --now brltty");
    row(
        "three copies",
        [](Seen& seen) {
            seen.copies = {{7, "k"}, {8, "k"}, {9, "k"}};
        },
        "two-copies|3 copies of the program run (processes 7, 8, 9). Each saves the same settings "
        "and profiles over the other's. Close one by its window, which switches its instruments "
        "off.|");
    row(
        "no log folder", [](Seen& seen) { seen.folders[0].exists = false; },
        "folder-missing|The log folder /home/ann/logs is not there: nothing can be written to "
        "it.|mkdir -p /home/ann/logs");
    row(
        "PDF folder read-only", [](Seen& seen) { seen.folders[1].writable = false; },
        "folder-read-only|You may not write to the PDF folder /home/ann/pages.|"
        "sudo chown \"$USER\": /home/ann/pages && chmod u+rwx /home/ann/pages");
    row(
        "few megabytes", [](Seen& seen) { seen.folders[1].bytes_free = 199900000; },
        "folder-nearly-full|The PDF folder /home/ann/pages is nearly full: 199.9 MB are left.|"
        "df -h /home/ann/pages");
    row(
        "few hours",
        [](Seen& seen) {
            seen.folders[0].bytes_an_hour = 100000;
            seen.folders[0].bytes_free = 1230000;
        },
        "folder-nearly-full|The log folder /home/ann/logs is nearly full: 1.2 MB are left, which "
        "is "
        "about 12 hours of one station's logs.|df -h /home/ann/logs");
    row(
        "on a network", [](Seen& seen) { seen.folders[0].network = "nfs4"; },
        "folder-on-network|The log folder /home/ann/logs lies on a network (nfs4): a test stumbles "
        "when the network does. Choose a folder of this computer in File, Settings and copy from "
        "there.|");
}

void add_sleep_and_clock(Rows& row)
{
    row(
        "sleep",
        [](Seen& seen) {
            seen.sleepers = {{"its owner is tired", "make coffee"}};
        },
        "sleep|This computer may fall asleep over a test: its owner is tired.|make coffee");
    row(
        "clock", [](Seen& seen) { seen.clock.synchronised = false; },
        "clock|The clock is not kept right by any time server: it may step in the middle of a "
        "test.|sudo apt-get install systemd-timesyncd && sudo timedatectl set-ntp true");
    row(
        "zone", [](Seen& seen) { seen.clock.has_zone = false; },
        "no-zone|No time zone is set: the times in the logs are UTC.|"
        "sudo dpkg-reconfigure tzdata");
}

void add_notes(Rows& row)
{
    row(
        "a port of the computer",
        [](Seen& seen) {
            SeenPort port;
            port.name = "ttyS0";
            port.holders = {{1, "agetty"}};
            port.speech.listened = true;
            seen.ports << port;
            seen.modem_manager = true;
            seen.ports[0].adapter.left_alone = true;
        },
        "port|ttyS0: a port of the computer itself.|");
    row(
        "nothing but a port of the computer", [](Seen& seen) { seen.ports[0].adapter = {}; },
        "no-port|There is no USB serial port: no instrument is plugged in, or by a cable that "
        "carries power only. Watch what the kernel says while you plug it in.|"
        "sudo dmesg --follow");
    row(
        "an adapter without words",
        [](Seen& seen) {
            seen.ports[0].adapter.maker.clear();
            seen.ports[0].adapter.product.clear();
            seen.ports[0].adapter.serial_number.clear();
        },
        "port|ttyUSB0: an adapter without a name, without a number (0403:6001).|");
    row(
        "an instrument", [](Seen&) {},
        "instrument|On ttyUSB0 an instrument speaks: 24.10 V, 4.8 A, instrument 7, discharging.|");
    row(
        "held by the program",
        [](Seen& seen) {
            seen.ports[0].holders = {{77, "kest-battery-tester"}};
        },
        "held-by-the-program|ttyUSB0 is in use by the Kest Battery Tester itself (process 77): its "
        "instrument shows there.|");
    row(
        "no folder chosen", [](Seen& seen) { seen.folders[0].path.clear(); },
        "no-folder-chosen|No log folder is chosen yet: File, Settings does that.|");
}

}  // namespace

QList<Situation> situations()
{
    Rows rows;
    add_stores(rows);
    add_missing_ports(rows);
    add_closed_ports(rows);
    add_speech(rows);
    add_machine(rows);
    add_sleep_and_clock(rows);
    add_notes(rows);
    return rows.all;
}
