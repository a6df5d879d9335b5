#include "station/test_station.h"
#include "support/profile_bench.h"
#include "support/profile_file.h"
#include "support/test_program.h"

#include "config/battery_profiles.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QtTest>

/** How a saved profile reaches a panel, and what becomes of the serial number. */
class ProfilesTest : public QObject
{
    Q_OBJECT

private slots:
    void every_panel_lists_the_profiles();
    void a_profile_without_a_name_is_listed_and_does_nothing();
    void choosing_a_profile_applies_all_of_it();
    void choosing_a_profile_shows_all_of_it();
    void what_is_derived_follows_where_no_control_does();
    void nothing_is_left_to_save_after_choosing();
    void the_placeholder_changes_nothing();
    void a_profile_of_the_placeholders_name_changes_nothing();
    void a_profile_that_is_gone_changes_nothing();
    void the_two_check_boxes_cross_data();
    void the_two_check_boxes_cross();
    void an_untyped_number_follows_every_profile();
    void a_typed_number_that_holds_the_template_stays_data();
    void a_typed_number_that_holds_the_template_stays();
    void a_typed_number_gives_way_on_yes_only_data();
    void a_typed_number_gives_way_on_yes_only();
    void the_question_shows_odd_names_as_they_stand();
    void lines_count_while_the_question_is_open();
    void new_test_returns_to_the_template();
    void new_test_in_mid_test_returns_to_the_template();
    void new_test_after_a_profile_without_template_is_blank();
    void new_test_after_a_lost_profile_is_blank();
    void a_profile_prepares_a_whole_test();
};

void ProfilesTest::every_panel_lists_the_profiles()
{
    ProfileBench bench;
    TestStation preview(nullptr, nullptr);
    const QStringList names = {"Select Profile...", "Pack A", "pack b", "Plain"};
    for (const TestStation* station : {bench.station.get(), &preview}) {
        QCOMPARE(listed_profiles(*station), names);
        QCOMPARE(selected_profile(*station), QString("Select Profile..."));
    }
    QCOMPARE(TestStation::no_profile_text, names.first());
    QVERIFY(bench.save_enabled());
    QVERIFY(!bench.delete_enabled());
    const auto* box = bench.widget<QComboBox>("cbProfile");
    QCOMPARE(box->view()->minimumWidth(), box->minimumSizeHint().width());
}

void ProfilesTest::a_profile_without_a_name_is_listed_and_does_nothing()
{
    ProfileBench bench("[]\nserial_number_template=X\n");
    QCOMPARE(listed_profiles(*bench.station), QStringList({"Select Profile...", ""}));
    const QString before = parameters_of(*bench.station);
    bench.choose_profile("");
    QCOMPARE(parameters_of(*bench.station), before);
    QVERIFY(!bench.delete_enabled());
}

void ProfilesTest::choosing_a_profile_applies_all_of_it()
{
    ProfileBench bench;
    bench.choose_profile("Pack A");
    QCOMPARE(parameters_of(*bench.station), QString("Pack A|A-|3|7200|21.5|37.5|no|no|no|1.5"));
    bench.choose_profile("pack b");
    QCOMPARE(parameters_of(*bench.station), QString("pack b|B-|5|14400|18|24|yes|yes|yes|0.25"));
    bench.choose_profile("Plain");
    QCOMPARE(parameters_of(*bench.station), QString("Plain||1|10800|0|0|no|no|yes|0.5"));
    QVERIFY(bench.answers.seen.empty());
}

void ProfilesTest::choosing_a_profile_shows_all_of_it()
{
    ProfileBench bench;
    bench.choose_profile("Pack A");
    QCOMPARE(bench.widget<QLineEdit>("leProfileName")->text(), QString("Pack A"));
    QCOMPARE(bench.widget<QLineEdit>("leSerialNumber")->text(), QString("A-"));
    QCOMPARE(bench.station->serial_number_label.text(), QString("A-"));
    QCOMPARE(bench.widget<QSpinBox>("sbNumberOfCycles")->value(), 3);
    QCOMPARE(bench.widget<QLineEdit>("leMaxChargeTime")->text(), QString("2"));
    QCOMPARE(bench.widget<QLineEdit>("leLowVoltageCutoff")->text(), QString("21.5"));
    QCOMPARE(bench.widget<QLineEdit>("leFinalCharge")->text(), QString("37.5"));
    QVERIFY(!bench.widget<QCheckBox>("cbDetectFullCharge")->isChecked());
    QVERIFY(!bench.widget<QCheckBox>("cbPromptToDischarge")->isChecked());
    QVERIFY(!bench.widget<QCheckBox>("cbMeasureInternalResistance")->isChecked());
    auto* interval = bench.widget<QLineEdit>("leInternalResistanceTestIntervalAh");
    QCOMPARE(interval->text(), QString("1.5"));
    QVERIFY(!interval->isEnabled());
    // What is derived follows, too: name and number are good for a start.
    QVERIFY(bench.widget<QWidget>("laBlankName")->isHidden());
    QVERIFY(bench.widget<QWidget>("pbStartSkip")->isEnabled());
}

void ProfilesTest::what_is_derived_follows_where_no_control_does()
{
    // No check box and no number of cycles changes, whose slots would refresh the panel.
    ProfileBench bench("[Pack]\nserial_number_template=A/1\n");
    bench.choose_profile("Pack");
    QVERIFY(bench.widget<QWidget>("laBlankName")->isHidden());
    QVERIFY(bench.widget<QWidget>("laBlankSerialNumber")->isHidden());
    QVERIFY(!bench.widget<QWidget>("laBadSerialNumber")->isHidden());
}

void ProfilesTest::nothing_is_left_to_save_after_choosing()
{
    ProfileBench bench;
    bench.choose_profile("pack b");
    QVERIFY(!bench.save_enabled());
    QVERIFY(bench.delete_enabled());
    bench.type("leFinalCharge", "25");
    QVERIFY(bench.save_enabled());
}

void ProfilesTest::the_placeholder_changes_nothing()
{
    ProfileBench bench;
    bench.choose_profile("Pack A");
    bench.type("leFinalCharge", "25");
    const QString before = parameters_of(*bench.station);
    bench.choose_profile("Select Profile...");
    QCOMPARE(parameters_of(*bench.station), before);
    QVERIFY(bench.save_enabled());
    QVERIFY(bench.delete_enabled());
}

void ProfilesTest::a_profile_of_the_placeholders_name_changes_nothing()
{
    ProfileBench bench("[Select Profile...]\nserial_number_template=X\n");
    QCOMPARE(listed_profiles(*bench.station),
             QStringList({"Select Profile...", "Select Profile..."}));
    const QString before = parameters_of(*bench.station);
    for (const int index : {1, 0})
        bench.widget<QComboBox>("cbProfile")->setCurrentIndex(index);
    QCOMPARE(parameters_of(*bench.station), before);
    QVERIFY(bench.save_enabled());
    QVERIFY(!bench.delete_enabled());
}

void ProfilesTest::a_profile_that_is_gone_changes_nothing()
{
    ProfileBench bench;
    const QString before = parameters_of(*bench.station);
    delete BatteryProfiles::profiles.take("Pack A");
    bench.choose_profile("Pack A");
    QCOMPARE(parameters_of(*bench.station), before);
    QVERIFY(bench.answers.seen.empty());
}

void ProfilesTest::the_two_check_boxes_cross_data()
{
    QTest::addColumn<bool>("prompt_box_before");
    QTest::addColumn<bool>("detect");
    QTest::addColumn<bool>("prompt");
    QTest::addColumn<bool>("prompt_after");
    // The prompt's box goes where the other flag is; only if that moves it does the flag follow.
    QTest::newRow("off, neither") << false << false << false << false;
    QTest::newRow("off, prompt: the box hides it") << false << false << true << true;
    QTest::newRow("off, detect: the prompt comes along") << false << true << false << true;
    QTest::newRow("off, both") << false << true << true << true;
    QTest::newRow("on, neither") << true << false << false << false;
    QTest::newRow("on, prompt: it is lost") << true << false << true << false;
    QTest::newRow("on, detect: the box shows what is not") << true << true << false << false;
    QTest::newRow("on, both") << true << true << true << true;
}

void ProfilesTest::the_two_check_boxes_cross()
{
    QFETCH(bool, prompt_box_before);
    QFETCH(bool, detect);
    QFETCH(bool, prompt);
    ProfileBench bench("[Pack]\n");
    BatteryProfile* pack = BatteryProfiles::profiles.value("Pack");
    pack->detect_full_charge = detect;
    pack->prompt_to_discharge = prompt;
    bench.widget<QCheckBox>("cbPromptToDischarge")->setChecked(prompt_box_before);
    bench.choose_profile("Pack");
    QCOMPARE(bench.station->detect_full_charge, detect);
    QCOMPARE(bench.widget<QCheckBox>("cbDetectFullCharge")->isChecked(), detect);
    QCOMPARE(bench.widget<QCheckBox>("cbPromptToDischarge")->isChecked(), detect);
    QTEST(bench.station->prompt_to_discharge, "prompt_after");
    // The profile itself does not follow.
    QCOMPARE(pack->prompt_to_discharge, prompt);
    QVERIFY(!bench.save_enabled());
}

void ProfilesTest::an_untyped_number_follows_every_profile()
{
    ProfileBench bench;
    for (const char* name : {"Pack A", "pack b", "Pack A", "Plain"}) {
        bench.choose_profile(name);
        QCOMPARE(bench.station->serial_number,
                 BatteryProfiles::profiles.value(name)->serial_number_template);
        QVERIFY(!bench.station->serial_number_edited);
    }
    QVERIFY(bench.answers.seen.empty());
}

void ProfilesTest::a_typed_number_that_holds_the_template_stays_data()
{
    QTest::addColumn<QString>("profile");
    QTest::addColumn<QString>("number");
    add_row("at its begin", "Pack A", "A-123");
    add_row("alone", "Pack A", "A-");
    add_row("in its middle", "Pack A", "XA-1");
    add_row("an empty template is in every number", "Plain", "123");
    add_row("also in an empty one", "Plain", "");
}

void ProfilesTest::a_typed_number_that_holds_the_template_stays()
{
    QFETCH(QString, profile);
    QFETCH(QString, number);
    ProfileBench bench;
    bench.type("leSerialNumber", "x");
    bench.type("leSerialNumber", number);
    QVERIFY(bench.station->serial_number_edited);
    bench.choose_profile(profile);
    QCOMPARE(bench.station->profile_name, profile);
    QCOMPARE(bench.station->serial_number, number);
    QVERIFY(bench.station->serial_number_edited);
    QVERIFY(bench.answers.seen.empty());
}

void ProfilesTest::a_typed_number_gives_way_on_yes_only_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<QString>("number");
    QTest::newRow("Yes") << int(QMessageBox::Yes) << "A-";
    QTest::newRow("No") << int(QMessageBox::No) << "a-1";
    QTest::newRow("Escape") << int(QMessageBox::NoButton) << "a-1";
}

void ProfilesTest::a_typed_number_gives_way_on_yes_only()
{
    QFETCH(int, answer);
    QFETCH(QString, number);
    ProfileBench bench;
    // The case counts.
    bench.type("leSerialNumber", "a-1");
    bench.answers.click(QMessageBox::StandardButton(answer));
    bench.choose_profile("Pack A");
    QCOMPARE(bench.answers.seen.size(), size_t(1));
    QVERIFY(
        is_question(bench.answers.seen[0], "Overwrite serial number?", "Overwrite a-1 with A-?"));
    QCOMPARE(parameters_of(*bench.station), "Pack A|" + number + "|3|7200|21.5|37.5|no|no|no|1.5");
    QCOMPARE(bench.widget<QLineEdit>("leSerialNumber")->text(), number);
    QCOMPARE(bench.station->serial_number_edited, answer != QMessageBox::Yes);
    QVERIFY(!bench.save_enabled());
    QVERIFY(bench.delete_enabled());
}

void ProfilesTest::the_question_shows_odd_names_as_they_stand()
{
    ProfileBench bench("[Pack]\nserial_number_template=<b>%1</b>\n");
    bench.type("leSerialNumber", "%2");
    Qt::TextFormat format = Qt::AutoText;
    bench.answers.handle([&format](QWidget* widget) {
        auto* box = qobject_cast<QMessageBox*>(widget);
        format = box->textFormat();
        box->button(QMessageBox::No)->click();
    });
    bench.choose_profile("Pack");
    QVERIFY(is_question(bench.answers.seen.at(0), "Overwrite serial number?",
                        "Overwrite %2 with <b>%1</b>?"));
    QCOMPARE(format, Qt::PlainText);
}

void ProfilesTest::lines_count_while_the_question_is_open()
{
    ProfileBench bench;
    bench.type("leSerialNumber", "1");
    bench.answers.handle([&bench](QWidget* box) {
        bench.receive("39.00", "0.0", "O");
        static_cast<QMessageBox*>(box)->button(QMessageBox::Yes)->click();
    });
    bench.choose_profile("Pack A");
    QCOMPARE(bench.text("laVoltage"), QString("39.0 V"));
    QCOMPARE(bench.station->serial_number, QString("A-"));
}

void ProfilesTest::new_test_returns_to_the_template()
{
    ProfileBench bench;
    bench.choose_profile("Pack A");
    bench.type("leSerialNumber", "A-77");
    bench.press("pbNewTest");
    QCOMPARE(bench.station->serial_number, QString("A-"));
    QCOMPARE(bench.widget<QLineEdit>("leSerialNumber")->text(), QString("A-"));
    QCOMPARE(bench.station->serial_number_label.text(), QString("A-"));
    QVERIFY(!bench.station->serial_number_edited);
    QVERIFY(bench.widget<QWidget>("laBlankSerialNumber")->isHidden());
    QVERIFY(bench.widget<QWidget>("pbStartSkip")->isEnabled());
    QVERIFY(bench.answers.seen.empty());
}

void ProfilesTest::new_test_in_mid_test_returns_to_the_template()
{
    ProfileBench bench;
    bench.choose_profile("Pack A");
    bench.type("leSerialNumber", "A-77");
    bench.receive("40.00", "0.0", "O");
    bench.press("pbStartSkip");
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    bench.answers.click(QMessageBox::Cancel);
    bench.press("pbNewTest");
    QCOMPARE(bench.station->serial_number, QString("A-77"));
    bench.answers.click(QMessageBox::Ok);
    bench.press("pbNewTest");
    QCOMPARE(bench.station->phase, PHASE_IDLE);
    QCOMPARE(parameters_of(*bench.station), QString("Pack A|A-|3|7200|21.5|37.5|no|no|no|1.5"));
    QVERIFY(!bench.station->serial_number_edited);
    QCOMPARE(selected_profile(*bench.station), QString("Pack A"));
}

void ProfilesTest::new_test_after_a_profile_without_template_is_blank()
{
    ProfileBench bench;
    bench.choose_profile("Plain");
    bench.type("leSerialNumber", "77");
    bench.press("pbNewTest");
    QCOMPARE(bench.station->serial_number, QString());
    QVERIFY(!bench.widget<QWidget>("laBlankSerialNumber")->isHidden());
}

void ProfilesTest::new_test_after_a_lost_profile_is_blank()
{
    ProfileBench bench;
    bench.choose_profile("Pack A");
    delete BatteryProfiles::profiles.take("Pack A");
    bench.press("pbNewTest");
    QCOMPARE(bench.station->serial_number, QString());
    QVERIFY(!bench.station->serial_number_edited);
}

void ProfilesTest::a_profile_prepares_a_whole_test()
{
    ProfileBench bench;
    bench.choose_profile("Pack A");
    bench.answers.click(QMessageBox::Yes);
    bench.press("pbStartSkip");
    // The template is not a number that somebody has typed.
    QCOMPARE(bench.answers.seen.at(0).text,
             QString("Warning: Serial number has not been edited. Continue anyway?"));
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    QVERIFY(bench.csv().startsWith("Kestrometer Log\nBattery Name:  Pack A\nSerial Number: A-\n"));
    QVERIFY(!bench.widget<QWidget>("cbProfile")->isEnabled());
}

KEST_TEST(ProfilesTest)
#include "tst_profiles.moc"
