#include "dialogs/add_test_station_dialog.h"

#include "config/settings.h"
#include "device/kestrometer.h"
#include "station/test_station.h"
#include "support/form_slots.h"
#include "support/help_document.h"
#include "support/modal_answer.h"
#include "support/port_dialog_bench.h"
#include "support/test_program.h"
#include "support/wire.h"

#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
const QByteArray LINE_OFF = "x\t48.00\t0.0\tx\tx\tID=7\tO";
const QString ATTEMPTING = "Attempting to read Kestrometer ID...";
}  // namespace

class AddTestStationDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void the_form_has_the_widgets_in_their_places();
    void the_tooltips_explain_port_and_refresh();
    void every_slot_finds_its_widget();
    void without_ports_only_a_preview_is_offered();
    void ports_are_sorted_by_their_numbers_data();
    void ports_are_sorted_by_their_numbers();
    void the_first_usbserial_port_is_preselected();
    void usbserial_is_told_by_its_case();
    void a_port_that_a_station_holds_is_not_offered();
    void choosing_a_port_switches_its_instrument_off();
    void the_number_of_the_instrument_is_shown();
    void a_port_that_cannot_be_opened_looks_silent();
    void choosing_another_port_closes_the_first();
    void choosing_preview_closes_the_port();
    void refresh_selects_preview_and_closes_the_port();
    void refresh_opens_the_usbserial_port_anew();
};

void AddTestStationDialogTest::initTestCase()
{
    QVERIFY(Settings::load());
    load_help_document();
}

void AddTestStationDialogTest::the_form_has_the_widgets_in_their_places()
{
    const PortDialogBench bench({});
    QCOMPARE(bench.dialog->windowTitle(), QString("New Test Station"));
    const auto* grid = bench.dialog->findChild<QGridLayout*>("gridLayout");
    QVERIFY(grid != nullptr);
    QCOMPARE(grid, bench.dialog->layout());
    struct Place
    {
        const char* name;
        int row, column, column_span;
    };
    for (const Place& place :
         {Place{"label_2", 0, 0, 1}, Place{"cbPort", 0, 1, 1}, Place{"pbRefreshPortList", 0, 2, 1},
          Place{"laStationID", 1, 0, 3}, Place{"frame", 2, 0, 3}}) {
        auto* widget = bench.dialog->findChild<QWidget*>(place.name);
        QVERIFY2(widget != nullptr, place.name);
        int row = -1, column = -1, row_span = -1, column_span = -1;
        grid->getItemPosition(grid->indexOf(widget), &row, &column, &row_span, &column_span);
        QCOMPARE(row, place.row);
        QCOMPARE(column, place.column);
        QCOMPARE(row_span, 1);
        QCOMPARE(column_span, place.column_span);
    }
    auto* frame = bench.dialog->findChild<QFrame*>("frame");
    auto* row = frame->findChild<QHBoxLayout*>("horizontalLayout");
    QVERIFY(row != nullptr && row->count() == 2);
    QCOMPARE(row->itemAt(0)->widget()->objectName(), QString("pbOK"));
    QCOMPARE(row->itemAt(1)->widget()->objectName(), QString("pbCancel"));
    QCOMPARE(bench.dialog->findChild<QLabel*>("label_2")->text(), QString("Kestrometer Port"));
    QCOMPARE(bench.dialog->findChild<QPushButton*>("pbRefreshPortList")->text(),
             QString("Refresh Port List"));
    QCOMPARE(bench.dialog->findChild<QPushButton*>("pbOK")->text(), QString("OK"));
    QCOMPARE(bench.dialog->findChild<QPushButton*>("pbCancel")->text(), QString("Cancel"));
}

void AddTestStationDialogTest::the_tooltips_explain_port_and_refresh()
{
    const PortDialogBench bench({});
    QCOMPARE(bench.port_box()->toolTip(),
             QString("Determines which USB port will be used for reading data from the "
                     "Kestrometer. Once a port is chosen, the software will attempt to read from "
                     "that port, and if a Kestrometer is found, its ID will appear. This process "
                     "normally only takes a couple seconds; if the ID is not forthcoming, you may "
                     "have selected a port that does not have a Kestrometer attached, or the "
                     "Kestrometer may not be powered up (either by a battery or the 12V DC power "
                     "jack on the right-hand side). Once communication is established, the "
                     "software will send the \"off\" command to the Kestrometer, to ensure it is "
                     "not in the charging or discharging state prior to a test being performed. "
                     "If \"Preview Only\" is chosen instead of a port, a \"dummy\" test station "
                     "will be created that will allow you to review data from a prior log file, "
                     "but you will not be able to conduct a new discharge test."));
    QCOMPARE(bench.dialog->findChild<QPushButton*>("pbRefreshPortList")->toolTip(),
             QString("Polls all serial ports and repopulates the combobox to the left. If the "
                     "dialog was open before you connected a Kestrometer to the PC, you may "
                     "probably have to click this button."));
    QCOMPARE(bench.dialog->findChild<QPushButton*>("pbOK")->toolTip(), QString());
}

void AddTestStationDialogTest::every_slot_finds_its_widget()
{
    const PortDialogBench bench({});
    QCOMPARE(slots_without_widget(bench.dialog.get()), QStringList());
}

void AddTestStationDialogTest::without_ports_only_a_preview_is_offered()
{
    const PortDialogBench bench({});
    QCOMPARE(bench.offered(), QStringList{"Preview Only"});
    QCOMPARE(bench.label(), QString("Preview Only (View Charts Only)"));
    QVERIFY(bench.dialog->kestrometer == nullptr);
}

void AddTestStationDialogTest::ports_are_sorted_by_their_numbers_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::newRow("a language") << QLocale(QLocale::German, QLocale::Germany);
    QTest::newRow("the C locale") << QLocale::c();
}

void AddTestStationDialogTest::ports_are_sorted_by_their_numbers()
{
    QFETCH(QLocale, locale);
    const QLocale before;
    const auto restore = qScopeGuard([&before] { QLocale::setDefault(before); });
    QLocale::setDefault(locale);
    const PortDialogBench bench({"COM10", "COM2", "COM1"});
    QCOMPARE(bench.offered(), (QStringList{"Preview Only", "COM1", "COM2", "COM10"}));
    QCOMPARE(bench.port_box()->currentText(), QString("Preview Only"));
}

void AddTestStationDialogTest::the_first_usbserial_port_is_preselected()
{
    const PortDialogBench bench({"tty.usbserial-B", "cu.modem", "tty.usbserial-A"});
    QCOMPARE(bench.port_box()->currentText(), QString("tty.usbserial-A"));
    QCOMPARE(bench.dialog->kestrometer->get_port_name(), QString("tty.usbserial-A"));
}

void AddTestStationDialogTest::usbserial_is_told_by_its_case()
{
    const PortDialogBench bench({"tty.USBserial-A"});
    QCOMPARE(bench.port_box()->currentText(), QString("Preview Only"));
}

void AddTestStationDialogTest::a_port_that_a_station_holds_is_not_offered()
{
    Wire held;
    Wire other;
    const TestStation station(nullptr, new Kestrometer(held.port_name()));
    const PortDialogBench bench({held.port_name(), other.port_name()});
    QCOMPARE(bench.offered(), (QStringList{"Preview Only", other.port_name()}));
    bench.press("pbRefreshPortList");
    QCOMPARE(bench.offered(), (QStringList{"Preview Only", other.port_name()}));
}

void AddTestStationDialogTest::choosing_a_port_switches_its_instrument_off()
{
    Wire wire;
    const PortDialogBench bench({wire.port_name()});
    QVERIFY(bench.dialog->kestrometer == nullptr);
    QCOMPARE(wire.commands(), QByteArray());
    bench.choose(wire.port_name());
    QCOMPARE(bench.label(), ATTEMPTING);
    QCOMPARE(bench.dialog->kestrometer->get_port_name(), wire.port_name());
    QCOMPARE(wire.commands(), QByteArray("O"));
}

void AddTestStationDialogTest::the_number_of_the_instrument_is_shown()
{
    Wire wire;
    const PortDialogBench bench({wire.port_name()});
    bench.choose(wire.port_name());
    QVERIFY(wire.send("not a line of telemetry", *bench.dialog->kestrometer));
    QCOMPARE(bench.label(), ATTEMPTING);
    QVERIFY(wire.send("x\t48.00\t0.0\tx\tx\tID=1234567\tO", *bench.dialog->kestrometer));
    QCOMPARE(bench.label(), QString("Test Station 1234567"));
}

void AddTestStationDialogTest::a_port_that_cannot_be_opened_looks_silent()
{
    ModalAnswer answers;
    const PortDialogBench bench({"no-such-port"});
    bench.choose("no-such-port");
    QCoreApplication::processEvents();
    QCOMPARE(bench.label(), ATTEMPTING);
    QVERIFY(!bench.dialog->kestrometer->port.isOpen());
    QCOMPARE(int(answers.seen.size()), 0);
}

void AddTestStationDialogTest::choosing_another_port_closes_the_first()
{
    Wire first;
    Wire second;
    const PortDialogBench bench({first.port_name(), second.port_name()});
    bench.choose(first.port_name());
    const QPointer<Kestrometer> first_instrument = bench.dialog->kestrometer;
    bench.choose(second.port_name());
    QVERIFY(first_instrument.isNull());
    QVERIFY(Kestrometer(first.port_name()).port.isOpen());
    QCOMPARE(first.commands(), QByteArray("O"));
    QCOMPARE(second.commands(), QByteArray("O"));
}

void AddTestStationDialogTest::choosing_preview_closes_the_port()
{
    Wire wire;
    const PortDialogBench bench({wire.port_name()});
    bench.choose(wire.port_name());
    QVERIFY(!Kestrometer(wire.port_name()).port.isOpen());
    bench.choose("Preview Only");
    QVERIFY(bench.dialog->kestrometer == nullptr);
    QCOMPARE(bench.label(), QString("Preview Only (View Charts Only)"));
    QVERIFY(Kestrometer(wire.port_name()).port.isOpen());
}

void AddTestStationDialogTest::refresh_selects_preview_and_closes_the_port()
{
    Wire wire;
    const PortDialogBench bench({wire.port_name()});
    bench.choose(wire.port_name());
    const QPointer<Kestrometer> instrument = bench.dialog->kestrometer;
    PortDialogBench::offer({wire.port_name(), "COM3"});
    bench.press("pbRefreshPortList");
    QVERIFY(instrument.isNull());
    QVERIFY(bench.dialog->kestrometer == nullptr);
    QCOMPARE(bench.port_box()->currentText(), QString("Preview Only"));
    QCOMPARE(bench.label(), QString("Preview Only (View Charts Only)"));
    QCOMPARE(bench.port_box()->count(), 3);
}

void AddTestStationDialogTest::refresh_opens_the_usbserial_port_anew()
{
    Wire wire;
    const QTemporaryDir folder;
    const QString port_name = folder.filePath("usbserial-A");
    QVERIFY(QFile::link("/dev/" + wire.port_name(), port_name));
    const PortDialogBench bench({port_name});
    QCOMPARE(bench.port_box()->currentText(), port_name);
    QVERIFY(wire.send(LINE_OFF, *bench.dialog->kestrometer));
    QCOMPARE(bench.label(), QString("Test Station 7"));
    const QPointer<Kestrometer> before = bench.dialog->kestrometer;
    bench.press("pbRefreshPortList");
    QVERIFY(before.isNull());
    QVERIFY(bench.dialog->kestrometer->port.isOpen());
    QCOMPARE(bench.label(), ATTEMPTING);
    QCOMPARE(wire.commands(), QByteArray("OO"));
}

KEST_TEST(AddTestStationDialogTest)
#include "tst_add_test_station_dialog.moc"
