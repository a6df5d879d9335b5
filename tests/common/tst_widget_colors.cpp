#include "common/colors.h"
#include "common/widget_colors.h"
#include "support/test_program.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

#include <algorithm>
#include <functional>
#include <memory>

using Maker = std::function<QWidget*()>;
Q_DECLARE_METATYPE(Maker)

namespace
{
template <typename Widget> Maker maker()
{
    return [] {
        return new Widget;
    };
}

constexpr QPalette::ColorGroup GROUPS[] = {QPalette::Active, QPalette::Inactive,
                                           QPalette::Disabled};

/** The roles whose brush differs in at least one group. */
QList<int> changed_roles(const QPalette& before, const QPalette& after)
{
    QList<int> roles;
    for (int role = 0; role < QPalette::NColorRoles; ++role) {
        const auto differs = [&](QPalette::ColorGroup group) {
            const auto color_role = QPalette::ColorRole(role);
            return after.brush(group, color_role) != before.brush(group, color_role);
        };
        if (std::any_of(std::begin(GROUPS), std::end(GROUPS), differs))
            roles.append(role);
    }
    return roles;
}

bool is_set_in_all_groups(const QPalette& palette, QPalette::ColorRole role, const QColor& color)
{
    return std::all_of(std::begin(GROUPS), std::end(GROUPS), [&](QPalette::ColorGroup group) {
        return palette.brush(group, role) == QBrush(color);
    });
}

const QColor ODD_COLOR(1, 2, 3);
}  // namespace

class WidgetColorsTest : public QObject
{
    Q_OBJECT

private slots:
    void the_background_takes_the_role_of_the_kind_data();
    void the_background_takes_the_role_of_the_kind();
    void the_foreground_takes_the_role_of_the_kind_data();
    void the_foreground_takes_the_role_of_the_kind();
    void other_kinds_keep_their_palette();
    void a_combo_box_gets_a_style_sheet();
    void a_combo_box_gets_both_colors_in_one_style_sheet();
    void other_widgets_get_both_colors();
    void a_label_is_really_filled();
};

void WidgetColorsTest::the_background_takes_the_role_of_the_kind_data()
{
    QTest::addColumn<Maker>("make");
    QTest::addColumn<int>("role");

    QTest::newRow("push button") << maker<QPushButton>() << int(QPalette::Button);
    QTest::newRow("line edit") << maker<QLineEdit>() << int(QPalette::Base);
    QTest::newRow("spin box") << maker<QSpinBox>() << int(QPalette::Base);
    QTest::newRow("check box") << maker<QCheckBox>() << int(QPalette::Base);
    QTest::newRow("label") << maker<QLabel>() << int(QPalette::Window);
    QTest::newRow("dialog") << maker<QDialog>() << int(QPalette::Window);
}

void WidgetColorsTest::the_background_takes_the_role_of_the_kind()
{
    QFETCH(Maker, make);
    QFETCH(int, role);
    const std::unique_ptr<QWidget> widget(make());
    const QPalette before = widget->palette();
    set_widget_background(widget.get(), ODD_COLOR);
    QCOMPARE(changed_roles(before, widget->palette()), QList<int>{role});
    QVERIFY(is_set_in_all_groups(widget->palette(), QPalette::ColorRole(role), ODD_COLOR));
    QVERIFY(widget->autoFillBackground());
    QCOMPARE(widget->styleSheet(), QString());
}

void WidgetColorsTest::the_foreground_takes_the_role_of_the_kind_data()
{
    QTest::addColumn<Maker>("make");
    QTest::addColumn<QList<int>>("roles");

    QTest::newRow("label") << maker<QLabel>() << QList<int>{QPalette::WindowText};
    QTest::newRow("push button") << maker<QPushButton>() << QList<int>{QPalette::ButtonText};
    QTest::newRow("line edit") << maker<QLineEdit>() << QList<int>();
    QTest::newRow("check box") << maker<QCheckBox>() << QList<int>();
    QTest::newRow("frame") << maker<QFrame>() << QList<int>();
}

void WidgetColorsTest::the_foreground_takes_the_role_of_the_kind()
{
    QFETCH(Maker, make);
    QFETCH(QList<int>, roles);
    const std::unique_ptr<QWidget> widget(make());
    const QPalette before = widget->palette();
    set_widget_foreground(widget.get(), ODD_COLOR);
    QCOMPARE(changed_roles(before, widget->palette()), roles);
    for (const int role : roles)
        QVERIFY(is_set_in_all_groups(widget->palette(), QPalette::ColorRole(role), ODD_COLOR));
}

void WidgetColorsTest::other_kinds_keep_their_palette()
{
    QFrame frame;
    const QPalette before = frame.palette();
    set_widget_background(&frame, ODD_COLOR);
    QCOMPARE(frame.palette(), before);
}

void WidgetColorsTest::a_combo_box_gets_a_style_sheet()
{
    QComboBox box;
    set_widget_background(&box, Colors::KEST_RED);
    QCOMPARE(box.styleSheet(), QString("QComboBox { background-color: #942432; }"));
    set_widget_foreground(&box, Colors::blue);
    QCOMPARE(box.styleSheet(), QString("QComboBox { foreground-color: #0000ff; }"));
}

void WidgetColorsTest::a_combo_box_gets_both_colors_in_one_style_sheet()
{
    QComboBox box;
    set_widget_colors(&box, Colors::white, Colors::brown);
    QCOMPARE(box.styleSheet(), QString("QComboBox { color: #ffffff; background-color: #573105; }"));
}

void WidgetColorsTest::other_widgets_get_both_colors()
{
    QLabel label;
    set_widget_colors(&label, Colors::white, Colors::brown);
    QVERIFY(is_set_in_all_groups(label.palette(), QPalette::WindowText, Colors::white));
    QVERIFY(is_set_in_all_groups(label.palette(), QPalette::Window, Colors::brown));
    QVERIFY(label.autoFillBackground());
}

void WidgetColorsTest::a_label_is_really_filled()
{
    QWidget parent;
    QLabel label(&parent);
    label.resize(20, 10);
    set_widget_background(&label, Colors::KEST_RED);
    QCOMPARE(label.grab().toImage().pixelColor(10, 5), QColor(148, 36, 50));
}

KEST_TEST(WidgetColorsTest)
#include "tst_widget_colors.moc"
