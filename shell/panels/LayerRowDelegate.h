#pragma once
#include <QStyledItemDelegate>

namespace qirn {

/// Draws a row of a `LayersModel`: an eye that a click turns, the thumbnail and the name. The eye is the item's check state.
class LayerRowDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    static int rowHeight();

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;
};

} // namespace qirn
