#include "station/test_station.h"
#include "support/form_slots.h"
#include "support/station_bench.h"
#include "support/test_program.h"

#include "config/settings.h"
#include "config/tool_tips.h"
#include "device/kestrometer.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

/** How a panel stands when its construction is over, with an instrument and without. */
class PanelSetUpTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void a_panel_ends_like_this_data();
    void a_panel_ends_like_this();
    void save_is_enabled_on_every_new_panel();
    void messages_that_show_at_first();
    void the_raw_status_shows_on_request_at_live_stations_only();
    void the_port_is_no_tooltip_once_there_is_help();
    void profiles_begin_with_the_placeholder();
    void lines_reach_the_panel();
    void logs_go_to_the_directory_of_the_settings();
    void a_long_directory_is_elided();
    void validators_have_their_ranges();
    void what_can_be_typed_is_what_is_read_data();
    void what_can_be_typed_is_what_is_read();
    void every_slot_finds_its_widget();
};

namespace
{
/** A station without an instrument, in settings of its own. */
struct PreviewBench
{
    PreviewBench()
    {
        load_test_settings(folder.path());
        station = std::make_unique<TestStation>(nullptr, nullptr);
        station->show();
    }

    template <typename Widget> Widget* widget(const char* name)
    {
        return station->findChild<Widget*>(name);
    }

    QTemporaryDir folder;
    std::unique_ptr<TestStation> station;
};

QStringList messages_shown(const TestStation& station)
{
    QStringList shown;
    for (const char* name : {"laKestrometerStatus", "laKestrometerIsStuck", "laLostCommunication",
                             "laBlankSerialNumber", "laBadSerialNumber", "laBlankName", "laBadName",
                             "laNotCharging", "laNotDischarging"})
        if (!station.findChild<QLabel*>(name)->isHidden())
            shown += name;
    return shown;
}
}  // namespace

void PanelSetUpTest::cleanup()
{
    QLocale::setDefault(QLocale::c());
}

void PanelSetUpTest::a_panel_ends_like_this_data()
{
    QTest::addColumn<bool>("live");
    QTest::newRow("live") << true;
    QTest::newRow("preview") << false;
}

void PanelSetUpTest::a_panel_ends_like_this()
{
    QFETCH(bool, live);
    StationBench bench;
    PreviewBench preview;
    const TestStation& station = live ? *bench.station : *preview.station;
    QStringList disabled = {"pbStartSkip", "pbDeleteProfile", "cbDetectFullCharge"};
    if (!live)
        disabled += {"pbNewTest", "leSerialNumber"};
    for (const char* name : {"pbStartSkip",
                             "pbNewTest",
                             "pbLoadLog",
                             "pbGeneratePDF",
                             "pbExpandCollapse",
                             "pbClose",
                             "leSerialNumber",
                             "cbProfile",
                             "pbSaveProfile",
                             "pbDeleteProfile",
                             "leProfileName",
                             "pbDirectory",
                             "sbNumberOfCycles",
                             "leMaxChargeTime",
                             "leLowVoltageCutoff",
                             "leFinalCharge",
                             "cbPromptToDischarge",
                             "cbDetectFullCharge",
                             "cbMeasureInternalResistance",
                             "laInternalResistanceInterval",
                             "leInternalResistanceTestIntervalAh"})
        QVERIFY2(station.findChild<QWidget*>(name)->isEnabled() != disabled.contains(name), name);
    QVERIFY(station.findChild<QCheckBox*>("cbMeasureInternalResistance")->isChecked());
    QVERIFY(station.measure_internal_resistance);
    QVERIFY(!station.findChild<QCheckBox*>("cbDetectFullCharge")->isChecked());
    QVERIFY(!station.findChild<QCheckBox*>("cbPromptToDischarge")->isChecked());
    QVERIFY(!station.findChild<QWidget*>("frDetails")->isHidden());
}

void PanelSetUpTest::save_is_enabled_on_every_new_panel()
{
    QVERIFY(StationBench().widget<QPushButton>("pbSaveProfile")->isEnabled());
    QVERIFY(PreviewBench().widget<QPushButton>("pbSaveProfile")->isEnabled());
}

void PanelSetUpTest::messages_that_show_at_first()
{
    const QStringList blank = {"laBlankSerialNumber", "laBlankName"};
    QCOMPARE(messages_shown(*StationBench().station), blank);
    QCOMPARE(messages_shown(*PreviewBench().station), blank);
}

void PanelSetUpTest::the_raw_status_shows_on_request_at_live_stations_only()
{
    StationBench bench;
    Settings::set_show_debug_info(true);
    Wire wire;
    TestStation live(nullptr, new Kestrometer(wire.port_name()));
    TestStation preview(nullptr, nullptr);
    QVERIFY(!live.findChild<QLabel*>("laKestrometerStatus")->isHidden());
    QCOMPARE(live.findChild<QLabel*>("laKestrometerStatus")->text(), QString("00s ago: "));
    QVERIFY(preview.findChild<QLabel*>("laKestrometerStatus")->isHidden());
}

void PanelSetUpTest::the_port_is_no_tooltip_once_there_is_help()
{
    StationBench bench;
    const QString help = "<qt>" + ToolTips::tooltips.value(28) + "</qt>";
    QCOMPARE(bench.widget<QLabel>("laStationID")->toolTip(), help);
    QCOMPARE(PreviewBench().widget<QLabel>("laStationID")->toolTip(), help);
}

void PanelSetUpTest::profiles_begin_with_the_placeholder()
{
    StationBench bench;
    const auto* profiles = bench.widget<QComboBox>("cbProfile");
    QCOMPARE(profiles->count(), 1);
    QCOMPARE(profiles->currentText(), QString("Select Profile..."));
}

void PanelSetUpTest::lines_reach_the_panel()
{
    StationBench bench;
    bench.receive("41.52", "0.0", "O");
    QCOMPARE(bench.text("laVoltage"), QString("41.5 V"));
}

void PanelSetUpTest::logs_go_to_the_directory_of_the_settings()
{
    StationBench bench;
    Settings::set_log_dir("/logs");
    TestStation preview(nullptr, nullptr);
    QCOMPARE(preview.log_dir, QString("/logs"));
    QCOMPARE(preview.findChild<QLabel*>("laDirectory")->text(), QString("/logs"));
    QCOMPARE(preview.findChild<QLabel*>("laDirectory")->toolTip(), QString());
    Settings::set_log_dir("");
    TestStation unset(nullptr, nullptr);
    QCOMPARE(unset.findChild<QLabel*>("laDirectory")->text(), QString());
}

void PanelSetUpTest::a_long_directory_is_elided()
{
    StationBench bench;
    const QString directory = "/a directory" + QString("/with many directories below").repeated(9);
    Settings::set_log_dir(directory);
    TestStation preview(nullptr, nullptr);
    const auto* label = preview.findChild<QLabel*>("laDirectory");
    QVERIFY(label->text().endsWith("..."));
    QVERIFY(directory.startsWith(label->text().chopped(3)));
    QVERIFY(label->minimumSizeHint().width() <= label->maximumWidth());
    QCOMPARE(label->toolTip(), directory);
}

void PanelSetUpTest::validators_have_their_ranges()
{
    struct Range
    {
        const char* edit;
        double most;
        int decimals;
    };
    const Range ranges[] = {{"leMaxChargeTime", 1000.0, 1},
                            {"leLowVoltageCutoff", 100.0, 3},
                            {"leInternalResistanceTestIntervalAh", 100.0, 1}};
    StationBench bench;
    for (const Range& range : ranges) {
        const auto* validator =
            qobject_cast<const QDoubleValidator*>(bench.widget<QLineEdit>(range.edit)->validator());
        QVERIFY2(validator != nullptr, range.edit);
        QCOMPARE(validator->bottom(), 0.0);
        QCOMPARE(validator->top(), range.most);
        QCOMPARE(validator->decimals(), range.decimals);
        QCOMPARE(validator->parent(), bench.station.get());
    }
    QVERIFY(bench.widget<QLineEdit>("leFinalCharge")->validator() == nullptr);
}

void PanelSetUpTest::what_can_be_typed_is_what_is_read_data()
{
    QTest::addColumn<QByteArray>("edit");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("text");
    add_row("a half", QByteArray("leLowVoltageCutoff"), "0.5", "0.5");
    add_row("comma", QByteArray("leLowVoltageCutoff"), "2,5", "25");
    add_row("thousands", QByteArray("leMaxChargeTime"), "1,0", "10");
    add_row("too fine a time", QByteArray("leMaxChargeTime"), "1.25", "1.2");
    add_row("too fine a voltage", QByteArray("leLowVoltageCutoff"), "1.2345", "1.234");
    add_row("too fine an interval", QByteArray("leInternalResistanceTestIntervalAh"), "0.55",
            "0.5");
    add_row("negative", QByteArray("leLowVoltageCutoff"), "-3", "3");
    add_row("letters", QByteArray("leMaxChargeTime"), "1h", "1");
    add_row("not a number", QByteArray("leMaxChargeTime"), "nan", "");
    add_row("anything goes", QByteArray("leFinalCharge"), "3,7V", "3,7V");
}

void PanelSetUpTest::what_can_be_typed_is_what_is_read()
{
    QFETCH(QByteArray, edit);
    QFETCH(QString, keys);
    QFETCH(QString, text);
    for (const QLocale::Language language : {QLocale::C, QLocale::German}) {
        QLocale::setDefault(QLocale(language));
        StationBench bench;
        bench.type(edit, keys);
        QCOMPARE(bench.widget<QLineEdit>(edit)->text(), text);
    }
}

void PanelSetUpTest::every_slot_finds_its_widget()
{
    StationBench bench;
    QCOMPARE(slots_without_widget(bench.station.get()).join(" "), QString());
}

KEST_TEST(PanelSetUpTest)
#include "tst_panel_set_up.moc"
