#include "doctor/look.h"

#include "machine_tree.h"
#include "support/ordinary_user.h"
#include "support/settings_home.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include "config/settings.h"

#include <QDir>
#include <QFile>
#include <QtTest>

#include <unistd.h>

namespace
{
/** "state line reason" of the settings or the profiles. */
QString text_of(const SeenStore& store)
{
    return QString("%1 %2 %3")
        .arg(int(store.state))
        .arg(store.refusal.line)
        .arg(store.refusal.reason);
}

Seen seen_in(const MachineTree& tree)
{
    return look(FileView(tree.root()));
}
}  // namespace

/** What kest-doctor sees of settings, folders and clock. */
class DoctorLookAtFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void settings_and_profiles_are_read_as_the_program_would_data();
    void settings_and_profiles_are_read_as_the_program_would();
    void a_settings_folder_that_cannot_be_used_is_seen();
    void folders_are_those_of_the_settings();
    void a_network_is_known_by_the_nearest_mount_data();
    void a_network_is_known_by_the_nearest_mount();
    void clock_and_zone_are_seen();
};

void DoctorLookAtFilesTest::settings_and_profiles_are_read_as_the_program_would_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QByteArray>("profiles");
    QTest::addColumn<QString>("settings_seen");
    QTest::addColumn<QString>("profiles_seen");
    const QByteArray good = "[misc]\nchart_refresh_rate_hz=3\n";
    const QByteArray pack = "[Pack]\nlow_voltage_cutoff=30\n";
    const auto refused = [](int line, const QString& reason) {
        return QString("%1 %2 %3").arg(int(StoreState::Refused)).arg(line).arg(reason);
    };
    const auto settings = [&](const char* name, const QByteArray& content, const QString& seen) {
        QTest::newRow(name) << content << pack << seen << "0 0 ";
    };
    const auto profiles = [&](const char* name, const QByteArray& content, const QString& seen) {
        QTest::newRow(name) << good << content << "0 0 " << seen;
    };
    settings("both good", good, "0 0 ");
    settings("a comment", good + "; note\n", refused(3, "is neither [section] nor name=value"));
    settings("no section", "a=b\n", refused(1, "stands before the first [section]"));
    profiles("an empty file", "", "0 0 ");
    profiles("words", "notes\n[Pack]\nmore notes\n", "0 0 ");
    profiles("no profile", "\nnumber_of_cycles=1\n",
             refused(2, "stands before the first [profile]"));
    profiles("unknown key", pack + "colour=red\n",
             refused(3, "names \"colour\", which no profile has"));
    profiles("decimal comma", pack + "final_voltage=36,5\n",
             refused(3, "gives \"36,5\" for final_voltage, which takes a number with a decimal "
                        "point"));
    profiles("a small yes", pack + "detect_full_charge=yes\n",
             refused(3, "gives \"yes\" for detect_full_charge, which takes Yes or No"));
    profiles("half a cycle", pack + "number_of_cycles=0.5\n",
             refused(3, "gives \"0.5\" for number_of_cycles, which takes a whole number"));
}

void DoctorLookAtFilesTest::settings_and_profiles_are_read_as_the_program_would()
{
    QFETCH(QByteArray, settings);
    QFETCH(QByteArray, profiles);
    const SettingsHome home;
    QVERIFY(home.put_file(settings));
    const QString profile_file = home.directory + "/battery_profiles.txt";
    QVERIFY(write_file(profile_file, profiles));
    const QList<SeenStore> stores = look_at_stores();
    QCOMPARE(stores.size(), 2);
    QTEST(text_of(stores[0]), "settings_seen");
    QTEST(text_of(stores[1]), "profiles_seen");
    QCOMPARE(stores[0].path, home.filename);
    QCOMPARE(stores[1].path, profile_file);
    QCOMPARE(home.file_content(), settings);
    QCOMPARE(content_of(profile_file), profiles);
}

void DoctorLookAtFilesTest::a_settings_folder_that_cannot_be_used_is_seen()
{
    const OrdinaryUser user;
    QVERIFY(user.active());
    const SettingsHome home;
    QCOMPARE(look_at_stores()[0].state, StoreState::Good);
    QVERIFY(!QFile::exists(home.directory));

    QVERIFY(home.put_file("[misc]\n"));
    QVERIFY(QFile::setPermissions(home.filename, QFile::ReadOwner));
    QCOMPARE(look_at_stores()[0].state, StoreState::ReadOnly);
    QVERIFY(QFile::setPermissions(home.directory, QFile::ReadOwner | QFile::ExeOwner));
    QCOMPARE(look_at_stores()[0].state, StoreState::FolderReadOnly);
    QVERIFY(QFile::setPermissions(home.directory,
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QVERIFY(QFile::setPermissions(home.filename, QFile::WriteOwner));
    QCOMPARE(look_at_stores()[0].state, StoreState::Unreadable);
    QVERIFY(QFile::remove(home.filename));
    QVERIFY(QDir().mkdir(home.filename));
    QVERIFY(QDir().mkdir(home.directory + "/battery_profiles.txt"));
    QCOMPARE(look_at_stores()[0].state, StoreState::Unreadable);
    QCOMPARE(look_at_stores()[1].state, StoreState::Unreadable);
    QVERIFY(QDir(home.directory).removeRecursively());
    QVERIFY(write_file(home.directory, "in the way"));
    QCOMPARE(look_at_stores()[0].state, StoreState::NoFolder);
}

void DoctorLookAtFilesTest::folders_are_those_of_the_settings()
{
    const SettingsHome home;
    const QTemporaryDir logs;
    const MachineTree tree;
    QVERIFY(home.put_file("[directories]\nlog_directory=" + logs.path().toUtf8() +
                          "\narchive_directory=/nowhere\npdf_directory=/elsewhere\n[misc]\n"
                          "log_all_telemetry=Yes\n"));
    const QList<SeenFolder> folders = seen_in(tree).folders;
    QCOMPARE(folders[0].path, logs.path());
    QVERIFY(folders[0].exists);
    QVERIFY(folders[0].writable);
    QVERIFY(folders[0].bytes_free > 0);
    QCOMPARE(folders[0].bytes_an_hour, 90 * 3600.0);
    QCOMPARE(folders[0].network, QString());
    QCOMPARE(folders[1].path, QString("/nowhere"));
    QVERIFY(!folders[1].exists);
}

void DoctorLookAtFilesTest::a_network_is_known_by_the_nearest_mount_data()
{
    QTest::addColumn<QByteArray>("point");
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<QString>("network");
    QTest::newRow("above it") << QByteArray("%1") << QByteArray("nfs4") << "nfs4";
    QTest::newRow("itself") << QByteArray("%1/my\\040logs") << QByteArray("cifs") << "cifs";
    QTest::newRow("beside it") << QByteArray("%1/my") << QByteArray("nfs4") << "";
    QTest::newRow("a disk") << QByteArray("%1") << QByteArray("btrfs") << "";
    QTest::newRow("over ssh") << QByteArray("%1") << QByteArray("fuse.sshfs") << "fuse.sshfs";
}

void DoctorLookAtFilesTest::a_network_is_known_by_the_nearest_mount()
{
    QFETCH(QByteArray, point);
    QFETCH(QByteArray, kind);
    const SettingsHome home;
    const QTemporaryDir above;
    const QString folder = above.filePath("my logs");
    QVERIFY(QDir().mkdir(folder));
    QVERIFY(home.put_file("[directories]\nlog_directory=" + folder.toUtf8() + "\n"));
    const MachineTree tree;
    const QByteArray mount =
        point.replace("%1", QFileInfo(above.path()).canonicalFilePath().toUtf8());
    tree.put("/proc/self/mountinfo", "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n2 1 0:9 / " + mount +
                                         " rw,relatime shared:1 - " + kind + " server:/a rw\n");
    QTEST(seen_in(tree).folders[0].network, "network");
}

void DoctorLookAtFilesTest::clock_and_zone_are_seen()
{
    const QByteArray zone = qgetenv("TZ");
    qunsetenv("TZ");
    const MachineTree tree;
    const SeenClock kept = look_at_clock(FileView(tree.root()));
    tree.remove("/etc/localtime");
    tree.remove("/run/systemd/timesync/synchronized");
    const SeenClock lost = look_at_clock(FileView(tree.root()));
    qputenv("TZ", "UTC");
    const SeenClock by_environment = look_at_clock(FileView(tree.root()));
    qputenv("TZ", zone);
    QVERIFY(kept.synchronised);
    QVERIFY(kept.has_zone);
    QVERIFY(!lost.synchronised);
    QVERIFY(!lost.has_zone);
    QVERIFY(by_environment.has_zone);
}

KEST_GUILESS_TEST(DoctorLookAtFilesTest)
#include "tst_doctor_look_at_files.moc"
