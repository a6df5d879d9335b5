#pragma once

#include "config/refusal.h"

#include <QByteArray>
#include <QList>
#include <QString>

/** What was seen of a machine, without a judgement. */
struct SeenProcess
{
    int pid = 0;
    QString program;  ///< "kest-guard", the name without its folder
};

/** The USB adapter behind a port; texts as its maker wrote them, empty where it wrote none. */
struct SeenAdapter
{
    bool is_usb() const
    {
        return !vendor_id.isEmpty();
    }

    QString vendor_id;   ///< "0403"; empty if the port hangs on no USB adapter
    QString product_id;  ///< "6001"
    QString maker;
    QString product;
    QString serial_number;
    bool claimed_by_program = false;  ///< a program has pushed the kernel's driver off it
    bool left_alone = false;          ///< ModemManager was told to leave it alone
};

/** What came in while a port was listened to. */
struct SeenSpeech
{
    bool listened = false;
    QByteArray bytes;   ///< what came, its beginning at least
    int lines = 0;      ///< ended by "\r\n"
    int valid = 0;      ///< of these, telemetry
    QString telemetry;  ///< the last valid line
    QString other;      ///< the last line that is none
};

struct SeenPort
{
    QString name;  ///< "ttyUSB0"
    SeenAdapter adapter;
    bool has_node = false;  ///< there is a /dev/ttyUSB0
    bool may_open = false;
    QString group;               ///< of the node: "dialout"
    bool user_in_group = false;  ///< says the list of groups
    bool session_in_group = false;
    bool given_to_the_seat = false;  ///< uaccess: whoever sits at the machine may open it
    QList<SeenProcess> holders;
    QString not_heard;  ///< why it could not be listened to: "cannot be opened: ..."
    SeenSpeech speech;
};

struct SeenFolder
{
    QString role;  ///< "log" or "PDF"
    QString path;
    bool exists = false;
    bool writable = false;
    QString network;         ///< the kind of a file system that lies on a network: "nfs4"
    qint64 bytes_free = -1;  ///< -1: not known
    double bytes_an_hour =
        0;  ///< what one station writes there; 0 where it writes nothing steadily
};

enum class StoreState
{
    Good,
    NoFolder,        ///< its folder is not there and cannot be made
    FolderReadOnly,  ///< of the settings; the profiles may lie in such a one
    ReadOnly,
    Unreadable,  ///< cannot be opened at all
    Refused
};

/** The settings or the profiles, as the program would find them at its start. */
struct SeenStore
{
    QString role;  ///< "settings" or "profiles"
    QString path;  ///< of what is at fault: the file or its folder
    StoreState state = StoreState::Good;
    Refusal refusal;
};

/** Something that sends the machine to sleep by itself. */
struct SeenSleeper
{
    QString what;     ///< "the desktop's power settings"
    QString command;  ///< which ends that
};

struct SeenClock
{
    bool synchronised = true;
    bool has_zone = true;
};

struct Seen
{
    QString user;
    QList<SeenPort> ports;
    QList<SeenAdapter> adapters_without_port;
    bool modem_manager = false;  ///< it is running
    bool brltty = false;
    bool brltty_is_a_service = false;  ///< which looks at all adapters by itself
    QList<SeenProcess> copies;         ///< of the application, that run
    QList<SeenStore> stores;
    QList<SeenFolder> folders;
    QList<SeenSleeper> sleepers;
    SeenClock clock;
};
