#include "doctor/look_at_desktops.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

#include <iterator>

namespace
{
constexpr int PATIENCE_MS = 5000;

/** A desktop that keeps its settings where gsettings reads them. */
struct AskedDesktop
{
    const char* name;    ///< as in XDG_CURRENT_DESKTOP
    const char* schema;  ///< of its power settings
    const char* action;  ///< key of what happens when nobody touches the computer, on mains
    const char* delay;   ///< key of the seconds until then; 0 for never
};

constexpr AskedDesktop ASKED_DESKTOPS[] = {
    {"GNOME", "org.gnome.settings-daemon.plugins.power", "sleep-inactive-ac-type",
     "sleep-inactive-ac-timeout"},
    {"X-Cinnamon", "org.cinnamon.settings-daemon.plugins.power", "sleep-inactive-ac-type",
     "sleep-inactive-ac-timeout"},
    {"MATE", "org.mate.power-manager", "action-sleep-type-ac", "sleep-computer-ac"},
};

/** Whether this may be the session's desktop: one that is not named, as over the network, may be any. */
bool may_be_desktop(const char* name)
{
    const QString session = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
    return session.isEmpty() || session.split(':').contains(name);
}

/** What gsettings answers, without its quotes; empty where it is missing or does not know the key. */
QString answer_of_gsettings(const char* schema, const char* key)
{
    const QString program = QStandardPaths::findExecutable("gsettings");
    if (program.isEmpty())
        return {};
    QProcess process;
    process.start(program, {"get", schema, key});
    if (!process.waitForFinished(PATIENCE_MS)) {
        process.kill();
        process.waitForFinished();
    }
    return QString::fromLocal8Bit(process.readAllStandardOutput()).remove('\'').trimmed();
}

/** "uint32 1200" and "1200" are a delay, "0" and no answer at all are none. */
bool has_delay(const AskedDesktop& desktop)
{
    return answer_of_gsettings(desktop.schema, desktop.delay).section(' ', -1).toInt() > 0;
}

SeenSleeper sleeper_of(const AskedDesktop& desktop)
{
    return {"the desktop sends it to sleep when nobody touches it",
            QString("gsettings set %1 %2 nothing").arg(desktop.schema, desktop.action)};
}

QString text_of_configuration(const QString& name)
{
    QFile file(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/" +
               name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/** Plasma writes the group only where it sends the computer to sleep; 1, 2 and 4 are kinds of sleep. */
QString action_of_plasma()
{
    const QString text = text_of_configuration("powermanagementprofilesrc");
    const QString group = text.section("[AC][SuspendSession]\n", 1).section("\n[", 0, 0);
    static const QRegularExpression type("^suspendType=([124])$",
                                         QRegularExpression::MultilineOption);
    switch (type.match(group).captured(1).toInt()) {
    case 1:
        return "suspend";
    case 2:
        return "hibernate";
    case 4:
        return "hybrid-sleep";
    default:
        return {};
    }
}

/** Xfce counts minutes, of which up to 14 are never; mode 2 is hibernation. */
QString action_of_xfce()
{
    const QString text =
        text_of_configuration("xfce4/xfconf/xfce-perchannel-xml/xfce4-power-manager.xml");
    const auto value_of = [&text](const QString& name) {
        const QRegularExpression property("<property name=\"" + name +
                                          "\" type=\"uint\" value=\"([0-9]+)\"/>");
        return property.match(text).captured(1).toInt();
    };
    constexpr int LONGEST_NEVER = 14;
    if (value_of("inactivity-on-ac") <= LONGEST_NEVER)
        return {};
    return value_of("inactivity-sleep-mode-on-ac") == 2 ? "hibernate" : "suspend";
}
}  // namespace

QList<SeenSleeper> look_at_desktops(const std::function<bool(const QString&)>& can_sleep)
{
    QList<SeenSleeper> sleepers;
    for (const AskedDesktop& desktop : ASKED_DESKTOPS)
        if (may_be_desktop(desktop.name) &&
            can_sleep(answer_of_gsettings(desktop.schema, desktop.action)) && has_delay(desktop))
            sleepers << sleeper_of(desktop);
    if (may_be_desktop("KDE") && can_sleep(action_of_plasma()))
        sleepers << SeenSleeper{"Plasma sends it to sleep when nobody touches it",
                                "kcmshell5 powerdevilprofilesconfig"};
    if (may_be_desktop("XFCE") && can_sleep(action_of_xfce()))
        sleepers << SeenSleeper{"Xfce sends it to sleep when nobody touches it",
                                "xfconf-query -c xfce4-power-manager -p "
                                "/xfce4-power-manager/inactivity-on-ac -s 14"};
    return sleepers;
}
