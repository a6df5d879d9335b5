#include "doctor/finding.h"

#include <algorithm>
#include <iterator>

namespace
{
struct Row
{
    const char* id;
    Severity severity;
    const char* sentence;
    const char* command;
};

constexpr Severity Trouble = Severity::Trouble;
constexpr Severity Note = Severity::Note;

// clang-format off
// The worst first: what keeps the program from starting, then what keeps an instrument from showing,
// then what will cost a test, then what is merely worth knowing.
constexpr Row ROWS[] = {
    {"settings-no-folder", Trouble,
     "The program ends at its start: its settings folder %1 cannot be made.",
     "ls -ld %1"},
    {"settings-folder-read-only", Trouble,
     "The program ends at its start: its settings folder %1 may not be written.",
     "sudo chown -R \"$USER\": %1 && chmod u+rwx %1"},
    {"settings-read-only", Trouble,
     "The program ends at its start: its settings file %1 may not be written.",
     "sudo chown \"$USER\": %1 && chmod u+rw %1"},
    {"store-unreadable", Trouble,
     "The program ends at its start: its %1 file %2 cannot be opened.",
     "ls -ld %1"},
    {"store-refused", Trouble,
     "The program ends at its start: in its %1 file %2, line %3 %4.",
     "editor +%1 %2"},

    {"no-port", Trouble,
     "There is no USB serial port: no instrument is plugged in, or by a cable that carries power only. "
     "Watch what the kernel says while you plug it in.",
     "sudo dmesg --follow"},
    {"taken-by-brltty", Trouble,
     "brltty, which drives Braille displays, has taken the adapter %1, so that it has no port. "
     "Take its line in the file, then unplug the adapter and plug it in again.",
     "%1"},
    {"taken-by-brltty-service", Trouble,
     "brltty, which drives Braille displays, has taken the adapter %1, so that it has no port. It runs as "
     "a service that looks at all adapters. If nobody here reads Braille, switch it off, then unplug the "
     "adapter and plug it in again.",
     "sudo systemctl disable --now brltty"},
    {"taken-by-a-program", Trouble,
     "A program has taken the adapter %1 for itself, so that it has no port. "
     "See which one, end it, then unplug the adapter and plug it in again.",
     "sudo lsof /dev/bus/usb/*/*"},
    {"no-driver", Trouble,
     "The adapter %1 is plugged in, but no driver gives it a port.",
     "sudo modprobe %1"},
    {"no-node", Trouble,
     "The kernel knows the port %1, but there is no /dev/%1.",
     "sudo udevadm trigger --subsystem-match=tty"},
    {"no-permission", Trouble,
     "You may not open %1: it belongs to the group %2, and %3 is not in it. Join it, then log in again.",
     "sudo usermod -aG %1 %2"},
    {"login-too-old", Trouble,
     "You may not open %1: %3 has joined the group %2, but this login is older than that. "
     "Log out and in again; in this terminal alone, a command does it.",
     "newgrp %1"},
    {"not-at-the-seat", Trouble,
     "You may not open %1: it is given to whoever sits at this computer, and %3 is logged in from "
     "elsewhere. The group %2 may open it from everywhere. Join it, then log in again.",
     "sudo usermod -aG %1 %2"},
    {"no-right", Trouble,
     "You may not open %1, although %3 is in its group %2: its rights were changed.",
     "sudo chmod g+rw /dev/%1"},
    {"busy", Trouble,
     "%1 is in use by %2 (process %3), so that no instrument shows on it. End that program.",
     "kill %1"},
    {"not-heard", Trouble,
     "%1 could not be listened to: it %2. A program of another user may hold it; see which one.",
     "sudo lsof /dev/%1"},
    {"silent", Trouble,
     "%1 was silent: the instrument has no power, its plug is out, or it is in its bootloader. See to "
     "power and plug first; the command gets it out of its bootloader and switches it off.",
     "kest-guard --off %1"},
    {"no-text", Trouble,
     "%1 sends bytes that are no text: another kind of instrument, or another speed than 9600 baud.",
     "kest-doctor --listen %1"},
    {"foreign", Trouble,
     "%1 speaks, but no Kestrometer's language: \"%2\" %3.",
     "kest-doctor --listen %1"},

    {"modem-manager", Trouble,
     "ModemManager runs, and nothing keeps it away from %1. What it sends to find out about a modem "
     "are commands to an instrument: C, D, O, U. Take the line of the adapter in the file.",
     "%1"},
    {"brltty-runs", Trouble,
     "brltty, which drives Braille displays, runs and may take the adapter of %1. Take the line of "
     "the adapter in the file.",
     "%1"},
    {"brltty-service-runs", Trouble,
     "brltty, which drives Braille displays, runs as a service that looks at all adapters, and may take "
     "that of %1. If nobody here reads Braille, switch it off.",
     "sudo systemctl disable --now brltty"},
    {"two-copies", Trouble,
     "%1 copies of the program run (processes %2). Each saves the same settings and profiles over "
     "the other's. Close one by its window, which switches its instruments off.",
     ""},
    {"folder-missing", Trouble,
     "The %1 folder %2 is not there: nothing can be written to it.",
     "mkdir -p %1"},
    {"folder-read-only", Trouble,
     "You may not write to the %1 folder %2.",
     "sudo chown \"$USER\": %1 && chmod u+rwx %1"},
    {"folder-nearly-full", Trouble,
     "The %1 folder %2 is nearly full: %3 are left%4.",
     "df -h %1"},
    {"folder-on-network", Trouble,
     "The %1 folder %2 lies on a network (%3): a test stumbles when the network does. Choose a folder "
     "of this computer in File, Settings and copy from there.",
     ""},
    {"sleep", Trouble,
     "This computer may fall asleep over a test: %1.",
     "%1"},
    {"clock", Trouble,
     "The clock is not kept right by any time server: it may step in the middle of a test.",
     "sudo apt-get install systemd-timesyncd && sudo timedatectl set-ntp true"},
    {"no-zone", Trouble,
     "No time zone is set: the times in the logs are UTC.",
     "sudo dpkg-reconfigure tzdata"},

    {"port", Note, "%1: %2.", ""},
    {"instrument", Note, "On %1 an instrument speaks: %2.", ""},
    {"held-by-the-program", Note,
     "%1 is in use by the Kest Battery Tester itself (process %2): its instrument shows there.", ""},
    {"no-folder-chosen", Note,
     "No %1 folder is chosen yet: File, Settings does that.", ""},
};
// clang-format on

QString filled(QString text, const QStringList& places)
{
    // All places at once: what stands in one may look like another place.
    QString result;
    for (int at = 0; at < text.size(); ++at) {
        const int place = text[at] == '%' && at + 1 < text.size() ? text[at + 1].digitValue() : -1;
        if (place < 1 || place > places.size()) {
            result += text[at];
            continue;
        }
        result += places[place - 1];
        ++at;
    }
    return result;
}

const Row* row_of(const QString& id)
{
    return std::find_if(std::begin(ROWS), std::end(ROWS),
                        [&id](const Row& row) { return id == QLatin1String(row.id); });
}
}  // namespace

Finding finding(const char* id, const QString& subject, const QStringList& sentence,
                const QStringList& command)
{
    const Row* const row = row_of(id);
    Q_ASSERT(row != std::end(ROWS));
    return {id, row->severity, subject, filled(row->sentence, sentence),
            filled(row->command, command)};
}

int rank_of(const QString& id)
{
    return int(row_of(id) - std::begin(ROWS));
}

QStringList all_finding_ids()
{
    QStringList ids;
    for (const Row& row : ROWS)
        ids << row.id;
    return ids;
}
