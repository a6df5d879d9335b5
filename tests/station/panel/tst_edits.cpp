#include "station/test_station.h"
#include "support/station_bench.h"
#include "support/test_program.h"
#include "support/test_road.h"

#include "config/settings.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

#include <limits>

/** What the operator types and ticks, and when it takes effect. */
class EditsTest : public QObject
{
    Q_OBJECT

private slots:
    void names_are_trimmed_and_shown_at_once();
    void only_typing_counts_as_editing_the_number();
    void a_charge_time_is_taken_if_it_converts_data();
    void a_charge_time_is_taken_if_it_converts();
    void a_number_that_does_not_convert_counts_as_zero_data();
    void a_number_that_does_not_convert_counts_as_zero();
    void a_field_being_cleared_is_zero_for_that_moment();
    void boxes_reach_their_flags();
    void each_edit_enables_save_data();
    void each_edit_enables_save();
    void measuring_follows_its_box();
    void the_next_test_falls_on_a_multiple_data();
    void the_next_test_falls_on_a_multiple();
    void an_interval_being_cleared_leaves_no_trace();
    void details_fold_away_and_come_back();
    void the_directory_is_chosen();
    void a_cancelled_directory_changes_nothing();
};

namespace
{
const double BEYOND = std::numeric_limits<double>::infinity();

QPushButton* save_of(StationBench& bench)
{
    return bench.widget<QPushButton>("pbSaveProfile");
}

/** Puts a text where a validator would refuse its keys, and tells the station of it. */
void force(StationBench& bench, const char* edit, const QString& text)
{
    auto* line_edit = bench.widget<QLineEdit>(edit);
    line_edit->setText(text);
    emit line_edit->textEdited(text);
}

double member_of(const TestStation& station, const QByteArray& edit)
{
    if (edit == "leLowVoltageCutoff")
        return station.low_voltage_cutoff;
    if (edit == "leFinalCharge")
        return station.final_voltage;
    return station.internal_resistance_test_interval_ah;
}
}  // namespace

void EditsTest::names_are_trimmed_and_shown_at_once()
{
    StationBench bench;
    bench.type_names("  Pack A ", " 1042  ");
    QCOMPARE(bench.station->profile_name, QString("Pack A"));
    QCOMPARE(bench.station->serial_number, QString("1042"));
    QVERIFY(bench.widget<QLabel>("laBlankName")->isHidden());
    QVERIFY(bench.widget<QLabel>("laBlankSerialNumber")->isHidden());
    QVERIFY(bench.widget<QPushButton>("pbStartSkip")->isEnabled());
}

void EditsTest::only_typing_counts_as_editing_the_number()
{
    StationBench bench;
    bench.widget<QLineEdit>("leSerialNumber")->setText("1042");
    QVERIFY(!bench.station->serial_number_edited);
    bench.type("leSerialNumber", "1043");
    QVERIFY(bench.station->serial_number_edited);
}

void EditsTest::a_charge_time_is_taken_if_it_converts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<bool>("saved");
    QTest::newRow("hours") << "8" << 28800 << true;
    QTest::newRow("broken") << "2.5" << 9000 << true;
    QTest::newRow("truncated") << "0.0166" << 59 << true;
    QTest::newRow("nothing") << "" << 21600 << false;
    QTest::newRow("point") << "." << 21600 << false;
    QTest::newRow("comma") << "2,5" << 21600 << false;
    QTest::newRow("words") << "two" << 21600 << false;
    QTest::newRow("negative") << "-0.0001" << 0 << true;
    QTest::newRow("far out") << "1e30" << std::numeric_limits<int>::max() << true;
    QTest::newRow("far out below") << "-1e30" << std::numeric_limits<int>::min() << true;
    QTest::newRow("infinite") << "inf" << std::numeric_limits<int>::max() << true;
    QTest::newRow("no number") << "nan" << 0 << true;
    QTest::newRow("beyond a double") << "1e999" << 21600 << false;
}

void EditsTest::a_charge_time_is_taken_if_it_converts()
{
    QFETCH(QString, text);
    StationBench bench;
    save_of(bench)->setEnabled(false);
    force(bench, "leMaxChargeTime", text);
    QTEST(bench.station->max_charge_time, "seconds");
    QTEST(save_of(bench)->isEnabled(), "saved");
}

void EditsTest::a_number_that_does_not_convert_counts_as_zero_data()
{
    QTest::addColumn<QByteArray>("edit");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("saved");
    for (const char* edit :
         {"leLowVoltageCutoff", "leFinalCharge", "leInternalResistanceTestIntervalAh"}) {
        const auto row = [edit](const char* title) -> QTestData& {
            return QTest::newRow(qPrintable(QString("%1, %2").arg(edit, title)))
                   << QByteArray(edit);
        };
        row("whole") << "30" << 30.0 << true;
        row("half") << "0.5" << 0.5 << true;
        row("nothing") << "" << 0.0 << false;
        row("comma") << "3,5" << 0.0 << false;
        row("words") << "30 V" << 0.0 << false;
        row("far out") << "1e300" << 1e300 << true;
        row("beyond a double") << "1e999" << 0.0 << false;
        row("infinite") << "inf" << BEYOND << true;
    }
}

void EditsTest::a_number_that_does_not_convert_counts_as_zero()
{
    QFETCH(QByteArray, edit);
    QFETCH(QString, text);
    QFETCH(double, value);
    StationBench bench;
    bench.station->final_voltage = 7.0;
    save_of(bench)->setEnabled(false);
    force(bench, edit, text);
    QVERIFY(member_of(*bench.station, edit) == value);
    QTEST(save_of(bench)->isEnabled(), "saved");
}

void EditsTest::a_field_being_cleared_is_zero_for_that_moment()
{
    StationBench bench;
    auto* edit = bench.widget<QLineEdit>("leLowVoltageCutoff");
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    QCOMPARE(bench.station->low_voltage_cutoff, 0.0);
    QTest::keyClick(edit, '3');
    QCOMPARE(bench.station->low_voltage_cutoff, 3.0);
    QTest::keyClick(edit, '0');
    QCOMPARE(bench.station->low_voltage_cutoff, 30.0);
    bench.type("leMaxChargeTime", "");
    QCOMPARE(bench.station->max_charge_time, 21600);
}

void EditsTest::boxes_reach_their_flags()
{
    StationBench bench;
    for (const bool checked : {true, false}) {
        bench.widget<QCheckBox>("cbDetectFullCharge")->setChecked(checked);
        QCOMPARE(bench.station->detect_full_charge, checked);
        bench.widget<QCheckBox>("cbPromptToDischarge")->setChecked(checked);
        QCOMPARE(bench.station->prompt_to_discharge, checked);
        bench.widget<QCheckBox>("cbMeasureInternalResistance")->setChecked(checked);
        QCOMPARE(bench.station->measure_internal_resistance, checked);
    }
    // The operator cannot change the detection.
    QTest::mouseClick(bench.widget<QCheckBox>("cbDetectFullCharge"), Qt::LeftButton);
    QVERIFY(!bench.station->detect_full_charge);
}

void EditsTest::each_edit_enables_save_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("leProfileName") << "Pack";
    QTest::newRow("leSerialNumber") << "1042";
    QTest::newRow("leMaxChargeTime") << "8";
    QTest::newRow("leLowVoltageCutoff") << "30";
    QTest::newRow("leFinalCharge") << "37.5";
    QTest::newRow("leInternalResistanceTestIntervalAh") << "1";
    QTest::newRow("cbDetectFullCharge") << "";
    QTest::newRow("cbPromptToDischarge") << "";
    QTest::newRow("cbMeasureInternalResistance") << "";
}

void EditsTest::each_edit_enables_save()
{
    QFETCH(QString, text);
    StationBench bench;
    save_of(bench)->setEnabled(false);
    auto* control = bench.widget<QWidget>(QTest::currentDataTag());
    if (auto* box = qobject_cast<QCheckBox*>(control))
        box->toggle();
    else
        bench.type(QTest::currentDataTag(), text);
    QVERIFY(save_of(bench)->isEnabled());
}

void EditsTest::measuring_follows_its_box()
{
    StationBench bench;
    auto* box = bench.widget<QCheckBox>("cbMeasureInternalResistance");
    for (const bool checked : {false, true}) {
        QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(5, box->height() / 2));
        QCOMPARE(bench.station->measure_internal_resistance, checked);
        for (const char* name :
             {"laInternalResistanceInterval", "leInternalResistanceTestIntervalAh"})
            QCOMPARE(bench.widget<QWidget>(name)->isEnabled(), checked);
    }
    // Without a cycle there is no test to plan.
    QCOMPARE(bench.station->next_ir_check_ah, 0.0);
}

void EditsTest::the_next_test_falls_on_a_multiple_data()
{
    QTest::addColumn<double>("amp_hours");
    QTest::addColumn<double>("interval");
    QTest::addColumn<double>("next");
    QTest::newRow("nothing delivered") << 0.0 << 0.5 << 0.0;
    QTest::newRow("between") << 1.2 << 0.5 << 1.5;
    QTest::newRow("on a multiple") << 1.5 << 0.5 << 1.5;
    QTest::newRow("just beyond") << 1.5001 << 0.5 << 2.0;
    QTest::newRow("long interval") << 1.2 << 100.0 << 100.0;
}

void EditsTest::the_next_test_falls_on_a_multiple()
{
    QFETCH(double, amp_hours);
    QFETCH(double, interval);
    StationBench bench;
    auto* box = bench.widget<QCheckBox>("cbMeasureInternalResistance");
    add_cycle(*bench.station)->amp_hours = amp_hours;
    bench.station->internal_resistance_test_interval_ah = interval;
    bench.station->next_ir_check_ah = 77.0;
    box->setChecked(false);
    QCOMPARE(bench.station->next_ir_check_ah, 77.0);
    box->setChecked(true);
    QTEST(bench.station->next_ir_check_ah, "next");
}

void EditsTest::an_interval_being_cleared_leaves_no_trace()
{
    StationBench bench;
    auto* box = bench.widget<QCheckBox>("cbMeasureInternalResistance");
    add_cycle(*bench.station)->amp_hours = 1.2;
    bench.type("leInternalResistanceTestIntervalAh", "");
    box->setChecked(false);
    box->setChecked(true);
    // Due at once, as with any interval of 0, and a number that later intervals can be added to.
    QCOMPARE(bench.station->next_ir_check_ah, 1.2);
}

void EditsTest::details_fold_away_and_come_back()
{
    StationBench bench;
    auto* button = bench.widget<QPushButton>("pbExpandCollapse");
    const auto* details = bench.widget<QWidget>("frDetails");
    QCOMPARE(button->text(), QString::fromUtf8("▲"));
    QVERIFY(details->isVisible());
    bench.press("pbExpandCollapse");
    QCOMPARE(button->text(), QString::fromUtf8("▼"));
    QVERIFY(!details->isVisible());
    QVERIFY(bench.widget<QWidget>("frSummary")->isVisible());
    bench.press("pbExpandCollapse");
    QCOMPARE(button->text(), QString::fromUtf8("▲"));
    QVERIFY(details->isVisible());
}

void EditsTest::the_directory_is_chosen()
{
    StationBench bench;
    const QString chosen = bench.path("elsewhere");
    QVERIFY(QDir().mkdir(chosen));
    bench.answers.handle([&](QWidget* widget) {
        auto* dialog = qobject_cast<QFileDialog*>(widget);
        QVERIFY(dialog != nullptr);
        QCOMPARE(dialog->windowTitle(), QString("Select Log File Directory"));
        QCOMPARE(dialog->parentWidget(), nullptr);
        QCOMPARE(dialog->directory().path(), bench.folder.path());
        QVERIFY(dialog->testOption(QFileDialog::ShowDirsOnly));
        dialog->setDirectory(bench.folder.path());
        dialog->selectFile(chosen);
        static_cast<QDialog*>(dialog)->done(QDialog::Accepted);
    });
    bench.widget<QLabel>("laDirectory")->setToolTip("old");
    bench.press("pbDirectory");
    QCOMPARE(bench.answers.pending(), 0);
    QCOMPARE(bench.station->log_dir, chosen);
    QVERIFY(bench.text("laDirectory").startsWith("/"));
    QVERIFY(bench.widget<QLabel>("laDirectory")->toolTip() != "old");
    QCOMPARE(Settings::get_log_dir(), bench.folder.path());
    bench.start();
    QVERIFY(QFile::exists(chosen + "/Pack A_1042.csv"));
}

void EditsTest::a_cancelled_directory_changes_nothing()
{
    StationBench bench;
    const QString shown = bench.text("laDirectory");
    bench.answers.choose_path(QString());
    bench.press("pbDirectory");
    QCOMPARE(bench.answers.pending(), 0);
    QCOMPARE(bench.station->log_dir, bench.folder.path());
    QCOMPARE(bench.text("laDirectory"), shown);
}

KEST_TEST(EditsTest)
#include "tst_edits.moc"
