#include "station/panel/selection_killer_delegate.h"

#include <QPainter>

void SelectionKillerDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                    const QModelIndex& index) const
{
    QStyleOptionViewItem unselected = option;
    unselected.state &= ~QStyle::State_Selected;
    QItemDelegate::paint(painter, unselected, index);
}
