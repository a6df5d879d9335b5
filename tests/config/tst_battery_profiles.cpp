#include "config/battery_profiles.h"

#include "config/settings.h"
#include "support/ordinary_user.h"
#include "support/profile_file.h"
#include "support/settings_home.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QTextCodec>
#include <QtTest>

#include <limits>

/** How the profile file becomes profiles: what is understood, passed over and refused. */
class BatteryProfilesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void the_file_lies_in_the_settings_directory();
    void a_new_record_has_its_defaults();
    void a_first_run_makes_the_sample();
    void a_first_run_that_cannot_write_has_the_sample_in_memory();
    void a_link_to_nothing_is_no_file_yet();
    void a_written_file_comes_back_whole();
    void a_file_without_a_header_loads_nothing_data();
    void a_file_without_a_header_loads_nothing();
    void a_header_names_a_profile_data();
    void a_header_names_a_profile();
    void a_line_is_understood_or_passed_over_data();
    void a_line_is_understood_or_passed_over();
    void a_malformed_line_stops_the_load_data();
    void a_malformed_line_stops_the_load();
    void a_variable_before_the_first_header_stops_the_load();
    void what_stood_before_a_malformed_line_stays();
    void a_second_block_of_a_name_starts_from_the_defaults();
    void a_second_load_replaces_and_adds();
    void lines_may_end_in_any_way_data();
    void lines_may_end_in_any_way();
    void a_file_in_utf_16_is_read_by_its_mark_data();
    void a_file_in_utf_16_is_read_by_its_mark();
    void an_unreadable_file_is_refused();
    void a_directory_of_that_name_is_refused();

private:
    std::unique_ptr<SettingsHome> home;
};

namespace
{
const QString DEFAULTS = "||1|10800|0|0|no|no|yes|0.5|no";

/** "Pack" with one field of the defaults replaced, counted as in text_of(). */
QString pack_with(int field, const QString& value)
{
    QStringList fields = DEFAULTS.split('|');
    fields[0] = "Pack";
    fields.last() = "yes";
    fields[field] = value;
    return fields.join('|');
}

void expect_warning(int line)
{
    const QString text =
        QString("%1, line %2 cannot be understood.").arg(BatteryProfiles::get_filename()).arg(line);
    QTest::ignoreMessage(QtWarningMsg, qPrintable(text));
}
}  // namespace

void BatteryProfilesTest::init()
{
    home = std::make_unique<SettingsHome>();
}

void BatteryProfilesTest::cleanup()
{
    forget_profiles();
    home.reset();
}

void BatteryProfilesTest::the_file_lies_in_the_settings_directory()
{
    QCOMPARE(BatteryProfiles::get_filename(), home->directory + "/battery_profiles.txt");
}

void BatteryProfilesTest::a_new_record_has_its_defaults()
{
    QCOMPARE(text_of(BatteryProfile()), DEFAULTS);
}

void BatteryProfilesTest::a_first_run_makes_the_sample()
{
    QVERIFY(QDir().mkpath(home->directory));
    QVERIFY(BatteryProfiles::load());
    QCOMPARE(profile_file_content(), FIRST_PROFILE_FILE);
    QCOMPARE(BatteryProfiles::get_all_descriptions(), QStringList("Sample Profile"));
    QCOMPARE(profile_text("Sample Profile"),
             QString("Sample Profile|SP000|1|21600|30|36|no|no|yes|2|yes"));
}

void BatteryProfilesTest::a_first_run_that_cannot_write_has_the_sample_in_memory()
{
    // The settings directory does not exist.
    QVERIFY(BatteryProfiles::load());
    QVERIFY(!QFile::exists(BatteryProfiles::get_filename()));
    QCOMPARE(profile_text("Sample Profile"),
             QString("Sample Profile|SP000|1|21600|30|36|no|no|yes|2|no"));
}

void BatteryProfilesTest::a_link_to_nothing_is_no_file_yet()
{
    QVERIFY(QDir().mkpath(home->directory));
    const QString target = home->directory + "/elsewhere.txt";
    QVERIFY(QFile::link(target, BatteryProfiles::get_filename()));
    QVERIFY(BatteryProfiles::load());
    QCOMPARE(BatteryProfiles::profiles.keys(), QStringList("Sample Profile"));
    QCOMPARE(content_of(target), FIRST_PROFILE_FILE);
    QCOMPARE(QFile::symLinkTarget(BatteryProfiles::get_filename()), target);
}

void BatteryProfilesTest::a_written_file_comes_back_whole()
{
    QVERIFY(put_profile_file(FIRST_PROFILE_FILE));
    QVERIFY(BatteryProfiles::load());
    QCOMPARE(BatteryProfiles::profiles.keys(), QStringList("Sample Profile"));
    QCOMPARE(profile_text("Sample Profile"),
             QString("Sample Profile|SP000|1|21600|30|36|no|no|yes|2|yes"));
    QCOMPARE(profile_file_content(), FIRST_PROFILE_FILE);
}

void BatteryProfilesTest::a_file_without_a_header_loads_nothing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("blank lines") << QByteArray("\n \t \n\n");
    QTest::newRow("words") << QByteArray("just some words\n");
    QTest::newRow("a comment with a variable") << QByteArray("'number_of_cycles=x\n");
    QTest::newRow("a header without its end") << QByteArray("[Pack\n");
    QTest::newRow("a header without its begin") << QByteArray("Pack]\n");
    QTest::newRow("half a header each") << QByteArray("[\n]\n");
    QTest::newRow("a header in a comment") << QByteArray("'[Pack]\n");
    QTest::newRow("NULs") << QByteArray("\0\0\0\0", 4);
    QTest::newRow("invalid UTF-8") << QByteArray("\xFF\xFE\xFD\n");
    QTest::newRow("a million letters") << QByteArray(1000000, 'x');
}

void BatteryProfilesTest::a_file_without_a_header_loads_nothing()
{
    QFETCH(QByteArray, content);
    QVERIFY(put_profile_file(content));
    QVERIFY(BatteryProfiles::load());
    QVERIFY(BatteryProfiles::profiles.isEmpty());
    // No sample comes back, neither here nor on the disk.
    QCOMPARE(profile_file_content(), content);
}

void BatteryProfilesTest::a_header_names_a_profile_data()
{
    add_columns<QString>({"header", "name"});
    const QString long_name(10000, 'n');
    add_row("plain", "[Pack]", "Pack");
    add_row("blanks around the brackets", " \t[Pack] ", "Pack");
    add_row("blanks in the brackets stay", "[ x ]", " x ");
    add_row("empty", "[]", "");
    add_row("up to the first bracket", "[a]b]", "a");
    add_row("nothing before the first bracket", "[]b]", "");
    add_row("an opening bracket in the name", "[a[b]", "a[b");
    add_row("equals signs", "[a=b==c]", "a=b==c");
    add_row("quotes", "['a' \"b\"]", "'a' \"b\"");
    add_row("percent signs", "[%1 %2]", "%1 %2");
    add_row("beyond Latin", QString::fromUtf8("[Ω 電池 🔋]"), QString::fromUtf8("Ω 電池 🔋"));
    QTest::newRow("10,000 characters") << "[" + long_name + "]" << long_name;
}

void BatteryProfilesTest::a_header_names_a_profile()
{
    QFETCH(QString, header);
    QFETCH(QString, name);
    QVERIFY(put_profile_file((header + "\nserial_number_template=A\n").toUtf8()));
    QVERIFY(BatteryProfiles::load());
    QCOMPARE(BatteryProfiles::profiles.keys(), QStringList(name));
    QCOMPARE(profile_text(name), name + "|A|1|10800|0|0|no|no|yes|0.5|yes");
}

void BatteryProfilesTest::a_line_is_understood_or_passed_over_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("field");
    QTest::addColumn<QString>("value");
    const auto row = [](const char* name, const QString& line, int field, const QString& value) {
        QTest::newRow(name) << line << field << value;
    };
    row("nothing", "", 0, "Pack");
    row("a comment", "'a comment", 0, "Pack");
    row("an indented comment", " \t 'number_of_cycles=5", 0, "Pack");
    row("words", "just some words", 0, "Pack");
    row("a lone key", "number_of_cycles", 0, "Pack");
    row("a template", "serial_number_template=SP000", 1, "SP000");
    row("a template with equals signs", "serial_number_template==a=b", 1, "=a=b");
    row("a template with quotes", "serial_number_template='a' \"b\"", 1, "'a' \"b\"");
    row("a template beyond Latin", QString::fromUtf8("serial_number_template=Ω電🔋"), 1,
        QString::fromUtf8("Ω電🔋"));
    row("a template in brackets", "serial_number_template=[a]", 1, "[a]");
    row("an empty template", "serial_number_template=", 1, "");
    row("blanks around both halves", "\tserial_number_template  =  S P \t", 1, "S P");
    row("cycles", "number_of_cycles=12", 2, "12");
    row("hexadecimal cycles", "number_of_cycles=0x10", 2, "16");
    row("binary cycles", "number_of_cycles=0b11", 2, "3");
    row("leading zeros are decimal", "number_of_cycles=010", 2, "10");
    row("negative cycles", "number_of_cycles=-1", 2, "-1");
    row("the most cycles", "number_of_cycles=2147483647", 2, "2147483647");
    row("hours", "max_charge_time_hr=6", 3, "21600");
    row("part of an hour", "max_charge_time_hr=1.5", 3, "5400");
    row("less than a second", "max_charge_time_hr=0.0002", 3, "0");
    row("whole seconds of a float", "max_charge_time_hr=2.3", 3, "8279");
    row("a negative time", "max_charge_time_hr=-0.3", 3, "-1080");
    row("hours beyond an int", "max_charge_time_hr=1e30", 3, "2147483647");
    row("hours below an int", "max_charge_time_hr=-1e30", 3, "-2147483648");
    row("infinite hours", "max_charge_time_hr=inf", 3, "2147483647");
    row("no number of hours", "max_charge_time_hr=nan", 3, "0");
    row("a cutoff", "low_voltage_cutoff=19.25", 4, "19.25");
    row("an exponent", "low_voltage_cutoff=1.5e1", 4, "15");
    row("a final voltage", "final_voltage=-0.5", 5, "-0.5");
    row("detect", "detect_full_charge=Yes", 6, "yes");
    row("detect not", "detect_full_charge=No", 6, "no");
    row("prompt", "prompt_to_discharge=Yes", 7, "yes");
    row("measure not", "measure_internal_resistance=No", 8, "no");
    row("an interval", "ir_test_interval_ah=0.125", 9, "0.125");
    row("the last of two", "number_of_cycles=2\nnumber_of_cycles=3", 2, "3");
    row("a comment between two", "number_of_cycles=2\n'number_of_cycles=x\n", 2, "2");
}

void BatteryProfilesTest::a_line_is_understood_or_passed_over()
{
    QFETCH(QString, line);
    QFETCH(int, field);
    QFETCH(QString, value);
    QVERIFY(put_profile_file(("[Pack]\n" + line + "\n").toUtf8()));
    QVERIFY(BatteryProfiles::load());
    QCOMPARE(profile_text("Pack"), pack_with(field, value));
    QCOMPARE(BatteryProfiles::profiles.size(), 1);
}

void BatteryProfilesTest::a_malformed_line_stops_the_load_data()
{
    QTest::addColumn<QByteArray>("line");
    const char* const lines[] = {
        "colour=red",
        "=",
        "=5",
        "on_disk=Yes",
        "description=Pack",
        "max_charge_time_sec=6",
        "Number_of_cycles=1",
        "number of cycles=1",
        "\"number_of_cycles\"=1",
        "; number_of_cycles=1",
        "# number_of_cycles=1",
        "number_of_cycles=",
        "number_of_cycles=1.0",
        "number_of_cycles=12abc",
        "number_of_cycles=0x",
        "number_of_cycles=2147483648",
        "number_of_cycles=99999999999999999999",
        "number_of_cycles=1 'once",
        "max_charge_time_hr=",
        "max_charge_time_hr=1,5",
        "max_charge_time_hr=1e39",
        "max_charge_time_hr=6 h",
        "low_voltage_cutoff=",
        "low_voltage_cutoff=19,5",
        "low_voltage_cutoff=0x10",
        "low_voltage_cutoff=1e309",
        "final_voltage=36 V",
        "final_voltage==36",
        "detect_full_charge=yes",
        "detect_full_charge=NO",
        "detect_full_charge=",
        "prompt_to_discharge=1",
        "prompt_to_discharge=true",
        "measure_internal_resistance=Yes.",
        "measure_internal_resistance=Yes No",
        "ir_test_interval_ah=often",
        "[Pack=",
        "colour=red]",
    };
    for (const char* line : lines)
        QTest::newRow(line) << QByteArray(line);
    QTest::newRow("NULs behind the value") << QByteArray("number_of_cycles=1\0\0", 20);
    QTest::newRow("invalid UTF-8") << QByteArray("number_of_cycles=\xFF\xFE");
    QTest::newRow("a key of a megabyte") << QByteArray(1000000, 'k') + "=1";
}

void BatteryProfilesTest::a_malformed_line_stops_the_load()
{
    QFETCH(QByteArray, line);
    const QByteArray content = "[Pack]\nfinal_voltage=36\n" + line + "\n[Behind]\n";
    QVERIFY(put_profile_file(content));
    expect_warning(3);
    QVERIFY(!BatteryProfiles::load());
    QCOMPARE(BatteryProfiles::profiles.keys(), QStringList("Pack"));
    QCOMPARE(profile_file_content(), content);
}

void BatteryProfilesTest::a_variable_before_the_first_header_stops_the_load()
{
    QVERIFY(put_profile_file("'note\n\nwords\nnumber_of_cycles=1\n[Pack]\n"));
    expect_warning(4);
    QVERIFY(!BatteryProfiles::load());
    QVERIFY(BatteryProfiles::profiles.isEmpty());
}

void BatteryProfilesTest::what_stood_before_a_malformed_line_stays()
{
    QVERIFY(put_profile_file("[A]\nnumber_of_cycles=2\n[B]\nnumber_of_cycles=3\n"
                             "max_charge_time_hr=x\nlow_voltage_cutoff=1\n"));
    expect_warning(5);
    QVERIFY(!BatteryProfiles::load());
    QCOMPARE(profile_text("A"), QString("A||2|10800|0|0|no|no|yes|0.5|yes"));
    QCOMPARE(profile_text("B"), QString("B||3|10800|0|0|no|no|yes|0.5|yes"));
}

void BatteryProfilesTest::a_second_block_of_a_name_starts_from_the_defaults()
{
    QVERIFY(put_profile_file("[Pack]\nnumber_of_cycles=2\nfinal_voltage=36\n"
                             "[Other]\nnumber_of_cycles=4\n"
                             "[Pack]\nlow_voltage_cutoff=30\n"));
    QVERIFY(BatteryProfiles::load());
    QCOMPARE(profile_text("Pack"), QString("Pack||1|10800|30|0|no|no|yes|0.5|yes"));
    QCOMPARE(profile_text("Other"), QString("Other||4|10800|0|0|no|no|yes|0.5|yes"));
    QCOMPARE(BatteryProfiles::profiles.size(), 2);
}

void BatteryProfilesTest::a_second_load_replaces_and_adds()
{
    QVERIFY(put_profile_file("[A]\nnumber_of_cycles=2\n[B]\nnumber_of_cycles=3\n"));
    QVERIFY(BatteryProfiles::load());
    QVERIFY(put_profile_file("[A]\nfinal_voltage=36\n[C]\n"));
    QVERIFY(BatteryProfiles::load());
    QCOMPARE(BatteryProfiles::profiles.keys(), QStringList({"A", "B", "C"}));
    QCOMPARE(profile_text("A"), QString("A||1|10800|0|36|no|no|yes|0.5|yes"));
}

void BatteryProfilesTest::lines_may_end_in_any_way_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("LF") << QByteArray("[Pack]\nnumber_of_cycles=2\n");
    QTest::newRow("CR LF") << QByteArray("[Pack]\r\nnumber_of_cycles=2\r\n");
    QTest::newRow("no end of the last line") << QByteArray("[Pack]\nnumber_of_cycles=2");
    QTest::newRow("a byte order mark") << QByteArray("\xEF\xBB\xBF[Pack]\nnumber_of_cycles=2\n");
}

void BatteryProfilesTest::lines_may_end_in_any_way()
{
    QFETCH(QByteArray, content);
    QVERIFY(put_profile_file(content));
    QVERIFY(BatteryProfiles::load());
    QCOMPARE(profile_text("Pack"), pack_with(2, "2"));
}

void BatteryProfilesTest::a_file_in_utf_16_is_read_by_its_mark_data()
{
    QTest::addColumn<QByteArray>("codec");
    QTest::newRow("low byte first") << QByteArray("UTF-16LE");
    QTest::newRow("high byte first") << QByteArray("UTF-16BE");
}

void BatteryProfilesTest::a_file_in_utf_16_is_read_by_its_mark()
{
    QFETCH(QByteArray, codec);
    const QString text =
        QChar(QChar::ByteOrderMark) + QString::fromUtf8("[Ω 電池]\r\nnumber_of_cycles=2\r\n");
    const std::unique_ptr<QTextEncoder> encoder(
        QTextCodec::codecForName(codec)->makeEncoder(QTextCodec::IgnoreHeader));
    QVERIFY(put_profile_file(encoder->fromUnicode(text)));
    QVERIFY(BatteryProfiles::load());
    const QString name = QString::fromUtf8("Ω 電池");
    QCOMPARE(BatteryProfiles::profiles.keys(), QStringList(name));
    QCOMPARE(profile_text(name), name + "||2|10800|0|0|no|no|yes|0.5|yes");
}

void BatteryProfilesTest::an_unreadable_file_is_refused()
{
    home.reset();
    const OrdinaryUser user;
    QVERIFY(user.active());
    home = std::make_unique<SettingsHome>();
    QVERIFY(put_profile_file(FIRST_PROFILE_FILE));
    QVERIFY(QFile::setPermissions(BatteryProfiles::get_filename(), QFileDevice::WriteOwner));
    QVERIFY(!BatteryProfiles::load());
    QVERIFY(BatteryProfiles::profiles.isEmpty());
    forget_profiles();
    home.reset();
    home = std::make_unique<SettingsHome>();
}

void BatteryProfilesTest::a_directory_of_that_name_is_refused()
{
    QVERIFY(QDir().mkpath(BatteryProfiles::get_filename()));
    QVERIFY(!BatteryProfiles::load());
    QVERIFY(BatteryProfiles::profiles.isEmpty());
}

KEST_GUILESS_TEST(BatteryProfilesTest)
#include "tst_battery_profiles.moc"
