#include "doctor/look.h"

#include "doctor/look_at_desktops.h"

#include <QMap>
#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace
{
const QString MASK =
    "sudo systemctl mask sleep.target suspend.target hibernate.target hybrid-sleep.target "
    "suspend-then-hibernate.target";

// The later hides the earlier where a name stands in both.
const char* const SYSTEMD_FOLDERS[] = {"/lib/systemd", "/usr/lib/systemd", "/usr/local/lib/systemd",
                                       "/run/systemd", "/etc/systemd"};

/** All of a file of systemd's and of the files added to it, in the order in which they count. */
QString systemd_text(const FileView& view, const QString& file)
{
    QString text;
    QMap<QString, QString> added;
    for (const char* const folder : SYSTEMD_FOLDERS) {
        const QString path = QString(folder) + "/" + file;
        if (view.exists(path))
            text = view.text(path);
        const QStringList names = view.entries(path + ".d");
        for (const QString& name : names)
            added[name] = view.text(path + ".d/" + name);
    }
    return text + "\n" + added.values().join('\n');
}

/** The last line that gives it wins. */
QString systemd_setting(const FileView& view, const QString& file, const QString& key)
{
    const QRegularExpression line("^[ \\t]*" + key + "[ \\t]*=[ \\t]*(\\S*)",
                                  QRegularExpression::MultilineOption);
    QString value;
    for (auto matches = line.globalMatch(systemd_text(view, file)); matches.hasNext();)
        value = matches.next().captured(1);
    return value;
}

bool is_masked(const FileView& view, const QString& unit)
{
    return std::any_of(std::begin(SYSTEMD_FOLDERS), std::end(SYSTEMD_FOLDERS),
                       [&](const char* folder) {
                           return view.link(QString(folder) + "/system/" + unit) == "/dev/null";
                       });
}

/** An action of systemd's that is sleep, and the setting that forbids it. */
struct Sleep
{
    const char* action;  ///< "suspend" is the unit suspend.target, too
    const char* permission;
};

constexpr Sleep SLEEPS[] = {
    {"suspend", "AllowSuspend"},
    {"hibernate", "AllowHibernation"},
    {"hybrid-sleep", "AllowHybridSleep"},
    {"suspend-then-hibernate", "AllowSuspendThenHibernate"},
};

/** Whether that action, as of logind or of a desktop, is sleep and nothing forbids it. */
bool can_sleep(const FileView& view, const QString& action)
{
    static const QStringList NO = {"no", "n", "false", "f", "off", "0"};
    const auto* const sleep =
        std::find_if(std::begin(SLEEPS), std::end(SLEEPS),
                     [&](const Sleep& row) { return action == QLatin1String(row.action); });
    return sleep != std::end(SLEEPS) && !is_masked(view, action + ".target") &&
           !NO.contains(systemd_setting(view, "sleep.conf", sleep->permission).toLower());
}

/** The kernel knows no sleep, or nobody can start it. */
bool never_sleeps(const FileView& view)
{
    return view.value("/sys/power/state").isEmpty() || is_masked(view, "sleep.target");
}
}  // namespace

QList<SeenSleeper> look_at_sleepers(const FileView& view)
{
    if (never_sleeps(view))
        return {};
    const auto can = [&view](const QString& action) {
        return can_sleep(view, action);
    };
    QList<SeenSleeper> sleepers = look_at_desktops(can);
    if (can(systemd_setting(view, "logind.conf", "IdleAction")))
        sleepers << SeenSleeper{"logind sends it to sleep when nobody touches it (IdleAction)",
                                MASK};
    const QString lid = systemd_setting(view, "logind.conf", "HandleLidSwitch");
    if (!view.entries("/proc/acpi/button/lid").isEmpty() && can(lid.isEmpty() ? "suspend" : lid))
        sleepers << SeenSleeper{"it does so when its lid is closed (HandleLidSwitch)", MASK};
    return sleepers;
}
