#include "station/panel/combobox_items.h"
#include "support/test_program.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QSignalSpy>
#include <QtTest>

/** How the items of a box are exchanged under its current text. */
class ComboboxItemsTest : public QObject
{
    Q_OBJECT

private slots:
    void items_stand_in_their_order();
    void the_current_text_stays_if_it_is_listed();
    void else_the_first_item_is_current();
    void equal_items_are_left_alone();
    void another_order_is_another_list();
    void nobody_is_told();
    void the_list_is_as_wide_as_its_widest_item();
};

namespace
{
QStringList items_of(const QComboBox& combo)
{
    QStringList items;
    for (int i = 0; i < combo.count(); ++i)
        items += combo.itemText(i);
    return items;
}
}  // namespace

void ComboboxItemsTest::items_stand_in_their_order()
{
    QComboBox combo;
    combo.addItem("former");
    set_combobox_items(&combo, {"c", "a", "b", "a"});
    QCOMPARE(items_of(combo), QStringList({"c", "a", "b", "a"}));
    set_combobox_items(&combo, {});
    QCOMPARE(combo.count(), 0);
}

void ComboboxItemsTest::the_current_text_stays_if_it_is_listed()
{
    QComboBox combo;
    set_combobox_items(&combo, {"a", "b", "c"});
    combo.setCurrentText("b");
    set_combobox_items(&combo, {"none", "a", "aa", "b"});
    QCOMPARE(combo.currentText(), QString("b"));
    QCOMPARE(combo.currentIndex(), 3);
}

void ComboboxItemsTest::else_the_first_item_is_current()
{
    QComboBox combo;
    set_combobox_items(&combo, {"a", "b", "c"});
    combo.setCurrentText("b");
    set_combobox_items(&combo, {"none", "B"});
    QCOMPARE(combo.currentText(), QString("none"));
}

void ComboboxItemsTest::equal_items_are_left_alone()
{
    QComboBox combo;
    set_combobox_items(&combo, {"a", "b"});
    QSignalSpy inserted(combo.model(), &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(combo.model(), &QAbstractItemModel::rowsRemoved);
    QSignalSpy reset(combo.model(), &QAbstractItemModel::modelReset);
    set_combobox_items(&combo, {"a", "b"});
    QCOMPARE(inserted.count() + removed.count() + reset.count(), 0);
}

void ComboboxItemsTest::another_order_is_another_list()
{
    QComboBox combo;
    set_combobox_items(&combo, {"a", "b"});
    set_combobox_items(&combo, {"b", "a"});
    QCOMPARE(items_of(combo), QStringList({"b", "a"}));
    QCOMPARE(combo.currentText(), QString("a"));
}

void ComboboxItemsTest::nobody_is_told()
{
    QComboBox combo;
    set_combobox_items(&combo, {"a", "b"});
    combo.setCurrentText("b");
    QSignalSpy texts(&combo, &QComboBox::currentTextChanged);
    set_combobox_items(&combo, {"a", "b", "c"});
    set_combobox_items(&combo, {"a"});
    QCOMPARE(texts.count(), 0);
    combo.addItem("d");
    combo.setCurrentText("d");
    QCOMPARE(texts.count(), 1);
}

void ComboboxItemsTest::the_list_is_as_wide_as_its_widest_item()
{
    const QString widest(200, 'm');
    QComboBox combo;
    combo.setFixedWidth(100);
    set_combobox_items(&combo, {"a"});
    combo.show();
    const int narrow = combo.view()->minimumWidth();
    set_combobox_items(&combo, {"a", widest});
    QCOMPARE(combo.view()->minimumWidth(), combo.minimumSizeHint().width());
    QVERIFY(combo.view()->minimumWidth() >= combo.fontMetrics().boundingRect(widest).width());
    set_combobox_items(&combo, {"a"});
    QCOMPARE(combo.view()->minimumWidth(), narrow);
    QCOMPARE(combo.width(), 100);
}

KEST_TEST(ComboboxItemsTest)
#include "tst_combobox_items.moc"
