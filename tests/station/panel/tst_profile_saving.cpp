#include "station/test_station.h"
#include "support/profile_bench.h"
#include "support/profile_file.h"
#include "support/test_program.h"

#include "config/battery_profiles.h"

#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QtTest>

/** What Save makes of a panel's parameters: a new profile, or another version of one. */
class ProfileSavingTest : public QObject
{
    Q_OBJECT

private slots:
    void a_name_is_needed();
    void a_new_profile_takes_the_parameters_but_no_template();
    void a_new_profile_is_listed_and_selected();
    void a_new_profile_blanks_a_number_that_nobody_typed();
    void a_bad_number_makes_no_profile();
    void an_update_with_the_same_number_asks_nothing();
    void the_template_is_asked_for_data();
    void the_template_is_asked_for();
    void a_bad_number_makes_no_template();
    void the_second_save_of_a_new_profile_gives_the_template();
    void saving_under_a_known_name_selects_it();
    void part_of_an_hour_stays_until_the_restart();
    void a_save_that_fails_keeps_the_profile_in_memory();
    void odd_names_are_saved_data();
    void odd_names_are_saved();
    void a_name_with_a_bracket_comes_back_cut();
    void a_name_pasted_in_two_lines_comes_back_in_one();
    void a_running_test_goes_on_through_a_save();
};

namespace
{
const QString QUESTION = "Overwrite Serial Number Template?";

QString question_text(const QString& former, const QString& number)
{
    return QString("Replace serial number template '%1' in test profile with '%2'?")
        .arg(former, number);
}

bool is_template_question(const SeenBox& box, const QString& former, const QString& number)
{
    return is_question(box, QUESTION, question_text(former, number),
                       QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
}

const QString BAD_NUMBER = "Serial number contains characters not allowed in filenames.";
}  // namespace

void ProfileSavingTest::a_name_is_needed()
{
    ProfileBench bench;
    bench.type("leProfileName", "  ");
    bench.press("pbSaveProfile");
    QCOMPARE(bench.answers.seen.size(), size_t(1));
    QVERIFY(is_error(bench.answers.seen[0], "Enter a profile name first."));
    QCOMPARE(BatteryProfiles::profiles.size(), 3);
    QCOMPARE(profile_file_content(), THREE_PROFILES);
    QVERIFY(bench.save_enabled());
    QVERIFY(!bench.delete_enabled());
}

void ProfileSavingTest::a_new_profile_takes_the_parameters_but_no_template()
{
    ProfileBench bench("'no profiles yet\n");
    bench.type_names("Pack C", "C-1");
    bench.type("leMaxChargeTime", "2");
    bench.type("leLowVoltageCutoff", "20.5");
    bench.type("leFinalCharge", "38");
    bench.type("leInternalResistanceTestIntervalAh", "1.5");
    bench.station->number_of_cycles = 4;
    bench.press("pbSaveProfile");
    QVERIFY(bench.answers.seen.empty());
    QCOMPARE(profile_text("Pack C"), QString("Pack C||4|7200|20.5|38|no|no|yes|1.5|yes"));
    QCOMPARE(profile_file_content(), QByteArray("[Pack C]\n"
                                                "serial_number_template=\n"
                                                "number_of_cycles=4\n"
                                                "max_charge_time_hr=2\n"
                                                "low_voltage_cutoff=20.5\n"
                                                "final_voltage=38\n"
                                                "detect_full_charge=No\n"
                                                "prompt_to_discharge=No\n"
                                                "measure_internal_resistance=Yes\n"
                                                "ir_test_interval_ah=1.5\n"
                                                "\n"));
    // The number that was typed is not given up for the empty template.
    QCOMPARE(parameters_of(*bench.station), QString("Pack C|C-1|4|7200|20.5|38|no|no|yes|1.5"));
    QVERIFY(bench.station->serial_number_edited);
}

void ProfileSavingTest::a_new_profile_is_listed_and_selected()
{
    ProfileBench bench;
    bench.type_names("Pack C", "C-1");
    bench.press("pbSaveProfile");
    QCOMPARE(listed_profiles(*bench.station),
             QStringList({"Select Profile...", "Pack A", "pack b", "Pack C", "Plain"}));
    QCOMPARE(selected_profile(*bench.station), QString("Pack C"));
    QVERIFY(!bench.save_enabled());
    QVERIFY(bench.delete_enabled());
}

void ProfileSavingTest::a_new_profile_blanks_a_number_that_nobody_typed()
{
    ProfileBench bench;
    bench.choose_profile("Pack A");
    bench.type("leProfileName", "Pack C");
    bench.press("pbSaveProfile");
    QVERIFY(bench.answers.seen.empty());
    QCOMPARE(parameters_of(*bench.station), QString("Pack C||3|7200|21.5|37.5|no|no|no|1.5"));
    QCOMPARE(profile_text("Pack C"), QString("Pack C||3|7200|21.5|37.5|no|no|no|1.5|yes"));
    QCOMPARE(profile_text("Pack A"), QString("Pack A|A-|3|7200|21.5|37.5|no|no|no|1.5|yes"));
}

void ProfileSavingTest::a_bad_number_makes_no_profile()
{
    ProfileBench bench;
    bench.type_names("Pack C", "C/1");
    bench.press("pbSaveProfile");
    QCOMPARE(bench.answers.seen.size(), size_t(1));
    QVERIFY(is_error(bench.answers.seen[0], BAD_NUMBER));
    QVERIFY(!BatteryProfiles::profiles.contains("Pack C"));
    QCOMPARE(profile_file_content(), THREE_PROFILES);
    QCOMPARE(selected_profile(*bench.station), QString("Select Profile..."));
    QVERIFY(bench.save_enabled());
}

void ProfileSavingTest::an_update_with_the_same_number_asks_nothing()
{
    ProfileBench bench;
    bench.choose_profile("Pack A");
    bench.type("leFinalCharge", "39");
    bench.press("pbSaveProfile");
    QVERIFY(bench.answers.seen.empty());
    QCOMPARE(profile_text("Pack A"), QString("Pack A|A-|3|7200|21.5|39|no|no|no|1.5|yes"));
    QCOMPARE(profile_file_content(), QByteArray(THREE_PROFILES).replace("37.5", "39"));
    QVERIFY(!bench.save_enabled());
    QVERIFY(bench.delete_enabled());
}

void ProfileSavingTest::the_template_is_asked_for_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<QString>("profile");
    QTest::addColumn<bool>("edited");
    const QString kept = "Pack A|A-|3|7200|21.5|39|no|no|no|1.5|yes";
    const QString replaced = "Pack A|A-77|3|7200|21.5|39|no|no|no|1.5|yes";
    const QString untouched = "Pack A|A-|3|7200|21.5|37.5|no|no|no|1.5|yes";
    QTest::newRow("Yes") << int(QMessageBox::Yes) << replaced << false;
    QTest::newRow("No") << int(QMessageBox::No) << kept << true;
    QTest::newRow("Cancel") << int(QMessageBox::Cancel) << untouched << true;
    QTest::newRow("Escape") << int(QMessageBox::NoButton) << untouched << true;
}

void ProfileSavingTest::the_template_is_asked_for()
{
    QFETCH(int, answer);
    ProfileBench bench;
    bench.choose_profile("Pack A");
    bench.type("leSerialNumber", "A-77");
    bench.type("leFinalCharge", "39");
    bench.answers.click(QMessageBox::StandardButton(answer));
    bench.press("pbSaveProfile");
    QCOMPARE(bench.answers.seen.size(), size_t(1));
    QVERIFY(is_template_question(bench.answers.seen[0], "A-", "A-77"));
    QTEST(profile_text("Pack A"), "profile");
    const bool saved = answer == QMessageBox::Yes || answer == QMessageBox::No;
    QCOMPARE(profile_file_content() != THREE_PROFILES, saved);
    QCOMPARE(bench.save_enabled(), !saved);
    QCOMPARE(bench.station->serial_number, QString("A-77"));
    QTEST(bench.station->serial_number_edited, "edited");
}

void ProfileSavingTest::a_bad_number_makes_no_template()
{
    ProfileBench bench;
    bench.choose_profile("Pack A");
    bench.type("leSerialNumber", "A-7?");
    bench.type("leFinalCharge", "39");
    bench.answers.click(QMessageBox::Yes);
    bench.answers.click(QMessageBox::Ok);
    bench.press("pbSaveProfile");
    QCOMPARE(bench.answers.seen.size(), size_t(2));
    QVERIFY(is_template_question(bench.answers.seen[0], "A-", "A-7?"));
    QVERIFY(is_error(bench.answers.seen[1], BAD_NUMBER));
    QCOMPARE(profile_text("Pack A"), QString("Pack A|A-|3|7200|21.5|37.5|no|no|no|1.5|yes"));
    QCOMPARE(profile_file_content(), THREE_PROFILES);
    QVERIFY(bench.station->serial_number_edited);
    QVERIFY(bench.save_enabled());
    // With the old template the parameters can be saved all the same.
    bench.answers.click(QMessageBox::No);
    bench.press("pbSaveProfile");
    QCOMPARE(profile_text("Pack A"), QString("Pack A|A-|3|7200|21.5|39|no|no|no|1.5|yes"));
    QCOMPARE(bench.answers.seen.size(), size_t(3));
}

void ProfileSavingTest::the_second_save_of_a_new_profile_gives_the_template()
{
    ProfileBench bench;
    bench.type_names("Pack C", "C-");
    bench.press("pbSaveProfile");
    bench.type("leFinalCharge", "39");
    bench.answers.click(QMessageBox::Yes);
    bench.press("pbSaveProfile");
    QCOMPARE(bench.answers.seen.size(), size_t(1));
    QVERIFY(is_template_question(bench.answers.seen[0], "", "C-"));
    QCOMPARE(BatteryProfiles::profiles.value("Pack C")->serial_number_template, QString("C-"));
    QVERIFY(profile_file_content().contains("[Pack C]\nserial_number_template=C-\n"));
    QVERIFY(!bench.station->serial_number_edited);
    // From now on a new test starts from it.
    bench.press("pbNewTest");
    QCOMPARE(bench.station->serial_number, QString("C-"));
}

void ProfileSavingTest::saving_under_a_known_name_selects_it()
{
    ProfileBench bench;
    bench.type_names("Pack A", "A-5");
    bench.answers.click(QMessageBox::No);
    bench.press("pbSaveProfile");
    QCOMPARE(bench.answers.seen.size(), size_t(1));
    QCOMPARE(selected_profile(*bench.station), QString("Pack A"));
    QCOMPARE(profile_text("Pack A"), QString("Pack A|A-|1|21600|19|0|no|no|yes|0.5|yes"));
    QCOMPARE(parameters_of(*bench.station), QString("Pack A|A-5|1|21600|19|0|no|no|yes|0.5"));
    QVERIFY(!bench.save_enabled());
    QVERIFY(bench.delete_enabled());
}

void ProfileSavingTest::part_of_an_hour_stays_until_the_restart()
{
    ProfileBench bench;
    bench.choose_profile("Pack A");
    bench.type("leMaxChargeTime", "2.5");
    bench.press("pbSaveProfile");
    QCOMPARE(BatteryProfiles::profiles.value("Pack A")->max_charge_time_sec, 9000);
    QCOMPARE(bench.station->max_charge_time, 9000);
    QVERIFY(BatteryProfiles::load());
    QCOMPARE(BatteryProfiles::profiles.value("Pack A")->max_charge_time_sec, 7200);
}

void ProfileSavingTest::a_save_that_fails_keeps_the_profile_in_memory()
{
    ProfileBench bench;
    // A directory in the place of the file cannot be written by anybody.
    QVERIFY(QFile::remove(BatteryProfiles::get_filename()));
    QVERIFY(QDir().mkdir(BatteryProfiles::get_filename()));
    bench.type_names("Pack C", "C-1");
    bench.press("pbSaveProfile");
    QVERIFY(QDir().rmdir(BatteryProfiles::get_filename()));
    QVERIFY(bench.answers.seen.empty());
    QCOMPARE(profile_text("Pack C"), QString("Pack C||1|21600|19|0|no|no|yes|0.5|no"));
    QCOMPARE(selected_profile(*bench.station), QString("Pack C"));
    QVERIFY(!bench.save_enabled());
    QVERIFY(bench.delete_enabled());
}

void ProfileSavingTest::odd_names_are_saved_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("an opening bracket") << "a[b";
    QTest::newRow("equals signs") << "=a=b=";
    QTest::newRow("quotes") << "'a' \"b\"";
    QTest::newRow("percent signs") << "%1 %2";
    QTest::newRow("markup") << "<b>a</b> &amp;";
    QTest::newRow("what no file name may hold") << "a/b?*";
    QTest::newRow("beyond Latin") << QString::fromUtf8("Ω 電池 🔋");
    QTest::newRow("another case is another name") << "PACK A";
    QTest::newRow("10,000 characters") << QString(10000, 'n');
}

void ProfileSavingTest::odd_names_are_saved()
{
    QFETCH(QString, name);
    ProfileBench bench;
    auto* edit = bench.widget<QLineEdit>("leProfileName");
    edit->setMaxLength(qMax(edit->maxLength(), name.size()));
    edit->setText(name);
    emit edit->textEdited(name);
    bench.type("leSerialNumber", "1");
    bench.press("pbSaveProfile");
    QVERIFY(bench.answers.seen.empty());
    QCOMPARE(selected_profile(*bench.station), name);
    QCOMPARE(bench.station->profile_name, name);
    QVERIFY(profile_file_content().contains("[" + name.toUtf8() + "]\n"));
    load_test_profiles(profile_file_content());
    QCOMPARE(profile_text(name), name + "||1|21600|19|0|no|no|yes|0.5|yes");
    TestStation other(nullptr, nullptr);
    QVERIFY(listed_profiles(other).contains(name));
    // The width of the panel does not follow.
    QCOMPARE(other.findChild<QComboBox*>("cbProfile")->maximumWidth(),
             bench.widget<QComboBox>("cbProfile")->maximumWidth());
}

void ProfileSavingTest::a_name_with_a_bracket_comes_back_cut()
{
    ProfileBench bench;
    bench.type_names("a]b", "1");
    bench.press("pbSaveProfile");
    QCOMPARE(selected_profile(*bench.station), QString("a]b"));
    load_test_profiles(profile_file_content());
    QVERIFY(BatteryProfiles::profiles.contains("a"));
    QVERIFY(!BatteryProfiles::profiles.contains("a]b"));
}

void ProfileSavingTest::a_name_pasted_in_two_lines_comes_back_in_one()
{
    ProfileBench bench;
    QGuiApplication::clipboard()->setText("Pack C\n36 V = 10s");
    bench.widget<QLineEdit>("leProfileName")->paste();
    bench.type("leSerialNumber", "1");
    bench.press("pbSaveProfile");
    QVERIFY(bench.answers.seen.empty());
    // A second line would be taken for a variable, and keep the program from starting.
    load_test_profiles(profile_file_content());
    QCOMPARE(BatteryProfiles::get_all_descriptions(),
             QStringList({"Pack A", "pack b", "Pack C 36 V = 10s", "Plain"}));
}

void ProfileSavingTest::a_running_test_goes_on_through_a_save()
{
    ProfileBench bench;
    bench.receive("40.00", "0.0", "O");
    bench.start("Pack A", "A-5");
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    bench.type("leFinalCharge", "39");
    const QByteArray txt = bench.txt();
    bench.answers.click(QMessageBox::No);
    bench.press("pbSaveProfile");
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    QCOMPARE(parameters_of(*bench.station), QString("Pack A|A-5|1|21600|19|39|no|no|yes|0.5"));
    QCOMPARE(bench.txt(), txt);
}

KEST_TEST(ProfileSavingTest)
#include "tst_profile_saving.moc"
