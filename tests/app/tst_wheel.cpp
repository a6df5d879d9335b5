#include "dialogs/edit_settings_dialog.h"
#include "dialogs/widget_font_debug_dialog.h"
#include "support/test_program.h"
#include "window_bench.h"

#include <QAbstractSpinBox>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>

/** The wheel over spin and combo boxes: theirs with the focus, the list's without it. */
class WheelTest : public QObject
{
    Q_OBJECT

private slots:
    void without_the_focus_a_box_leaves_the_wheel_to_the_list_data();
    void without_the_focus_a_box_leaves_the_wheel_to_the_list();
    void with_the_focus_a_box_takes_the_wheel_data();
    void with_the_focus_a_box_takes_the_wheel();
    void a_notch_in_the_final_charge_begins_no_cycle();
    void boxes_of_a_dialog_take_the_wheel_with_the_focus_only_data();
    void boxes_of_a_dialog_take_the_wheel_with_the_focus_only();
    void tab_and_mouse_give_each_box_the_focus();
};

namespace
{
/** One notch towards the operator, by way of the window that lies below the pointer. */
void turn_wheel_over(QWidget* widget)
{
    QWidget* window = widget->window();
    const QPoint at = widget->mapTo(window, widget->rect().center());
    QWheelEvent notch(at, window->mapToGlobal(at), QPoint(), QPoint(0, -120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    // As if it came from the system: such a wheel can also give the focus.
    QSpontaneKeyEvent::setSpontaneous(&notch);
    qApp->notify(window->windowHandle(), &notch);
}

QString value_of(const QWidget* box)
{
    if (const auto* combo = qobject_cast<const QComboBox*>(box))
        return combo->currentText() + QString::number(combo->currentIndex());
    return qobject_cast<const QAbstractSpinBox*>(box)->text();
}

/** A wheel that turns towards the operator makes a number less, and a choice the next one. */
void set_to_start(QWidget* box)
{
    if (auto* number = qobject_cast<QSpinBox*>(box))
        number->setValue(5);
    if (auto* combo = qobject_cast<QComboBox*>(box))
        combo->setCurrentIndex(0);
}

/** A window that is too low for its stations, and with something to choose in each box. */
struct CrowdedWindow : WindowBench
{
    CrowdedWindow()
    {
        for (int i = 0; i < 8; ++i)
            add_preview();
        for (const TestStation* station : qAsConst(TestStation::all_instances))
            station->findChild<QComboBox*>("cbProfile")->addItem("Pack A");
        window->showNormal();
        window->resize(1600, 500);
        QApplication::setActiveWindow(window.get());
        if (!QTest::qWaitForWindowActive(window.get()))
            qFatal("The window does not become active.");
        window->setFocus();
        QTRY_VERIFY(list()->maximum() > 100);
    }

    QScrollBar* list() const
    {
        return window->findChild<QScrollArea*>("scrollArea")->verticalScrollBar();
    }

    /** Of the panel at the top, or of the window. */
    QWidget* box(const QString& name) const
    {
        TestStation* first = TestStation::all_instances.first();
        if (name == "color")
            return &first->color_combobox;
        auto* box = first->findChild<QWidget*>(name);
        return box != nullptr ? box : window->findChild<QWidget*>(name);
    }
};

void add_boxes()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("in_list");
    QTest::newRow("cycles") << "sbNumberOfCycles" << true;
    QTest::newRow("profile") << "cbProfile" << true;
    QTest::newRow("color") << "color" << false;
    QTest::newRow("chart") << "cbBottomChart" << false;
}

QList<QWidget*> boxes_in(const QWidget& form)
{
    QList<QWidget*> boxes;
    for (QAbstractSpinBox* box : form.findChildren<QAbstractSpinBox*>())
        boxes << box;
    for (QComboBox* box : form.findChildren<QComboBox*>())
        boxes << box;
    return boxes;
}
}  // namespace

void WheelTest::without_the_focus_a_box_leaves_the_wheel_to_the_list_data()
{
    add_boxes();
}

void WheelTest::without_the_focus_a_box_leaves_the_wheel_to_the_list()
{
    QFETCH(QString, name);
    QFETCH(bool, in_list);
    CrowdedWindow bench;
    QWidget* box = bench.box(name);
    const QString value = value_of(box);
    turn_wheel_over(box);
    QCOMPARE(value_of(box), value);
    QVERIFY(!box->hasFocus());
    QCOMPARE(bench.list()->value() > 0, in_list);
}

void WheelTest::with_the_focus_a_box_takes_the_wheel_data()
{
    add_boxes();
}

void WheelTest::with_the_focus_a_box_takes_the_wheel()
{
    QFETCH(QString, name);
    CrowdedWindow bench;
    QWidget* box = bench.box(name);
    set_to_start(box);
    box->setFocus();
    const QString value = value_of(box);
    turn_wheel_over(box);
    QVERIFY(value_of(box) != value);
    QCOMPARE(bench.list()->value(), 0);
}

void WheelTest::a_notch_in_the_final_charge_begins_no_cycle()
{
    CrowdedWindow bench;
    TestStation* station = TestStation::all_instances.first();
    auto* cycles = station->findChild<QSpinBox*>("sbNumberOfCycles");
    cycles->setValue(5);
    station->phase = PHASE_FINAL_CHARGE;
    turn_wheel_over(cycles);
    QCOMPARE(station->phase, PHASE_FINAL_CHARGE);
    QCOMPARE(station->number_of_cycles, 5);
}

void WheelTest::boxes_of_a_dialog_take_the_wheel_with_the_focus_only_data()
{
    QTest::addColumn<QString>("form");
    QTest::addColumn<int>("count");
    QTest::newRow("settings") << "settings" << 1;
    QTest::newRow("fonts") << "fonts" << 2;
    QTest::newRow("ports") << "ports" << 1;
}

void WheelTest::boxes_of_a_dialog_take_the_wheel_with_the_focus_only()
{
    QFETCH(QString, form);
    WindowBench bench;
    std::unique_ptr<QDialog> dialog;
    if (form == "settings")
        dialog = std::make_unique<EditSettingsDialog>(nullptr);
    else if (form == "fonts")
        dialog = std::make_unique<WidgetFontDebugDialog>(nullptr);
    else
        dialog = std::make_unique<AddTestStationDialog>(nullptr);
    dialog->show();
    QApplication::setActiveWindow(dialog.get());
    QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
    const QList<QWidget*> boxes = boxes_in(*dialog);
    QTEST(boxes.size(), "count");
    for (QWidget* box : boxes) {
        if (auto* combo = qobject_cast<QComboBox*>(box))
            combo->insertItem(1, "12");
        dialog->findChild<QPushButton*>()->setFocus();
        set_to_start(box);
        const QString value = value_of(box);
        turn_wheel_over(box);
        QCOMPARE(value_of(box), value);
        QVERIFY(!box->hasFocus());
        box->setFocus();
        turn_wheel_over(box);
        QVERIFY(value_of(box) != value);
        QCOMPARE(box->focusPolicy(), Qt::StrongFocus);
    }
}

void WheelTest::tab_and_mouse_give_each_box_the_focus()
{
    const CrowdedWindow bench;
    const QList<QWidget*> boxes = boxes_in(*bench.window);
    QCOMPARE(boxes.size(), 3 * TestStation::all_instances.size() + 1);
    for (const QWidget* box : boxes)
        QCOMPARE(box->focusPolicy(), Qt::StrongFocus);
}

KEST_TEST(WheelTest)
#include "tst_wheel.moc"
