#include "doctor/look.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

namespace
{
const QString MASK =
    "sudo systemctl mask sleep.target suspend.target hibernate.target hybrid-sleep.target";
const QString DESKTOP_KEY = "org.gnome.settings-daemon.plugins.power sleep-inactive-ac-type";
constexpr int PATIENCE_MS = 5000;

/** The kernel knows no sleep, or nobody can start it. */
bool never_sleeps(const FileView& view)
{
    return view.value("/sys/power/state").isEmpty() ||
           view.link("/etc/systemd/system/sleep.target") == "/dev/null";
}

/** A setting of logind: the last file that gives it wins, and files of the folder come last. */
QString logind_setting(const FileView& view, const QString& key)
{
    const QString folder = "/etc/systemd/logind.conf.d";
    QString text = view.text("/etc/systemd/logind.conf");
    const QStringList files = view.entries(folder);
    for (const QString& file : files)
        text += "\n" + view.text(folder + "/" + file);
    const QRegularExpression line("^[ \\t]*" + key + "[ \\t]*=[ \\t]*(\\S*)",
                                  QRegularExpression::MultilineOption);
    QString value;
    for (auto matches = line.globalMatch(text); matches.hasNext();)
        value = matches.next().captured(1);
    return value;
}

bool is_sleep(const QString& action)
{
    static const QStringList ACTIONS = {"suspend", "hibernate", "hybrid-sleep",
                                        "suspend-then-hibernate"};
    return ACTIONS.contains(action);
}

/** What the desktop says about itself, if it is of the kind that can be asked. */
QString desktop_action()
{
    const QString program = QStandardPaths::findExecutable("gsettings");
    if (program.isEmpty())
        return {};
    QProcess process;
    process.start(program, QStringList("get") + DESKTOP_KEY.split(' '));
    if (!process.waitForFinished(PATIENCE_MS))
        process.kill();
    return QString::fromLocal8Bit(process.readAllStandardOutput()).remove('\'').trimmed();
}
}  // namespace

QList<SeenSleeper> look_at_sleepers(const FileView& view)
{
    if (never_sleeps(view))
        return {};
    QList<SeenSleeper> sleepers;
    if (is_sleep(desktop_action()))
        sleepers << SeenSleeper{"the desktop sends it to sleep when nobody touches it",
                                "gsettings set " + DESKTOP_KEY + " nothing"};
    if (is_sleep(logind_setting(view, "IdleAction")))
        sleepers << SeenSleeper{"logind sends it to sleep when nobody touches it (IdleAction)",
                                MASK};
    const QString lid = logind_setting(view, "HandleLidSwitch");
    if (!view.entries("/proc/acpi/button/lid").isEmpty() && (lid.isEmpty() || is_sleep(lid)))
        sleepers << SeenSleeper{"it does so when its lid is closed (HandleLidSwitch)", MASK};
    return sleepers;
}
