#include "dialogs/add_test_station_dialog.h"

#include "config/settings.h"
#include "device/kestrometer.h"
#include "station/test_station.h"
#include "support/help_document.h"
#include "support/modal_answer.h"
#include "support/port_dialog_bench.h"
#include "support/test_program.h"
#include "support/wire.h"

#include <QPointer>
#include <QtTest>

namespace
{
const QByteArray LINE_OFF = "x\t48.00\t0.0\tx\tx\tID=7\tO";
const QByteArray LINE_CHARGING = "x\t48.00\t2.0\tx\tx\tID=7\tC";
const QString NOT_YET_OFF =
    "The Kestrometer has not yet switched to the 'off' state; please wait and try again.";
const QString NOW_OFF = "The Kestrometer has switched to the 'off' state. You may now proceed.";

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
    QCOMPARE(int(box.buttons), int(QMessageBox::Yes | QMessageBox::No));
    QCOMPARE(box.default_button, QMessageBox::No);
}
}  // namespace

class AddTestStationAnswersTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
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

void AddTestStationAnswersTest::initTestCase()
{
    QVERIFY(Settings::load());
    load_help_document();
}

void AddTestStationAnswersTest::ok_accepts_a_preview()
{
    const PortDialogBench bench({});
    bench.press("pbOK");
    QCOMPARE(bench.dialog->result(), int(QDialog::Accepted));
    QVERIFY(bench.dialog->kestrometer == nullptr);
}

void AddTestStationAnswersTest::ok_accepts_an_instrument_that_is_off()
{
    Wire wire;
    ModalAnswer answers;
    const PortDialogBench bench({wire.port_name()});
    bench.choose(wire.port_name());
    QVERIFY(wire.send(LINE_OFF, *bench.dialog->kestrometer));
    bench.press("pbOK");
    QCOMPARE(bench.dialog->result(), int(QDialog::Accepted));
    QCOMPARE(int(answers.seen.size()), 0);
    delete bench.dialog->kestrometer;
}

void AddTestStationAnswersTest::ok_asks_about_a_silent_instrument_and_no_stays()
{
    Wire wire;
    ModalAnswer answers;
    const PortDialogBench bench({wire.port_name()});
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

void AddTestStationAnswersTest::ok_asks_about_a_silent_instrument_and_yes_makes_a_live_station()
{
    Wire wire;
    ModalAnswer answers;
    PortDialogBench bench({wire.port_name()});
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

void AddTestStationAnswersTest::ok_twice_while_charging_warns_twice_and_tells_once()
{
    Wire wire;
    ModalAnswer answers;
    const PortDialogBench bench({wire.port_name()});
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
        QCOMPARE(int(box.buttons), int(QMessageBox::Ok));
    QCOMPARE(bench.dialog->result(), int(QDialog::Rejected));
    bench.press("pbOK");
    QCOMPARE(bench.dialog->result(), int(QDialog::Accepted));
    delete bench.dialog->kestrometer;
}

void AddTestStationAnswersTest::choosing_a_port_forgets_the_wait_for_off()
{
    Wire first;
    Wire second;
    ModalAnswer answers;
    const PortDialogBench bench({first.port_name(), second.port_name()});
    bench.choose(first.port_name());
    QVERIFY(first.send(LINE_CHARGING, *bench.dialog->kestrometer));
    answers.click(QMessageBox::Ok);
    bench.press("pbOK");
    bench.choose(second.port_name());
    QVERIFY(second.send(LINE_OFF, *bench.dialog->kestrometer));
    QCOMPARE(int(answers.seen.size()), 1);
}

void AddTestStationAnswersTest::cancel_closes_the_port_and_rejects()
{
    Wire wire;
    const PortDialogBench bench({wire.port_name()});
    bench.dialog->show();
    bench.choose(wire.port_name());
    const QPointer<Kestrometer> instrument = bench.dialog->kestrometer;
    bench.press("pbCancel");
    QVERIFY(instrument.isNull());
    QVERIFY(bench.dialog->kestrometer == nullptr);
    QVERIFY(!bench.dialog->isVisible());
    QCOMPARE(bench.dialog->result(), int(QDialog::Rejected));
}

void AddTestStationAnswersTest::cancel_under_the_notice_of_the_instrument_is_safe()
{
    Wire wire;
    ModalAnswer answers;
    const PortDialogBench bench({wire.port_name()});
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

void AddTestStationAnswersTest::an_accepted_instrument_outlives_the_dialog()
{
    Wire wire;
    PortDialogBench bench({wire.port_name()});
    bench.choose(wire.port_name());
    QVERIFY(wire.send(LINE_OFF, *bench.dialog->kestrometer));
    bench.press("pbOK");
    const std::unique_ptr<Kestrometer> instrument(bench.dialog->kestrometer);
    bench.dialog.reset();
    QVERIFY(instrument->port.isOpen());
    QVERIFY(wire.send(LINE_CHARGING, *instrument));
    QCOMPARE(instrument->state, Charging);
}

void AddTestStationAnswersTest::a_station_may_die_before_the_dialog()
{
    Wire wire;
    const PortDialogBench bench({wire.port_name()});
    bench.choose(wire.port_name());
    QVERIFY(wire.send(LINE_OFF, *bench.dialog->kestrometer));
    bench.press("pbOK");
    delete bench.dialog->kestrometer;
}

void AddTestStationAnswersTest::a_dialog_that_is_not_accepted_closes_its_port()
{
    Wire wire;
    PortDialogBench bench({wire.port_name()});
    bench.dialog->show();
    bench.choose(wire.port_name());
    const QPointer<Kestrometer> instrument = bench.dialog->kestrometer;
    bench.dialog->close();
    QCOMPARE(bench.dialog->result(), int(QDialog::Rejected));
    bench.dialog.reset();
    QVERIFY(instrument.isNull());
}

void AddTestStationAnswersTest::exec_gives_the_instrument_to_the_caller()
{
    Wire wire;
    ModalAnswer answers;
    const PortDialogBench bench({wire.port_name()});
    answers.handle([&](QWidget*) {
        bench.choose(wire.port_name());
        QVERIFY(wire.send(LINE_OFF, *bench.dialog->kestrometer));
        bench.press("pbOK");
    });
    QCOMPARE(bench.dialog->exec(), int(QDialog::Accepted));
    const std::unique_ptr<Kestrometer> instrument(bench.dialog->kestrometer);
    QCOMPARE(instrument->id, 7);
}

KEST_TEST(AddTestStationAnswersTest)
#include "tst_add_test_station_answers.moc"
