#include "doctor/look.h"

#include "machine_tree.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QtTest>

namespace
{
const QString XFCE = "xfce4/xfconf/xfce-perchannel-xml/xfce4-power-manager.xml";

/** A session of a user: its desktop's name, its configuration, and a gsettings that answers as told. */
class Session
{
public:
    explicit Session(const QByteArray& desktop)
    {
        set("PATH", programs.path().toUtf8());
        set("XDG_CONFIG_HOME", configuration.path().toUtf8());
        set("XDG_CURRENT_DESKTOP", desktop);
    }

    ~Session()
    {
        for (const auto& variable : qAsConst(former))
            qputenv(variable.first, variable.second);
    }

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /** `answers` of one line each, "SCHEMA KEY ANSWER", where ANSWER is to the end of the line. */
    bool answers(const QByteArray& answers) const
    {
        const QString program = programs.filePath("gsettings");
        return write_file(program, "#!/bin/sh\nwhile read -r schema key answer; do\n"
                                   "[ \"$1 $2 $3\" != \"get $schema $key\" ] || echo \"$answer\"\n"
                                   "done <<'END'\n" +
                                       answers + "END\n") &&
               QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner);
    }

    bool configure(const QString& name, const QByteArray& content) const
    {
        const QString path = configuration.filePath(name);
        return QDir().mkpath(QFileInfo(path).path()) && write_file(path, content);
    }

private:
    void set(const char* name, const QByteArray& value)
    {
        former.append({name, qgetenv(name)});
        qputenv(name, value);
    }

    QTemporaryDir programs;
    QTemporaryDir configuration;
    QList<QPair<const char*, QByteArray>> former;
};

/** Its kernel knows how to sleep. */
struct SleepyMachine : MachineTree
{
    SleepyMachine()
    {
        put("/sys/power/state", "freeze mem disk\n");
    }
};

/** What each sleeper is and the command that ends it, "|" between. */
QStringList sleepers_of(const MachineTree& tree)
{
    QStringList lines;
    for (const SeenSleeper& sleeper : look_at_sleepers(FileView(tree.root())))
        lines << sleeper.what + "|" + sleeper.command;
    return lines;
}

QByteArray gnome(const QByteArray& type, const QByteArray& timeout)
{
    const QByteArray schema = "org.gnome.settings-daemon.plugins.power ";
    return schema + "sleep-inactive-ac-type " + type + "\n" + schema +
           "sleep-inactive-ac-timeout " + timeout + "\n";
}

QByteArray xfce(const QByteArray& minutes, const QByteArray& mode)
{
    return "<channel name=\"xfce4-power-manager\" version=\"1.0\">\n"
           "  <property name=\"xfce4-power-manager\" type=\"empty\">\n"
           "    <property name=\"inactivity-on-ac\" type=\"uint\" value=\"" +
           minutes +
           "\"/>\n"
           "    <property name=\"inactivity-sleep-mode-on-ac\" type=\"uint\" value=\"" +
           mode + "\"/>\n  </property>\n</channel>\n";
}

const QString MASK =
    "sudo systemctl mask sleep.target suspend.target hibernate.target hybrid-sleep.target "
    "suspend-then-hibernate.target";
const QString IDLE = "logind sends it to sleep when nobody touches it (IdleAction)|" + MASK;
const QString LID = "it does so when its lid is closed (HandleLidSwitch)|" + MASK;
const QString DESKTOP = "the desktop sends it to sleep when nobody touches it|gsettings set "
                        "org.gnome.settings-daemon.plugins.power sleep-inactive-ac-type nothing";
const QString PLASMA = "Plasma sends it to sleep when nobody touches it|"
                       "kcmshell5 powerdevilprofilesconfig";
const QString XFCE_TOLD = "Xfce sends it to sleep when nobody touches it|xfconf-query -c "
                          "xfce4-power-manager -p /xfce4-power-manager/inactivity-on-ac -s 14";
}  // namespace

/** What kest-doctor sees of whatever sends the machine to sleep. */
class DoctorLookAtSleepersTest : public QObject
{
    Q_OBJECT

private slots:
    void logind_is_read_as_it_reads_itself_data();
    void logind_is_read_as_it_reads_itself();
    void a_lid_counts_where_there_is_one_data();
    void a_lid_counts_where_there_is_one();
    void what_cannot_sleep_does_not_data();
    void what_cannot_sleep_does_not();
    void a_desktop_that_can_be_asked_is_asked_data();
    void a_desktop_that_can_be_asked_is_asked();
    void a_desktop_that_keeps_a_file_is_read_data();
    void a_desktop_that_keeps_a_file_is_read();
};

void DoctorLookAtSleepersTest::logind_is_read_as_it_reads_itself_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("more");
    QTest::addColumn<bool>("sleeps");
    const auto row = [](const char* name, const QString& file, const QByteArray& more,
                        bool sleeps) {
        QTest::newRow(name) << file << more << sleeps;
    };
    const QString drop_ins = "/etc/systemd/logind.conf.d/";
    row("asleep already", drop_ins + "50.conf", "", true);
    row("overruled", drop_ins + "50.conf", "[Login]\nIdleAction=ignore\n", false);
    row("commented", drop_ins + "50.conf", "[Login]\n#IdleAction=ignore\n", true);
    row("of the distribution", "/usr/lib/systemd/logind.conf.d/50.conf",
        "[Login]\n IdleAction = ignore\n", false);
    row("to the screen's lock", drop_ins + "50.conf", "[Login]\nIdleAction=lock\n", false);
    row("to another sleep", drop_ins + "50.conf", "IdleAction=suspend-then-hibernate\n", true);
    row("hidden by a later folder", "/run/systemd/logind.conf.d/60.conf",
        "[Login]\nIdleAction=ignore\n", true);
    row("replaced", "/run/systemd/logind.conf", "[Login]\nIdleAction=ignore\n", true);
}

void DoctorLookAtSleepersTest::logind_is_read_as_it_reads_itself()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, more);
    QFETCH(bool, sleeps);
    const Session session("none");
    const SleepyMachine tree;
    tree.put("/etc/systemd/logind.conf", "[Login]\nIdleAction=suspend\n");
    tree.put("/etc/systemd/logind.conf.d/60.conf", "[Login]\n");
    tree.put(file, more);
    QCOMPARE(sleepers_of(tree), sleeps ? QStringList(IDLE) : QStringList());
}

void DoctorLookAtSleepersTest::a_lid_counts_where_there_is_one_data()
{
    QTest::addColumn<QByteArray>("logind");
    QTest::addColumn<bool>("lid");
    QTest::addColumn<bool>("sleeps");
    QTest::newRow("nothing said") << QByteArray() << true << true;
    QTest::newRow("ignored") << QByteArray("HandleLidSwitch=ignore\n") << true << false;
    QTest::newRow("hibernate") << QByteArray("HandleLidSwitch=hibernate\n") << true << true;
    QTest::newRow("no lid") << QByteArray() << false << false;
}

void DoctorLookAtSleepersTest::a_lid_counts_where_there_is_one()
{
    QFETCH(QByteArray, logind);
    QFETCH(bool, lid);
    QFETCH(bool, sleeps);
    const Session session("none");
    const SleepyMachine tree;
    tree.put("/etc/systemd/logind.conf", "[Login]\n" + logind);
    if (lid)
        tree.put("/proc/acpi/button/lid/LID0/state", "state: open\n");
    QCOMPARE(sleepers_of(tree), sleeps ? QStringList(LID) : QStringList());
}

void DoctorLookAtSleepersTest::what_cannot_sleep_does_not_data()
{
    QTest::addColumn<QString>("masked");
    QTest::addColumn<QByteArray>("sleep_conf");
    QTest::addColumn<bool>("idle");
    QTest::addColumn<bool>("lid");
    const auto row = [](const char* name, const QString& masked, const QByteArray& sleep_conf,
                        bool idle, bool lid) {
        QTest::newRow(name) << masked << sleep_conf << idle << lid;
    };
    row("nothing forbidden", "", "", true, true);
    row("all sleep", "/etc/systemd/system/sleep.target", "", false, false);
    row("all sleep, till the next start", "/run/systemd/system/sleep.target", "", false, false);
    row("a target", "/etc/systemd/system/suspend.target", "", true, false);
    row("the other", "/etc/systemd/system/hibernate.target", "", false, true);
    row("by setting", "", "[Sleep]\nAllowSuspend=no\n", true, false);
    row("the other by setting", "", "[Sleep]\nAllowHibernation=False\n", false, true);
    row("allowed", "", "[Sleep]\nAllowSuspend=yes\n#AllowHibernation=no\n", true, true);
}

void DoctorLookAtSleepersTest::what_cannot_sleep_does_not()
{
    QFETCH(QString, masked);
    QFETCH(QByteArray, sleep_conf);
    QFETCH(bool, idle);
    QFETCH(bool, lid);
    const Session session("none");
    const SleepyMachine tree;
    tree.put("/etc/systemd/logind.conf", "IdleAction=hibernate\nHandleLidSwitch=suspend\n");
    tree.put("/etc/systemd/sleep.conf.d/shop.conf", sleep_conf);
    tree.put("/proc/acpi/button/lid/LID0/state", "state: open\n");
    if (!masked.isEmpty())
        tree.link(masked, "/dev/null");
    QStringList told;
    if (idle)
        told << IDLE;
    if (lid)
        told << LID;
    QCOMPARE(sleepers_of(tree), told);
    // Nor does a kernel that knows no sleep.
    tree.put("/sys/power/state", "\n");
    QCOMPARE(sleepers_of(tree), QStringList());
}

void DoctorLookAtSleepersTest::a_desktop_that_can_be_asked_is_asked_data()
{
    QTest::addColumn<QByteArray>("desktop");
    QTest::addColumn<QByteArray>("answers");
    QTest::addColumn<QString>("told");
    const auto row = [](const char* name, const QByteArray& desktop, const QByteArray& answers,
                        const QString& told) {
        QTest::newRow(name) << desktop << answers << told;
    };
    const QString another =
        "the desktop sends it to sleep when nobody touches it|gsettings set %1 nothing";
    row("GNOME", "ubuntu:GNOME", gnome("'suspend'", "1200"), DESKTOP);
    row("GNOME, hibernation", "GNOME", gnome("'hibernate'", "1200"), DESKTOP);
    row("GNOME awake", "GNOME", gnome("'nothing'", "1200"), "");
    row("GNOME, never", "GNOME", gnome("'suspend'", "0"), "");
    row("over the network", "", gnome("'suspend'", "1200"), DESKTOP);
    row("another desktop runs", "LXQt", gnome("'suspend'", "1200"), "");
    row("no answer", "GNOME", "", "");
    row("Cinnamon", "X-Cinnamon",
        "org.cinnamon.settings-daemon.plugins.power sleep-inactive-ac-type 'suspend'\n"
        "org.cinnamon.settings-daemon.plugins.power sleep-inactive-ac-timeout uint32 1800\n",
        another.arg("org.cinnamon.settings-daemon.plugins.power sleep-inactive-ac-type"));
    row("MATE", "MATE",
        "org.mate.power-manager action-sleep-type-ac 'suspend'\n"
        "org.mate.power-manager sleep-computer-ac 600\n",
        another.arg("org.mate.power-manager action-sleep-type-ac"));
}

void DoctorLookAtSleepersTest::a_desktop_that_can_be_asked_is_asked()
{
    QFETCH(QByteArray, desktop);
    QFETCH(QByteArray, answers);
    QFETCH(QString, told);
    const Session session(desktop);
    const SleepyMachine tree;
    QVERIFY(session.answers(answers));
    QCOMPARE(sleepers_of(tree).join('\n'), told);
    tree.link("/etc/systemd/system/sleep.target", "/dev/null");
    QCOMPARE(sleepers_of(tree), QStringList());
}

void DoctorLookAtSleepersTest::a_desktop_that_keeps_a_file_is_read_data()
{
    QTest::addColumn<QByteArray>("desktop");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("told");
    const auto row = [](const char* name, const QByteArray& desktop, const QString& file,
                        const QByteArray& content, const QString& told) {
        QTest::newRow(name) << desktop << file << content << told;
    };
    const QByteArray group = "[AC][SuspendSession]\nidleTime=900000\n";
    const QString plasma = "powermanagementprofilesrc";
    row("Plasma", "KDE", plasma, "[AC]\nicon=b\n\n" + group + "suspendType=1\n", PLASMA);
    row("Plasma, to both", "KDE", plasma, group + "suspendType=4\n\n[Battery]\n", PLASMA);
    row("Plasma locks", "KDE", plasma, group + "suspendType=32\n", "");
    row("Plasma on battery only", "KDE", plasma,
        group + "\n[Battery][SuspendSession]\nsuspendType=1\n", "");
    row("not Plasma's session", "LXQt", plasma, group + "suspendType=1\n", "");
    row("Xfce", "XFCE", XFCE, xfce("15", "1"), XFCE_TOLD);
    row("Xfce, hibernation", "XFCE", XFCE, xfce("60", "2"), XFCE_TOLD);
    row("Xfce, never", "XFCE", XFCE, xfce("14", "1"), "");
    row("Xfce, nothing said", "XFCE", XFCE, "<channel/>\n", "");
    row("not Xfce's session", "LXQt", XFCE, xfce("15", "1"), "");
}

void DoctorLookAtSleepersTest::a_desktop_that_keeps_a_file_is_read()
{
    QFETCH(QByteArray, desktop);
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    QFETCH(QString, told);
    const Session session(desktop);
    const SleepyMachine tree;
    QVERIFY(session.configure(file, content));
    QCOMPARE(sleepers_of(tree).join('\n'), told);
}

KEST_GUILESS_TEST(DoctorLookAtSleepersTest)
#include "tst_doctor_look_at_sleepers.moc"
