#include "config/battery_profiles.h"

#include "support/ordinary_user.h"
#include "support/profile_file.h"
#include "support/settings_home.h"
#include "support/test_program.h"

#include <QtTest>

/** How the profiles become their file, byte for byte. */
class BatteryProfilesSavingTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void no_profiles_leave_an_empty_file();
    void all_fields_are_written_in_their_order();
    void numbers_keep_six_digits_data();
    void numbers_keep_six_digits();
    void hours_are_whole_data();
    void hours_are_whole();
    void part_of_an_hour_lasts_until_the_next_save();
    void the_order_ignores_case();
    void the_maps_own_order_does_not();
    void odd_texts_come_back_data();
    void odd_texts_come_back();
    void a_closing_bracket_is_written_and_cuts_the_name();
    void a_name_of_several_lines_is_written_in_one_data();
    void a_name_of_several_lines_is_written_in_one();
    void comments_and_words_vanish();
    void a_shorter_file_leaves_nothing_of_the_longer();
    void saving_marks_the_record();
    void a_save_without_directory_fails();
    void a_save_to_a_read_only_file_fails();

private:
    std::unique_ptr<SettingsHome> home;
};

namespace
{
BatteryProfile* add(const QString& description)
{
    auto* profile = new BatteryProfile;
    profile->description = description;
    BatteryProfiles::profiles.insert(description, profile);
    return profile;
}

QByteArray line(int number)
{
    return profile_file_content().split('\n').value(number);
}

QByteArrayList headers()
{
    QByteArrayList found;
    const QByteArrayList lines = profile_file_content().split('\n');
    for (const QByteArray& one : lines)
        if (one.startsWith('['))
            found << one;
    return found;
}
}  // namespace

void BatteryProfilesSavingTest::init()
{
    home = std::make_unique<SettingsHome>();
    QVERIFY(QDir().mkpath(home->directory));
}

void BatteryProfilesSavingTest::cleanup()
{
    forget_profiles();
    home.reset();
}

void BatteryProfilesSavingTest::no_profiles_leave_an_empty_file()
{
    QVERIFY(put_profile_file(FIRST_PROFILE_FILE));
    QVERIFY(BatteryProfiles::save());
    QCOMPARE(profile_file_content(), QByteArray());
    // Which is no first run: the sample does not come back.
    QVERIFY(BatteryProfiles::load());
    QVERIFY(BatteryProfiles::profiles.isEmpty());
}

void BatteryProfilesSavingTest::all_fields_are_written_in_their_order()
{
    BatteryProfile* pack = add("Pack A");
    pack->serial_number_template = "PA-";
    pack->number_of_cycles = 12;
    pack->max_charge_time_sec = 7200;
    pack->low_voltage_cutoff = 19.25;
    pack->final_voltage = 36.5;
    pack->detect_full_charge = true;
    pack->prompt_to_discharge = true;
    pack->measure_internal_resistance = false;
    pack->ir_test_interval_ah = 0.125;
    add("Pack B");
    QVERIFY(BatteryProfiles::save());
    QCOMPARE(profile_file_content(), QByteArray("[Pack A]\n"
                                                "serial_number_template=PA-\n"
                                                "number_of_cycles=12\n"
                                                "max_charge_time_hr=2\n"
                                                "low_voltage_cutoff=19.25\n"
                                                "final_voltage=36.5\n"
                                                "detect_full_charge=Yes\n"
                                                "prompt_to_discharge=Yes\n"
                                                "measure_internal_resistance=No\n"
                                                "ir_test_interval_ah=0.125\n"
                                                "\n"
                                                "[Pack B]\n"
                                                "serial_number_template=\n"
                                                "number_of_cycles=1\n"
                                                "max_charge_time_hr=3\n"
                                                "low_voltage_cutoff=0\n"
                                                "final_voltage=0\n"
                                                "detect_full_charge=No\n"
                                                "prompt_to_discharge=No\n"
                                                "measure_internal_resistance=Yes\n"
                                                "ir_test_interval_ah=0.5\n"
                                                "\n"));
}

void BatteryProfilesSavingTest::numbers_keep_six_digits_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("rounded") << 36.1234567 << QByteArray("36.1235");
    QTest::newRow("whole") << 100.0 << QByteArray("100");
    QTest::newRow("small") << 0.00001 << QByteArray("1e-05");
    QTest::newRow("large") << 1234567.0 << QByteArray("1.23457e+06");
    QTest::newRow("negative") << -0.5 << QByteArray("-0.5");
}

void BatteryProfilesSavingTest::numbers_keep_six_digits()
{
    QFETCH(double, value);
    QFETCH(QByteArray, text);
    BatteryProfile* pack = add("Pack");
    pack->low_voltage_cutoff = value;
    pack->final_voltage = value;
    pack->ir_test_interval_ah = value;
    QVERIFY(BatteryProfiles::save());
    QCOMPARE(line(4), "low_voltage_cutoff=" + text);
    QCOMPARE(line(5), "final_voltage=" + text);
    QCOMPARE(line(9), "ir_test_interval_ah=" + text);
}

void BatteryProfilesSavingTest::hours_are_whole_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QByteArray>("hours");
    QTest::newRow("none") << 0 << QByteArray("0");
    QTest::newRow("below one") << 3599 << QByteArray("0");
    QTest::newRow("one") << 3600 << QByteArray("1");
    QTest::newRow("two and a half") << 9000 << QByteArray("2");
    QTest::newRow("negative") << -3601 << QByteArray("-1");
}

void BatteryProfilesSavingTest::hours_are_whole()
{
    QFETCH(int, seconds);
    QFETCH(QByteArray, hours);
    add("Pack")->max_charge_time_sec = seconds;
    QVERIFY(BatteryProfiles::save());
    QCOMPARE(line(3), "max_charge_time_hr=" + hours);
    QCOMPARE(BatteryProfiles::profiles.value("Pack")->max_charge_time_sec, seconds);
}

void BatteryProfilesSavingTest::part_of_an_hour_lasts_until_the_next_save()
{
    load_test_profiles("[Pack]\nmax_charge_time_hr=1.5\n");
    QCOMPARE(BatteryProfiles::profiles.value("Pack")->max_charge_time_sec, 5400);
    QVERIFY(BatteryProfiles::save());
    QVERIFY(BatteryProfiles::load());
    QCOMPARE(BatteryProfiles::profiles.value("Pack")->max_charge_time_sec, 3600);
}

void BatteryProfilesSavingTest::the_order_ignores_case()
{
    for (const char* name : {"b", "C", "a", "D"})
        add(name);
    QCOMPARE(BatteryProfiles::get_all_descriptions(), QStringList({"a", "b", "C", "D"}));
    QVERIFY(BatteryProfiles::save());
    QCOMPARE(headers(), QByteArrayList({"[a]", "[b]", "[C]", "[D]"}));
}

void BatteryProfilesSavingTest::the_maps_own_order_does_not()
{
    for (const char* name : {"b", "C", "a", "D"})
        add(name);
    QCOMPARE(BatteryProfiles::profiles.keys(), QStringList({"C", "D", "a", "b"}));
}

void BatteryProfilesSavingTest::odd_texts_come_back_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("an opening bracket") << "a[b";
    QTest::newRow("equals signs") << "=a=b=";
    QTest::newRow("quotes") << "'a' \"b\"";
    QTest::newRow("percent signs") << "%1%2%L3";
    QTest::newRow("markup") << "<b>a</b> &amp;";
    QTest::newRow("beyond Latin") << QString::fromUtf8("Ω 電池 🔋");
    QTest::newRow("10,000 characters") << QString(10000, 'n');
}

void BatteryProfilesSavingTest::odd_texts_come_back()
{
    QFETCH(QString, text);
    add(text)->serial_number_template = text;
    QVERIFY(BatteryProfiles::save());
    const QByteArray written = profile_file_content();
    QVERIFY(written.startsWith("[" + text.toUtf8() + "]\nserial_number_template=" + text.toUtf8() +
                               "\nnumber_of_cycles=1\n"));
    load_test_profiles(written);
    QCOMPARE(profile_text(text), text + "|" + text + "|1|10800|0|0|no|no|yes|0.5|yes");
    QVERIFY(BatteryProfiles::save());
    QCOMPARE(profile_file_content(), written);
}

void BatteryProfilesSavingTest::a_closing_bracket_is_written_and_cuts_the_name()
{
    add("a]b");
    QVERIFY(BatteryProfiles::save());
    QCOMPARE(line(0), QByteArray("[a]b]"));
    load_test_profiles(profile_file_content());
    QCOMPARE(BatteryProfiles::profiles.keys(), QStringList("a"));
}

void BatteryProfilesSavingTest::a_name_of_several_lines_is_written_in_one_data()
{
    add_columns<QString>({"name", "read"});
    add_row("LF", "a\nb", "a b");
    add_row("CR LF", "a\r\nb", "a b");
    add_row("like a variable", "a\nnumber_of_cycles=x\n", "a number_of_cycles=x ");
    add_row("like another profile", "a]\n[b", "a");
}

void BatteryProfilesSavingTest::a_name_of_several_lines_is_written_in_one()
{
    QFETCH(QString, name);
    QFETCH(QString, read);
    add("Before")->number_of_cycles = 2;
    add(name)->number_of_cycles = 3;
    QVERIFY(BatteryProfiles::save());
    load_test_profiles(profile_file_content());
    QCOMPARE(profile_text("Before"), QString("Before||2|10800|0|0|no|no|yes|0.5|yes"));
    QCOMPARE(profile_text(read), read + "||3|10800|0|0|no|no|yes|0.5|yes");
    QCOMPARE(BatteryProfiles::profiles.size(), 2);
}

void BatteryProfilesSavingTest::comments_and_words_vanish()
{
    load_test_profiles("'note\n" + FIRST_PROFILE_FILE + "words\n'more");
    QVERIFY(BatteryProfiles::save());
    QCOMPARE(profile_file_content(), FIRST_PROFILE_FILE);
}

void BatteryProfilesSavingTest::a_shorter_file_leaves_nothing_of_the_longer()
{
    load_test_profiles(FIRST_PROFILE_FILE + "[Zeta]\n");
    QVERIFY(BatteryProfiles::save());
    delete BatteryProfiles::profiles.take("Zeta");
    QVERIFY(BatteryProfiles::save());
    QCOMPARE(profile_file_content(), FIRST_PROFILE_FILE);
}

void BatteryProfilesSavingTest::saving_marks_the_record()
{
    const BatteryProfile* pack = add("Pack");
    QVERIFY(!pack->on_disk);
    QVERIFY(BatteryProfiles::save());
    QVERIFY(pack->on_disk);
}

void BatteryProfilesSavingTest::a_save_without_directory_fails()
{
    QVERIFY(QDir().rmdir(home->directory));
    const BatteryProfile* pack = add("Pack");
    QVERIFY(!BatteryProfiles::save());
    QVERIFY(!pack->on_disk);
    QCOMPARE(BatteryProfiles::profiles.keys(), QStringList("Pack"));
}

void BatteryProfilesSavingTest::a_save_to_a_read_only_file_fails()
{
    home.reset();
    const OrdinaryUser user;
    QVERIFY(user.active());
    home = std::make_unique<SettingsHome>();
    QVERIFY(put_profile_file(FIRST_PROFILE_FILE));
    QVERIFY(QFile::setPermissions(BatteryProfiles::get_filename(), QFileDevice::ReadOwner));
    add("Pack");
    QVERIFY(!BatteryProfiles::save());
    QCOMPARE(profile_file_content(), FIRST_PROFILE_FILE);
    QCOMPARE(BatteryProfiles::profiles.keys(), QStringList("Pack"));
    // Gone before the user is root again.
    home.reset();
    home = std::make_unique<SettingsHome>();
}

KEST_GUILESS_TEST(BatteryProfilesSavingTest)
#include "tst_battery_profiles_saving.moc"
