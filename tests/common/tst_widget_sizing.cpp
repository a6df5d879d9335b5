#include "common/widget_sizing.h"
#include "support/test_program.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

#include <functional>
#include <memory>

using Maker = std::function<QWidget*()>;
Q_DECLARE_METATYPE(Maker)

namespace
{
const QString TEXT = "A text of some length";

int text_width(const QFont& font, int point_size, const QString& text = TEXT)
{
    QFont sized = font;
    sized.setPointSize(point_size);
    return QFontMetrics(sized).horizontalAdvance(text);
}

int label_width(const QLabel& label, const QString& text)
{
    return QFontMetrics(label.font()).size(Qt::TextSingleLine, text).width();
}

template <typename Widget> Maker maker_with_text()
{
    return [] {
        auto* widget = new Widget;
        widget->setText(TEXT);
        return widget;
    };
}

QWidget* spin_box_with_text()
{
    auto* spin_box = new QSpinBox;
    spin_box->setPrefix(TEXT.left(TEXT.size() - 1));
    spin_box->setSpecialValueText(TEXT);
    return spin_box;
}

QWidget* combo_box_with_text()
{
    auto* combo_box = new QComboBox;
    combo_box->addItem(TEXT);
    return combo_box;
}
}  // namespace

class WidgetSizingTest : public QObject
{
    Q_OBJECT

private slots:
    void the_widest_sets_the_width_of_all();
    void an_empty_list_is_no_harm();
    void a_width_in_ems_is_pinned();
    void a_width_in_ems_can_shrink_the_text();
    void text_shrinks_until_it_fits_data();
    void text_shrinks_until_it_fits();
    void a_text_as_wide_as_the_room_fits();
    void text_stops_at_the_smallest_size();
    void a_size_that_fits_stays();
    void a_given_size_is_where_it_begins();
    void an_unpinned_widget_offers_its_present_width();
    void other_kinds_have_no_text_to_fit();
    void a_fitting_label_is_as_wide_as_its_text();
    void a_text_that_fits_is_shown_whole();
    void a_text_that_needs_all_the_room_is_cut();
    void a_cut_text_is_the_longest_that_fits();
    void labels_of_other_fonts_get_cuts_of_their_own();
    void a_text_of_any_length_is_cut();
    void the_tooltip_of_a_cut_text_begins_with_all_of_it();
    void without_room_for_the_dots_the_label_stays();
    void the_dots_alone_are_shown_if_nothing_else_fits();
};

void WidgetSizingTest::the_widest_sets_the_width_of_all()
{
    QLabel short_label("short");
    QLabel long_label("a much longer caption");
    QPushButton button("...");
    set_width_to_widest({&short_label, &long_label, &button}, 7);
    const int expected = QLabel("a much longer caption").minimumSizeHint().width() + 7;
    for (const QWidget* widget : QList<QWidget*>{&short_label, &long_label, &button}) {
        QCOMPARE(widget->minimumWidth(), expected);
        QCOMPARE(widget->maximumWidth(), expected);
    }
}

void WidgetSizingTest::an_empty_list_is_no_harm()
{
    set_width_to_widest({}, 10);
}

void WidgetSizingTest::a_width_in_ems_is_pinned()
{
    QLabel label(QString(100, 'm'));
    const QFont before = label.font();
    set_width_in_ems(&label, 6, false);
    const int expected = 6 * QFontMetrics(before).horizontalAdvance('m');
    QCOMPARE(label.minimumWidth(), expected);
    QCOMPARE(label.maximumWidth(), expected);
    QCOMPARE(label.font(), before);
}

void WidgetSizingTest::a_width_in_ems_can_shrink_the_text()
{
    QLabel label("mmmmmmmm");
    const int before = label.font().pointSize();
    set_width_in_ems(&label, 6, true);
    const int after = label.font().pointSize();
    QVERIFY(after < before);
    QVERIFY(text_width(label.font(), after, "mmmmmmmm") <= label.width());
    QVERIFY(text_width(label.font(), after + 1, "mmmmmmmm") > label.width());

    QLabel hopeless(QString(100, 'm'));
    set_width_in_ems(&hopeless, 6, true);
    QCOMPARE(hopeless.font().pointSize(), 4);
}

void WidgetSizingTest::text_shrinks_until_it_fits_data()
{
    QTest::addColumn<Maker>("make");
    QTest::addColumn<int>("border");

    constexpr int height = 30;
    QTest::newRow("label") << maker_with_text<QLabel>() << 0;
    QTest::newRow("push button") << maker_with_text<QPushButton>() << 23;
    QTest::newRow("line edit") << maker_with_text<QLineEdit>() << 0;
    QTest::newRow("check box") << maker_with_text<QCheckBox>() << height;
    QTest::newRow("spin box") << Maker(spin_box_with_text) << 0;
}

void WidgetSizingTest::text_shrinks_until_it_fits()
{
    QFETCH(Maker, make);
    QFETCH(int, border);
    const std::unique_ptr<QWidget> widget(make());
    widget->setFixedHeight(30);
    widget->resize(widget->width(), 30);
    // The size of 15 points just fits into the first room and is a pixel too wide for the second.
    const int needed = text_width(widget->font(), 15);
    for (const int room : {needed, needed - 1}) {
        widget->setFixedWidth(room + border);
        fit_font_to_width(widget.get(), 24, 4);
        int expected = 24;
        while (text_width(widget->font(), expected) > room)
            --expected;
        QCOMPARE(widget->font().pointSize(), expected);
    }
}

void WidgetSizingTest::a_text_as_wide_as_the_room_fits()
{
    QLabel label(TEXT);
    const int room = text_width(label.font(), 20);
    label.setFixedWidth(room);
    fit_font_to_width(&label, 20, 4);
    QCOMPARE(label.font().pointSize(), 20);
    label.setFixedWidth(room - 1);
    fit_font_to_width(&label, 20, 4);
    QVERIFY(label.font().pointSize() < 20);
}

void WidgetSizingTest::text_stops_at_the_smallest_size()
{
    QLabel label(TEXT);
    label.setFixedWidth(1);
    fit_font_to_width(&label, 20, 7);
    QCOMPARE(label.font().pointSize(), 7);
    fit_font_to_width(&label, 5, 7);
    QCOMPARE(label.font().pointSize(), 5);
}

void WidgetSizingTest::a_size_that_fits_stays()
{
    QLabel label(TEXT);
    const int before = label.font().pointSize();
    label.setFixedWidth(2000);
    fit_font_to_width(&label, -1, 4);
    QCOMPARE(label.font().pointSize(), before);
}

void WidgetSizingTest::a_given_size_is_where_it_begins()
{
    QLabel label(TEXT);
    label.setFixedWidth(5000);
    fit_font_to_width(&label, 31, 4);
    QCOMPARE(label.font().pointSize(), 31);
}

void WidgetSizingTest::an_unpinned_widget_offers_its_present_width()
{
    QLabel label(TEXT);
    label.setMinimumWidth(1);
    label.resize(text_width(label.font(), 15), 20);
    fit_font_to_width(&label, 40, 4);
    QVERIFY(text_width(label.font(), label.font().pointSize()) <= label.width());
    QVERIFY(label.font().pointSize() >= 15);
    QVERIFY(label.font().pointSize() < 40);
}

void WidgetSizingTest::other_kinds_have_no_text_to_fit()
{
    const std::unique_ptr<QWidget> combo_box(combo_box_with_text());
    combo_box->setFixedWidth(1);
    fit_font_to_width(combo_box.get(), 20, 4);
    QCOMPARE(combo_box->font().pointSize(), 20);
}

void WidgetSizingTest::a_fitting_label_is_as_wide_as_its_text()
{
    QLabel label;
    label.setFixedWidth(3);
    for (const QString& text : {TEXT, TEXT + TEXT, QString(), QString("1")}) {
        set_fitting_text(&label, text);
        QCOMPARE(label.text(), text);
        QCOMPARE(label.width(), text.isEmpty() ? 0 : QLabel(text).minimumSizeHint().width());
        QCOMPARE(label.minimumWidth(), label.maximumWidth());
    }
}

void WidgetSizingTest::a_text_that_fits_is_shown_whole()
{
    QLabel label("before");
    label.setToolTip("before");
    label.setFixedWidth(label_width(label, "/a/directory") + 1);
    set_elided_text(&label, "/a/directory", "a tooltip");
    QCOMPARE(label.text(), QString("/a/directory"));
    QCOMPARE(label.toolTip(), QString("a tooltip"));
    set_elided_text(&label, "/a/directory", "");
    QCOMPARE(label.toolTip(), QString());
}

void WidgetSizingTest::a_text_that_needs_all_the_room_is_cut()
{
    QLabel label;
    label.setFixedWidth(label_width(label, "/a/directory"));
    set_elided_text(&label, "/a/directory", "");
    QVERIFY(label.text() != "/a/directory");
    QVERIFY(label.text().endsWith("..."));
}

void WidgetSizingTest::a_cut_text_is_the_longest_that_fits()
{
    const QString text = "/a/directory/with/a/rather/long/name";
    QLabel label;
    for (int width = label_width(label, "/a/di..."); width < label_width(label, text); width += 5) {
        label.setFixedWidth(width);
        set_elided_text(&label, text, "");
        const int kept = label.text().size() - 3;
        QCOMPARE(label.text(), text.left(kept) + "...");
        QVERIFY(label_width(label, label.text()) < width);
        QVERIFY(label_width(label, text.left(kept + 1) + "...") >= width);
    }
}

void WidgetSizingTest::labels_of_other_fonts_get_cuts_of_their_own()
{
    const QString text = "/a/directory/with/a/rather/long/name";
    QLabel labels[2];
    QFont larger = labels[1].font();
    larger.setPointSize(larger.pointSize() * 2);
    labels[1].setFont(larger);
    const int width = label_width(labels[0], text) / 2;
    QString cuts[2];
    for (int i : {0, 1, 0, 1}) {
        labels[i].clear();
        labels[i].setFixedWidth(width);
        set_elided_text(&labels[i], text, "");
        QVERIFY(cuts[i].isNull() || labels[i].text() == cuts[i]);
        cuts[i] = labels[i].text();
    }
    QVERIFY(cuts[1].size() < cuts[0].size());
    QVERIFY(label_width(labels[1], cuts[1]) < width);
}

void WidgetSizingTest::a_text_of_any_length_is_cut()
{
    const QString longest(1000000, 'x');
    QLabel label;
    label.setFixedWidth(200);
    set_elided_text(&label, QString(100, 'x'), "");
    const QString cut = label.text();
    set_elided_text(&label, longest, "");
    QCOMPARE(label.text(), cut);
    QCOMPARE(label.toolTip(), longest);
}

void WidgetSizingTest::the_tooltip_of_a_cut_text_begins_with_all_of_it()
{
    const QString text = "/a/directory/with/a/rather/long/name";
    QLabel label;
    label.setFixedWidth(label_width(label, text) / 2);
    set_elided_text(&label, text, "");
    QCOMPARE(label.toolTip(), text);
    set_elided_text(&label, text, "a tooltip");
    QCOMPARE(label.toolTip(), text + "\na tooltip");
}

void WidgetSizingTest::without_room_for_the_dots_the_label_stays()
{
    QLabel label("before");
    label.setToolTip("tip before");
    label.setFixedWidth(label_width(label, "..."));
    set_elided_text(&label, "/a/directory", "a tooltip");
    QCOMPARE(label.text(), QString("before"));
    QCOMPARE(label.toolTip(), QString("tip before"));
}

void WidgetSizingTest::the_dots_alone_are_shown_if_nothing_else_fits()
{
    QLabel label("before");
    label.setFixedWidth(label_width(label, "...") + 1);
    set_elided_text(&label, "MMMM", "");
    QCOMPARE(label.text(), QString("..."));
    QCOMPARE(label.toolTip(), QString("MMMM"));
}

KEST_TEST(WidgetSizingTest)
#include "tst_widget_sizing.moc"
