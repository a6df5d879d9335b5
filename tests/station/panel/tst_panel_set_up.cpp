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
    void a_live_panel_ends_like_this_data();
    void a_live_panel_ends_like_this();
    void a_preview_panel_ends_like_this_data();
    void a_preview_panel_ends_like_this();
    void save_is_enabled_on_every_new_panel();
    void messages_that_show_at_first();
    void the_raw_status_shows_on_request_at_live_stations_only();
    void the_port_is_no_tooltip_once_there_is_help();
    void profiles_begin_with_the_placeholder();
    void previews_are_numbered_and_numbers_not_reused();
    void stations_are_listed_while_they_live();
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

void add_states(bool live)
{
    QTest::addColumn<bool>("enabled");
    QTest::newRow("pbStartSkip") << false;
    QTest::newRow("pbNewTest") << live;
    QTest::newRow("pbLoadLog") << true;
    QTest::newRow("pbGeneratePDF") << true;
    QTest::newRow("pbExpandCollapse") << true;
    QTest::newRow("pbClose") << true;
    QTest::newRow("leSerialNumber") << live;
    QTest::newRow("cbProfile") << true;
    QTest::newRow("pbSaveProfile") << true;
    QTest::newRow("pbDeleteProfile") << false;
    QTest::newRow("leProfileName") << true;
    QTest::newRow("pbDirectory") << true;
    QTest::newRow("sbNumberOfCycles") << true;
    QTest::newRow("leMaxChargeTime") << true;
    QTest::newRow("leLowVoltageCutoff") << true;
    QTest::newRow("leFinalCharge") << true;
    QTest::newRow("cbPromptToDischarge") << true;
    QTest::newRow("cbDetectFullCharge") << false;
    QTest::newRow("cbMeasureInternalResistance") << true;
    QTest::newRow("laInternalResistanceInterval") << true;
    QTest::newRow("leInternalResistanceTestIntervalAh") << true;
}

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

void PanelSetUpTest::a_live_panel_ends_like_this_data()
{
    add_states(true);
}

void PanelSetUpTest::a_live_panel_ends_like_this()
{
    QFETCH(bool, enabled);
    StationBench bench;
    QCOMPARE(bench.widget<QWidget>(QTest::currentDataTag())->isEnabled(), enabled);
    QVERIFY(bench.widget<QCheckBox>("cbMeasureInternalResistance")->isChecked());
    QVERIFY(!bench.widget<QCheckBox>("cbDetectFullCharge")->isChecked());
    QVERIFY(!bench.widget<QCheckBox>("cbPromptToDischarge")->isChecked());
    QVERIFY(!bench.widget<QWidget>("frDetails")->isHidden());
}

void PanelSetUpTest::a_preview_panel_ends_like_this_data()
{
    add_states(false);
}

void PanelSetUpTest::a_preview_panel_ends_like_this()
{
    QFETCH(bool, enabled);
    PreviewBench bench;
    QCOMPARE(bench.widget<QWidget>(QTest::currentDataTag())->isEnabled(), enabled);
    QVERIFY(bench.widget<QCheckBox>("cbMeasureInternalResistance")->isChecked());
    QVERIFY(bench.station->measure_internal_resistance);
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

void PanelSetUpTest::previews_are_numbered_and_numbers_not_reused()
{
    TestStation::num_previews = 0;
    PreviewBench first;
    auto second = std::make_unique<PreviewBench>();
    QCOMPARE(first.widget<QLabel>("laStationID")->text(), QChar(0x2009) + QString("Preview 1"));
    QCOMPARE(second->widget<QLabel>("laStationID")->text(), QChar(0x2009) + QString("Preview 2"));
    second.reset();
    StationBench live;
    QCOMPARE(live.station->preview_number, 0);
    PreviewBench third;
    QCOMPARE(third.widget<QLabel>("laStationID")->text(), QChar(0x2009) + QString("Preview 3"));
    QCOMPARE(third.station->preview_number, 3);
}

void PanelSetUpTest::stations_are_listed_while_they_live()
{
    QVERIFY(TestStation::all_instances.isEmpty());
    {
        StationBench live;
        PreviewBench preview;
        const QList<TestStation*> both = {live.station.get(), preview.station.get()};
        QCOMPARE(TestStation::all_instances, both);
    }
    QVERIFY(TestStation::all_instances.isEmpty());
}

void PanelSetUpTest::lines_reach_the_panel()
{
    StationBench bench;
    bench.receive("41.52", "0.0", "O");
    QCOMPARE(bench.widget<QLabel>("laVoltage")->text(), QString("41.5 V"));
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
    QTest::newRow("a half") << QByteArray("leLowVoltageCutoff") << "0.5"
                            << "0.5";
    QTest::newRow("comma") << QByteArray("leLowVoltageCutoff") << "2,5"
                           << "25";
    QTest::newRow("thousands") << QByteArray("leMaxChargeTime") << "1,0"
                               << "10";
    QTest::newRow("too fine a time") << QByteArray("leMaxChargeTime") << "1.25"
                                     << "1.2";
    QTest::newRow("too fine a voltage") << QByteArray("leLowVoltageCutoff") << "1.2345"
                                        << "1.234";
    QTest::newRow("too fine an interval")
        << QByteArray("leInternalResistanceTestIntervalAh") << "0.55"
        << "0.5";
    QTest::newRow("negative") << QByteArray("leLowVoltageCutoff") << "-3"
                              << "3";
    QTest::newRow("letters") << QByteArray("leMaxChargeTime") << "1h"
                             << "1";
    QTest::newRow("not a number") << QByteArray("leMaxChargeTime") << "nan"
                                  << "";
    QTest::newRow("anything goes") << QByteArray("leFinalCharge") << "3,7V"
                                   << "3,7V";
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
