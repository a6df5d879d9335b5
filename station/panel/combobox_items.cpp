#include "station/panel/combobox_items.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCoreApplication>
#include <QEvent>
#include <QSignalBlocker>

namespace
{
QStringList items_of(const QComboBox* combo)
{
    QStringList items;
    for (int i = 0; i < combo->count(); ++i)
        items.append(combo->itemText(i));
    return items;
}

/** The toolkit keeps the hint of the former items until the style changes. */
QSize fresh_minimum_size_hint(QComboBox* combo)
{
    QEvent style_change(QEvent::StyleChange);
    QCoreApplication::sendEvent(combo, &style_change);
    return combo->minimumSizeHint();
}
}  // namespace

void set_combobox_items(QComboBox* combo, QStringList items)
{
    if (items_of(combo) != items) {
        const QSignalBlocker blocker(combo);
        const QString current = combo->currentText();
        combo->clear();
        combo->addItems(items);
        if (items.contains(current))
            combo->setCurrentText(current);
    }
    combo->view()->setMinimumWidth(fresh_minimum_size_hint(combo).width());
}
