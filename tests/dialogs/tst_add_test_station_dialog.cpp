#include "dialogs/add_test_station_dialog.h"

#include "config/settings.h"
#include "device/kestrometer.h"
#include "device/serial_ports.h"
#include "station/test_station.h"
#include "support/form_slots.h"
#include "support/modal_answer.h"
#include "support/wire.h"

#include <QComboBox>
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
const QByteArray LINE_CHARGING = "x\t48.00\t2.0\tx\tx\tID=7\tC";
const QString NOT_YET_OFF =
    "The Kestrometer has not yet switched to the 'off' state; please wait and try again.";
const QString NOW_OFF = "The Kestrometer has switched to the 'off' state. You may now proceed.";
const QString ATTEMPTING = "Attempting to read Kestrometer ID...";

/** The dialog with its widgets at hand, over the ports that the test names. */
struct Bench
{
    explicit Bench(const QStringList& port_names)
    {
        offer(port_names);
        dialog = std::make_unique<AddTestStationDialog>(nullptr);
    }

    ~Bench()
    {
        dialog.reset();
        SerialPorts::set_source(nullptr);
    }

    static void offer(const QStringList& port_names)
    {
        SerialPorts::set_source([port_names] { return port_names; });
    }

    QComboBox* port_box() const
    {
        return dialog->findChild<QComboBox*>("cbPort");
    }

    QStringList offered() const
    {
        QStringList texts;
        for (int index = 0; index < port_box()->count(); ++index)
            texts.append(port_box()->itemText(index));
        return texts;
    }

    void choose(const QString& port_name) const
    {
        port_box()->setCurrentText(port_name);
    }

    QString label() const
    {
        return dialog->findChild<QLabel*>("laStationID")->text();
    }

    void press(const char* button) const
    {
        dialog->findChild<QPushButton*>(button)->click();
    }

    std::unique_ptr<AddTestStationDialog> dialog;
};

void compare_box(const SeenBox& box, const QString& caption, const QString& text,
                 QMessageBox::Icon icon)
{
    QCOMPARE(box.caption, caption);
    QCOMPARE(box.text, text);
    QCOMPARE(box.icon, icon);
    QVERIFY(!box.has_parent);
}

void compare_unverified_question(const SeenBox& box)
{
    compare_box(box, "Unverified Kestrometer Port",
                "Unable to verify that the selected port is connected to a Kestrometer.\n"
                "The Kestrometer may not be powered.\n"
                "Check the 12V barrel jack and the battery discharge leads.\n\n"
                "Use this port anyway?",
                QMessageBox::Question);
    QCOMPARE(box.buttons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(box.default_button, QMessageBox::No);
}
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
    void ok_accepts_a_preview();
    void ok_accepts_an_instrument_that_is_off();
    void ok_asks_about_a_silent_instrument_and_no_stays();
    void ok_asks_about_a_silent_instrument_and_yes_makes_a_live_station();
    void ok_twice_while_charging_warns_twice_and_tells_once();
    void choosing_a_port_forgets_the_wait_for_off();
    void cancel_closes_the_port_and_rejects();
    void cancel_under_the_notice_of_the_instrument_is_safe();
    void an_accepted_instrument_outlives_the_dialog();
    void a_station_may_die_before_the_dialog();
    void a_dialog_that_is_not_accepted_closes_its_port();
    void exec_gives_the_instrument_to_the_caller();
};

void AddTestStationDialogTest::initTestCase()
{
    // The C locale, which tests have otherwise, sorts without regard to numbers.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QVERIFY(Settings::load());
}

void AddTestStationDialogTest::the_form_has_the_widgets_in_their_places()
{
    const Bench bench({});
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
    const Bench bench({});
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
    const Bench bench({});
    QCOMPARE(slots_without_widget(bench.dialog.get()), QStringList());
}

void AddTestStationDialogTest::without_ports_only_a_preview_is_offered()
{
    const Bench bench({});
    QCOMPARE(bench.offered(), QStringList{"Preview Only"});
    QCOMPARE(bench.label(), QString("Preview Only (View Charts Only)"));
    QVERIFY(bench.dialog->kestrometer == nullptr);
}

void AddTestStationDialogTest::ports_are_sorted_by_their_numbers()
{
    const Bench bench({"COM10", "COM2", "COM1"});
    QCOMPARE(bench.offered(), (QStringList{"Preview Only", "COM1", "COM2", "COM10"}));
    QCOMPARE(bench.port_box()->currentText(), QString("Preview Only"));
}

void AddTestStationDialogTest::the_first_usbserial_port_is_preselected()
{
    const Bench bench({"tty.usbserial-B", "cu.modem", "tty.usbserial-A"});
    QCOMPARE(bench.port_box()->currentText(), QString("tty.usbserial-A"));
    QCOMPARE(bench.dialog->kestrometer->get_port_name(), QString("tty.usbserial-A"));
}

void AddTestStationDialogTest::usbserial_is_told_by_its_case()
{
    const Bench bench({"tty.USBserial-A"});
    QCOMPARE(bench.port_box()->currentText(), QString("Preview Only"));
}

void AddTestStationDialogTest::a_port_that_a_station_holds_is_not_offered()
{
    Wire held;
    Wire other;
    const TestStation station(nullptr, new Kestrometer(held.port_name()));
    const Bench bench({held.port_name(), other.port_name()});
    QCOMPARE(bench.offered(), (QStringList{"Preview Only", other.port_name()}));
    bench.press("pbRefreshPortList");
    QCOMPARE(bench.offered(), (QStringList{"Preview Only", other.port_name()}));
}

void AddTestStationDialogTest::choosing_a_port_switches_its_instrument_off()
{
    Wire wire;
    const Bench bench({wire.port_name()});
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
    const Bench bench({wire.port_name()});
    bench.choose(wire.port_name());
    QVERIFY(wire.send("not a line of telemetry", *bench.dialog->kestrometer));
    QCOMPARE(bench.label(), ATTEMPTING);
    QVERIFY(wire.send("x\t48.00\t0.0\tx\tx\tID=1234567\tO", *bench.dialog->kestrometer));
    QCOMPARE(bench.label(), QString("Test Station 1234567"));
}

void AddTestStationDialogTest::a_port_that_cannot_be_opened_looks_silent()
{
    ModalAnswer answers;
    const Bench bench({"no-such-port"});
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
    const Bench bench({first.port_name(), second.port_name()});
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
    const Bench bench({wire.port_name()});
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
    const Bench bench({wire.port_name()});
    bench.choose(wire.port_name());
    const QPointer<Kestrometer> instrument = bench.dialog->kestrometer;
    Bench::offer({wire.port_name(), "COM3"});
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
    const Bench bench({port_name});
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

void AddTestStationDialogTest::ok_accepts_a_preview()
{
    const Bench bench({});
    bench.press("pbOK");
    QCOMPARE(bench.dialog->result(), int(QDialog::Accepted));
    QVERIFY(bench.dialog->kestrometer == nullptr);
}

void AddTestStationDialogTest::ok_accepts_an_instrument_that_is_off()
{
    Wire wire;
    ModalAnswer answers;
    const Bench bench({wire.port_name()});
    bench.choose(wire.port_name());
    QVERIFY(wire.send(LINE_OFF, *bench.dialog->kestrometer));
    bench.press("pbOK");
    QCOMPARE(bench.dialog->result(), int(QDialog::Accepted));
    QCOMPARE(int(answers.seen.size()), 0);
    delete bench.dialog->kestrometer;
}

void AddTestStationDialogTest::ok_asks_about_a_silent_instrument_and_no_stays()
{
    Wire wire;
    ModalAnswer answers;
    const Bench bench({wire.port_name()});
    bench.dialog->show();
    bench.choose(wire.port_name());
    answers.click(QMessageBox::No);
    bench.press("pbOK");
    QCOMPARE(int(answers.seen.size()), 1);
    compare_unverified_question(answers.seen[0]);
    QVERIFY(bench.dialog->isVisible());
    QCOMPARE(bench.dialog->result(), int(QDialog::Rejected));
    QVERIFY(bench.dialog->kestrometer->port.isOpen());
}

void AddTestStationDialogTest::ok_asks_about_a_silent_instrument_and_yes_makes_a_live_station()
{
    Wire wire;
    ModalAnswer answers;
    Bench bench({wire.port_name()});
    bench.choose(wire.port_name());
    answers.click(QMessageBox::Yes);
    bench.press("pbOK");
    QCOMPARE(int(answers.seen.size()), 1);
    compare_unverified_question(answers.seen[0]);
    QCOMPARE(bench.dialog->result(), int(QDialog::Accepted));
    Kestrometer* instrument = bench.dialog->kestrometer;
    const TestStation station(nullptr, instrument);
    bench.dialog.reset();
    QCOMPARE(station.get_id(), QString("Station -1"));
    QVERIFY(wire.send(LINE_OFF, *instrument));
    QCOMPARE(station.get_id(), QString("Station 7"));
}

void AddTestStationDialogTest::ok_twice_while_charging_warns_twice_and_tells_once()
{
    Wire wire;
    ModalAnswer answers;
    const Bench bench({wire.port_name()});
    bench.choose(wire.port_name());
    Kestrometer& instrument = *bench.dialog->kestrometer;
    QVERIFY(wire.send(LINE_CHARGING, instrument));
    for (int press = 0; press < 2; ++press) {
        answers.click(QMessageBox::Ok);
        bench.press("pbOK");
        QVERIFY(wire.send(LINE_CHARGING, instrument));
    }
    answers.click(QMessageBox::Ok);
    QVERIFY(wire.send(LINE_OFF, instrument));
    QVERIFY(wire.send(LINE_OFF, instrument));
    QCOMPARE(int(answers.seen.size()), 3);
    compare_box(answers.seen[0], "Error", NOT_YET_OFF, QMessageBox::Warning);
    compare_box(answers.seen[1], "Error", NOT_YET_OFF, QMessageBox::Warning);
    compare_box(answers.seen[2], "Notice", NOW_OFF, QMessageBox::Information);
    for (const SeenBox& box : answers.seen)
        QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(bench.dialog->result(), int(QDialog::Rejected));
    bench.press("pbOK");
    QCOMPARE(bench.dialog->result(), int(QDialog::Accepted));
    delete bench.dialog->kestrometer;
}

void AddTestStationDialogTest::choosing_a_port_forgets_the_wait_for_off()
{
    Wire first;
    Wire second;
    ModalAnswer answers;
    const Bench bench({first.port_name(), second.port_name()});
    bench.choose(first.port_name());
    QVERIFY(first.send(LINE_CHARGING, *bench.dialog->kestrometer));
    answers.click(QMessageBox::Ok);
    bench.press("pbOK");
    bench.choose(second.port_name());
    QVERIFY(second.send(LINE_OFF, *bench.dialog->kestrometer));
    QCOMPARE(int(answers.seen.size()), 1);
}

void AddTestStationDialogTest::cancel_closes_the_port_and_rejects()
{
    Wire wire;
    const Bench bench({wire.port_name()});
    bench.dialog->show();
    bench.choose(wire.port_name());
    const QPointer<Kestrometer> instrument = bench.dialog->kestrometer;
    bench.press("pbCancel");
    QVERIFY(instrument.isNull());
    QVERIFY(bench.dialog->kestrometer == nullptr);
    QVERIFY(!bench.dialog->isVisible());
    QCOMPARE(bench.dialog->result(), int(QDialog::Rejected));
}

void AddTestStationDialogTest::cancel_under_the_notice_of_the_instrument_is_safe()
{
    Wire wire;
    ModalAnswer answers;
    const Bench bench({wire.port_name()});
    bench.choose(wire.port_name());
    const QPointer<Kestrometer> instrument = bench.dialog->kestrometer;
    QVERIFY(wire.send(LINE_CHARGING, *instrument));
    answers.click(QMessageBox::Ok);
    bench.press("pbOK");
    answers.handle([&](QWidget* box) {
        bench.press("pbCancel");
        static_cast<QDialog*>(box)->accept();
    });
    QVERIFY(wire.send(LINE_OFF + "\r\n" + LINE_OFF, *instrument));
    QCOMPARE(int(answers.seen.size()), 2);
    QCOMPARE(answers.seen[1].text, NOW_OFF);
    QVERIFY(instrument.isNull());
    QVERIFY(bench.dialog->kestrometer == nullptr);
}

void AddTestStationDialogTest::an_accepted_instrument_outlives_the_dialog()
{
    Wire wire;
    Bench bench({wire.port_name()});
    bench.choose(wire.port_name());
    QVERIFY(wire.send(LINE_OFF, *bench.dialog->kestrometer));
    bench.press("pbOK");
    const std::unique_ptr<Kestrometer> instrument(bench.dialog->kestrometer);
    bench.dialog.reset();
    QVERIFY(instrument->port.isOpen());
    QVERIFY(wire.send(LINE_CHARGING, *instrument));
    QCOMPARE(instrument->state, Charging);
}

void AddTestStationDialogTest::a_station_may_die_before_the_dialog()
{
    Wire wire;
    const Bench bench({wire.port_name()});
    bench.choose(wire.port_name());
    QVERIFY(wire.send(LINE_OFF, *bench.dialog->kestrometer));
    bench.press("pbOK");
    delete bench.dialog->kestrometer;
}

void AddTestStationDialogTest::a_dialog_that_is_not_accepted_closes_its_port()
{
    Wire wire;
    Bench bench({wire.port_name()});
    bench.dialog->show();
    bench.choose(wire.port_name());
    const QPointer<Kestrometer> instrument = bench.dialog->kestrometer;
    bench.dialog->close();
    QCOMPARE(bench.dialog->result(), int(QDialog::Rejected));
    bench.dialog.reset();
    QVERIFY(instrument.isNull());
}

void AddTestStationDialogTest::exec_gives_the_instrument_to_the_caller()
{
    Wire wire;
    ModalAnswer answers;
    const Bench bench({wire.port_name()});
    answers.handle([&](QWidget*) {
        bench.choose(wire.port_name());
        QVERIFY(wire.send(LINE_OFF, *bench.dialog->kestrometer));
        bench.press("pbOK");
    });
    QCOMPARE(bench.dialog->exec(), int(QDialog::Accepted));
    const std::unique_ptr<Kestrometer> instrument(bench.dialog->kestrometer);
    QCOMPARE(instrument->id, 7);
}

QTEST_MAIN(AddTestStationDialogTest)
#include "tst_add_test_station_dialog.moc"
