#include "station/test_station.h"
#include "support/profile_bench.h"
#include "support/profile_file.h"
#include "support/test_program.h"

#include "config/battery_profiles.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

/** How a profile goes, and what all stations see of one that comes, changes or goes. */
class ProfileDeletionTest : public QObject
{
    Q_OBJECT

private slots:
    void a_profile_must_be_selected_first();
    void deleting_is_asked_for_data();
    void deleting_is_asked_for();
    void a_deleted_profile_leaves_memory_file_and_box();
    void a_lost_profile_leaves_the_boxes_after_an_error_data();
    void a_lost_profile_leaves_the_boxes_after_an_error();
    void the_last_profile_leaves_an_empty_file();
    void a_delete_that_cannot_be_written_counts_in_memory();
    void a_new_profile_is_listed_everywhere_and_selected_here();
    void an_update_reaches_no_other_station();
    void a_deletion_turns_the_other_boxes_back();
    void a_deletion_leaves_other_selections_and_edits();
    void a_running_test_elsewhere_goes_on();
};

namespace
{
const QString PLACEHOLDER = "Select Profile...";

bool is_deletion_question(const SeenBox& box, const QString& name)
{
    return is_question(box, "Are you sure?",
                       QString("Do you really want to delete the profile '%1'?").arg(name));
}

bool is_notice_of(const SeenBox& box, const QString& name)
{
    return is_message(box, QMessageBox::Information, "Notice",
                      QString("The profile '%1' has been deleted.").arg(name));
}

/** Three stations: the bench's own, and two previews beside it. */
struct ThreeStations
{
    ThreeStations()
    {
        for (TestStation* station : {&second, &third})
            station->show();
    }

    /** Chooses at all three. */
    void choose(const QString& at_first, const QString& at_second, const QString& at_third)
    {
        bench.choose_profile(at_first);
        second.findChild<QComboBox*>("cbProfile")->setCurrentText(at_second);
        third.findChild<QComboBox*>("cbProfile")->setCurrentText(at_third);
    }

    QStringList selected() const
    {
        return {selected_profile(*bench.station), selected_profile(second),
                selected_profile(third)};
    }

    QStringList others() const
    {
        return {parameters_of(second), parameters_of(third)};
    }

    bool all_list(const QStringList& names) const
    {
        return listed_profiles(*bench.station) == names && listed_profiles(second) == names &&
               listed_profiles(third) == names;
    }

    ProfileBench bench;
    TestStation second{nullptr, nullptr};
    TestStation third{nullptr, nullptr};
};

/** An edit that no profile holds, as the operator would make it. */
void edit_final_voltage(TestStation& station, const QString& text)
{
    auto* edit = station.findChild<QLineEdit*>("leFinalCharge");
    edit->setText(text);
    emit edit->textEdited(text);
}
}  // namespace

void ProfileDeletionTest::a_profile_must_be_selected_first()
{
    ProfileBench bench;
    bench.choose_profile("Pack A");
    bench.choose_profile(PLACEHOLDER);
    bench.press("pbDeleteProfile");
    QCOMPARE(bench.answers.seen.size(), size_t(1));
    QVERIFY(is_error(bench.answers.seen[0], "You must select a profile before it can be deleted."));
    QCOMPARE(BatteryProfiles::profiles.size(), 3);
    QVERIFY(bench.delete_enabled());
}

void ProfileDeletionTest::deleting_is_asked_for_data()
{
    QTest::addColumn<int>("answer");
    QTest::newRow("No") << int(QMessageBox::No);
    QTest::newRow("Escape") << int(QMessageBox::NoButton);
}

void ProfileDeletionTest::deleting_is_asked_for()
{
    QFETCH(int, answer);
    ProfileBench bench;
    bench.choose_profile("Pack A");
    bench.answers.click(QMessageBox::StandardButton(answer));
    bench.press("pbDeleteProfile");
    QCOMPARE(bench.answers.seen.size(), size_t(1));
    QVERIFY(is_deletion_question(bench.answers.seen[0], "Pack A"));
    QCOMPARE(BatteryProfiles::profiles.size(), 3);
    QCOMPARE(profile_file_content(), THREE_PROFILES);
    QCOMPARE(selected_profile(*bench.station), QString("Pack A"));
    QVERIFY(bench.delete_enabled());
}

void ProfileDeletionTest::a_deleted_profile_leaves_memory_file_and_box()
{
    ProfileBench bench;
    bench.choose_profile("pack b");
    bench.type("leSerialNumber", "B-9");
    const QString before = parameters_of(*bench.station);
    bench.delete_profile();
    QCOMPARE(bench.answers.seen.size(), size_t(2));
    QVERIFY(is_deletion_question(bench.answers.seen[0], "pack b"));
    QVERIFY(is_notice_of(bench.answers.seen[1], "pack b"));
    QCOMPARE(BatteryProfiles::profiles.keys(), QStringList({"Pack A", "Plain"}));
    const int begin = THREE_PROFILES.indexOf("[pack b]");
    const int end = THREE_PROFILES.indexOf("[Plain]");
    QCOMPARE(profile_file_content(), QByteArray(THREE_PROFILES).remove(begin, end - begin));
    QCOMPARE(listed_profiles(*bench.station), QStringList({PLACEHOLDER, "Pack A", "Plain"}));
    QCOMPARE(selected_profile(*bench.station), PLACEHOLDER);
    QVERIFY(!bench.delete_enabled());
    // What the panel holds is a copy, and stays.
    QCOMPARE(parameters_of(*bench.station), before);
    QVERIFY(bench.station->serial_number_edited);
}

void ProfileDeletionTest::a_lost_profile_leaves_the_boxes_after_an_error_data()
{
    QTest::addColumn<int>("answer");
    QTest::newRow("Yes") << int(QMessageBox::Yes);
    QTest::newRow("No") << int(QMessageBox::No);
}

void ProfileDeletionTest::a_lost_profile_leaves_the_boxes_after_an_error()
{
    QFETCH(int, answer);
    ProfileBench bench;
    bench.choose_profile("Pack A");
    delete BatteryProfiles::profiles.take("Pack A");
    bench.answers.click(QMessageBox::Ok);
    bench.answers.click(QMessageBox::StandardButton(answer));
    bench.answers.click(QMessageBox::Ok);
    bench.press("pbDeleteProfile");
    const bool yes = answer == QMessageBox::Yes;
    QCOMPARE(bench.answers.seen.size(), size_t(yes ? 3 : 2));
    QVERIFY(is_error(bench.answers.seen[0], "Cannot find profile 'Pack A' to delete it."));
    QVERIFY(is_deletion_question(bench.answers.seen[1], "Pack A"));
    QCOMPARE(listed_profiles(*bench.station).contains("Pack A"), !yes);
    QCOMPARE(selected_profile(*bench.station), yes ? PLACEHOLDER : QString("Pack A"));
    QCOMPARE(profile_file_content().contains("[Pack A]"), !yes);
    QCOMPARE(BatteryProfiles::profiles.keys(), QStringList({"Plain", "pack b"}));
}

void ProfileDeletionTest::the_last_profile_leaves_an_empty_file()
{
    ProfileBench bench(FIRST_PROFILE_FILE);
    bench.choose_profile("Sample Profile");
    bench.delete_profile();
    QCOMPARE(profile_file_content(), QByteArray());
    // The next start finds a file, and so makes no sample.
    QVERIFY(BatteryProfiles::load());
    QVERIFY(BatteryProfiles::profiles.isEmpty());
    QCOMPARE(listed_profiles(*bench.station), QStringList(PLACEHOLDER));
}

void ProfileDeletionTest::a_delete_that_cannot_be_written_counts_in_memory()
{
    ProfileBench bench;
    bench.choose_profile("Pack A");
    QVERIFY(QFile::remove(BatteryProfiles::get_filename()));
    QVERIFY(QDir().mkdir(BatteryProfiles::get_filename()));
    bench.delete_profile();
    QVERIFY(QDir().rmdir(BatteryProfiles::get_filename()));
    QCOMPARE(bench.answers.seen.size(), size_t(2));
    QVERIFY(is_notice_of(bench.answers.seen[1], "Pack A"));
    QVERIFY(!BatteryProfiles::profiles.contains("Pack A"));
}

void ProfileDeletionTest::a_new_profile_is_listed_everywhere_and_selected_here()
{
    ThreeStations all;
    all.choose("Pack A", "pack b", PLACEHOLDER);
    edit_final_voltage(all.second, "99");
    const QStringList before = all.others();
    all.bench.type_names("Pack C", "A-1");
    all.bench.press("pbSaveProfile");
    QVERIFY(all.bench.answers.seen.empty());
    QVERIFY(all.all_list({PLACEHOLDER, "Pack A", "pack b", "Pack C", "Plain"}));
    QCOMPARE(all.selected(), QStringList({"Pack C", "pack b", PLACEHOLDER}));
    // The second station has parameters of its own by now, and keeps them.
    QCOMPARE(all.others(), before);
    all.choose("Pack C", "pack b", "Pack C");
    QCOMPARE(parameters_of(all.third), QString("Pack C||3|7200|21.5|37.5|no|no|no|1.5"));
}

void ProfileDeletionTest::an_update_reaches_no_other_station()
{
    ThreeStations all;
    all.choose("Pack A", "Pack A", "Pack A");
    const QStringList before = all.others();
    edit_final_voltage(*all.bench.station, "39");
    all.bench.press("pbSaveProfile");
    QCOMPARE(BatteryProfiles::profiles.value("Pack A")->final_voltage, 39.0);
    QCOMPARE(all.others(), before);
    QCOMPARE(all.selected(), QStringList({"Pack A", "Pack A", "Pack A"}));
}

void ProfileDeletionTest::a_deletion_turns_the_other_boxes_back()
{
    ThreeStations all;
    all.choose("Pack A", "Pack A", "Pack A");
    edit_final_voltage(all.second, "99");
    const QStringList before = all.others();
    all.bench.delete_profile();
    QCOMPARE(all.selected(), QStringList({PLACEHOLDER, PLACEHOLDER, PLACEHOLDER}));
    QVERIFY(all.all_list({PLACEHOLDER, "pack b", "Plain"}));
    QCOMPARE(all.others(), before);
    // Only the station that deleted has nothing left to delete, as far as its button knows.
    QVERIFY(!all.bench.delete_enabled());
    QVERIFY(all.second.findChild<QPushButton*>("pbDeleteProfile")->isEnabled());
}

void ProfileDeletionTest::a_deletion_leaves_other_selections_and_edits()
{
    ThreeStations all;
    all.choose("Pack A", "pack b", "Plain");
    edit_final_voltage(all.second, "99");
    all.third.serial_number = "typed";
    all.third.serial_number_edited = true;
    const QStringList before = all.others();
    all.bench.delete_profile();
    QCOMPARE(all.bench.answers.seen.size(), size_t(2));
    QCOMPARE(all.selected(), QStringList({PLACEHOLDER, "pack b", "Plain"}));
    QCOMPARE(all.others(), before);
    QVERIFY(all.second.findChild<QPushButton*>("pbSaveProfile")->isEnabled());
}

void ProfileDeletionTest::a_running_test_elsewhere_goes_on()
{
    ThreeStations all;
    all.choose("pack b", "Pack A", PLACEHOLDER);
    all.bench.receive("40.00", "0.0", "O");
    all.bench.type("leSerialNumber", "B-5");
    all.bench.press("pbStartSkip");
    QCOMPARE(all.bench.station->phase, PHASE_CHARGING);
    all.bench.type("leFinalCharge", "25");
    const QString before = parameters_of(*all.bench.station);
    const QByteArray txt = all.bench.txt();
    all.bench.answers.click(QMessageBox::Yes);
    all.bench.answers.click(QMessageBox::Ok);
    QTest::mouseClick(all.second.findChild<QPushButton*>("pbDeleteProfile"), Qt::LeftButton);
    QCOMPARE(all.bench.answers.seen.size(), size_t(2));
    QCOMPARE(parameters_of(*all.bench.station), before);
    QCOMPARE(all.bench.station->phase, PHASE_CHARGING);
    QCOMPARE(all.bench.txt(), txt);
    QCOMPARE(all.selected(), QStringList({"pack b", PLACEHOLDER, PLACEHOLDER}));
}

KEST_TEST(ProfileDeletionTest)
#include "tst_profile_deletion.moc"
