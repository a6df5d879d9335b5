#include "dialogs/about.h"
#include "dialogs/add_test_station_dialog.h"
#include "dialogs/edit_settings_dialog.h"
#include "dialogs/preexisting_log_file_dialog.h"
#include "dialogs/widget_font_debug_dialog.h"

#include "config/settings.h"
#include "device/serial_ports.h"
#include "support/station_bench.h"
#include "support/test_program.h"

#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QSignalSpy>
#include <QtTest>

namespace
{
struct DialogCase
{
    const char* name;
    std::function<std::unique_ptr<QDialog>()> make;
    QStringList tab_order;  ///< from the focus at the start; of radio buttons the first
};

template <typename Dialog> std::unique_ptr<QDialog> make()
{
    return std::make_unique<Dialog>(nullptr);
}

const QList<DialogCase>& cases()
{
    static const QList<DialogCase> all = {
        {"about",
         make<About>,
         {"pbOK", "pbCopySettingsDir", "pbOpenSettingsDir", "pbCopyLogDir", "pbOpenLogDir",
          "pbWebpage"}},
        {"fonts",
         make<WidgetFontDebugDialog>,
         {"pbOK", "pbExample", "cbExample", "pbNarrower", "pbWider", "pbShorter", "pbTaller",
          "pbResizeText", "leText", "cbFontSize", "cbFontFamily"}},
        {"settings",
         make<EditSettingsDialog>,
         {"pbOK", "pbCancel", "pbChangeLogDirectory", "pbChangePDFDirectory", "cbCopyLogs",
          "pbChangeHeaderImageFile", "sbChartRefreshRate", "cbShowDebugInformation",
          "cbLogAllTelemetry"}},
        {"port", make<AddTestStationDialog>, {"cbPort", "pbRefreshPortList", "pbOK", "pbCancel"}},
        {"earlier log", make<PreexistingLogFileDialog>, {"rbAppend", "pbCancel"}},
    };
    return all;
}

void press(QDialog& dialog, Qt::Key key)
{
    QWidget* focus = dialog.focusWidget();
    QTest::keyClick(focus != nullptr ? focus : &dialog, key);
}

/** Tabs until the focus has come to the control of this name. */
bool tab_to(QDialog& dialog, const char* name)
{
    for (int i = 0; i < 20; ++i) {
        if (dialog.focusWidget()->objectName() == name)
            return true;
        press(dialog, Qt::Key_Tab);
    }
    return false;
}
}  // namespace

/** Every dialog without a mouse. */
class DialogsByKeyboardTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void tab_reaches_every_control_data();
    void tab_reaches_every_control();
    void backtab_goes_back_the_same_way_data();
    void backtab_goes_back_the_same_way();
    void escape_rejects_from_every_control_data();
    void escape_rejects_from_every_control();
    void enter_is_ok_data();
    void enter_is_ok();
    void enter_confirms_the_choice_about_an_earlier_log();
    void arrows_choose_among_the_radio_buttons();
    void a_button_of_the_about_box_is_pressed_by_space();
    void settings_are_changed_and_stored();
    void fonts_are_tried_out();

private:
    QTemporaryDir folder;
    std::unique_ptr<QDialog> dialog;
};

namespace
{
void add_case_rows()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < cases().size(); ++i)
        QTest::newRow(cases().at(i).name) << i;
}

std::unique_ptr<QDialog> shown(const DialogCase& one)
{
    std::unique_ptr<QDialog> dialog = one.make();
    dialog->show();
    dialog->activateWindow();
    if (!QTest::qWaitForWindowActive(dialog.get()))
        qFatal("The dialog does not become active.");
    return dialog;
}
}  // namespace

void DialogsByKeyboardTest::init()
{
    load_test_settings(folder.path());
    SerialPorts::set_source([] { return QStringList(); });
}

void DialogsByKeyboardTest::cleanup()
{
    dialog.reset();
    SerialPorts::set_source(nullptr);
}

void DialogsByKeyboardTest::tab_reaches_every_control_data()
{
    add_case_rows();
}

void DialogsByKeyboardTest::tab_reaches_every_control()
{
    QFETCH(int, index);
    const DialogCase& one = cases().at(index);
    dialog = shown(one);
    QStringList names;
    for (int i = 0; i < one.tab_order.size(); ++i) {
        names.append(dialog->focusWidget()->objectName());
        press(*dialog, Qt::Key_Tab);
    }
    QCOMPARE(names, one.tab_order);
    QCOMPARE(dialog->focusWidget()->objectName(), one.tab_order.first());
}

void DialogsByKeyboardTest::backtab_goes_back_the_same_way_data()
{
    add_case_rows();
}

void DialogsByKeyboardTest::backtab_goes_back_the_same_way()
{
    QFETCH(int, index);
    const DialogCase& one = cases().at(index);
    dialog = shown(one);
    press(*dialog, Qt::Key_Backtab);
    QCOMPARE(dialog->focusWidget()->objectName(), one.tab_order.last());
}

void DialogsByKeyboardTest::escape_rejects_from_every_control_data()
{
    add_case_rows();
}

void DialogsByKeyboardTest::escape_rejects_from_every_control()
{
    QFETCH(int, index);
    const DialogCase& one = cases().at(index);
    for (const QString& name : one.tab_order) {
        dialog = shown(one);
        QVERIFY(tab_to(*dialog, name.toLatin1()));
        const QSignalSpy rejected(dialog.get(), &QDialog::rejected);
        press(*dialog, Qt::Key_Escape);
        QCOMPARE(rejected.size(), 1);
        QVERIFY(!dialog->isVisible());
    }
}

void DialogsByKeyboardTest::enter_is_ok_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("key");

    // The question about an earlier log has no answer that goes without saying.
    for (int i = 0; i < cases().size() - 1; ++i)
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter})
            QTest::addRow("%s, %d", cases().at(i).name, int(key)) << i << int(key);
}

void DialogsByKeyboardTest::enter_is_ok()
{
    QFETCH(int, index);
    QFETCH(int, key);
    dialog = shown(cases().at(index));
    const QSignalSpy accepted(dialog.get(), &QDialog::accepted);
    press(*dialog, Qt::Key(key));
    QCOMPARE(accepted.size(), 1);
    QVERIFY(!dialog->isVisible());
}

void DialogsByKeyboardTest::enter_confirms_the_choice_about_an_earlier_log()
{
    dialog = shown(cases().last());
    press(*dialog, Qt::Key_Return);
    QVERIFY(dialog->isVisible());
    press(*dialog, Qt::Key_Space);
    press(*dialog, Qt::Key_Return);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(dialog->result(), int(QDialog::Accepted));
}

void DialogsByKeyboardTest::arrows_choose_among_the_radio_buttons()
{
    PreexistingLogFileDialog question(nullptr);
    ModalAnswer answer;
    answer.handle([&question](QWidget*) {
        question.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&question));
        press(question, Qt::Key_Space);
        press(question, Qt::Key_Down);
        QCOMPARE(question.focusWidget()->objectName(), QString("rbOverwrite"));
        press(question, Qt::Key_Down);
        QVERIFY(tab_to(question, "pbConfirm"));
        press(question, Qt::Key_Space);
    });
    QCOMPARE(question.get_choice(), int('S'));
}

void DialogsByKeyboardTest::a_button_of_the_about_box_is_pressed_by_space()
{
    dialog = shown(cases().first());
    QVERIFY(tab_to(*dialog, "pbCopyLogDir"));
    press(*dialog, Qt::Key_Space);
    QCOMPARE(QGuiApplication::clipboard()->text(), folder.path());
    QVERIFY(dialog->isVisible());
}

void DialogsByKeyboardTest::settings_are_changed_and_stored()
{
    dialog = shown(cases().at(2));
    QVERIFY(tab_to(*dialog, "cbCopyLogs"));
    press(*dialog, Qt::Key_Space);
    QVERIFY(tab_to(*dialog, "sbChartRefreshRate"));
    press(*dialog, Qt::Key_Up);
    press(*dialog, Qt::Key_Return);
    QVERIFY(!dialog->isVisible());
    QVERIFY(Settings::get_copy_logs());
    QCOMPARE(Settings::get_chart_refresh_rate(), 4);
}

void DialogsByKeyboardTest::fonts_are_tried_out()
{
    dialog = shown(cases().at(1));
    QVERIFY(tab_to(*dialog, "leText"));
    QTest::keyClicks(dialog->focusWidget(), "12.5 V");
    QVERIFY(tab_to(*dialog, "cbFontSize"));
    press(*dialog, Qt::Key_Home);
    const auto* example = dialog->findChild<QWidget*>("pbExample");
    QCOMPARE(example->property("text").toString(), QString("12.5 V"));
    QCOMPARE(example->font().pointSize(), 1);
}

KEST_TEST(DialogsByKeyboardTest)
#include "tst_dialogs_by_keyboard.moc"
