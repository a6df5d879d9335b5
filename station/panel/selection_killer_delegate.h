#pragma once

#include <QItemDelegate>

/** Paints list items without the look of a selection, so that each keeps its own background. */
class SelectionKillerDelegate : public QItemDelegate
{
    Q_OBJECT

public:
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};
