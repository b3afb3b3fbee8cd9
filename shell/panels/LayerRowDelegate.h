#pragma once
#include <QStyledItemDelegate>

namespace qirn {

/// Draws a layer's row: an eye that a click turns, and the name. The eye is the item's check state.
class LayerRowDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    static constexpr int kMarksRole = Qt::UserRole + 1; ///< A short text at the end of the row.

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;
};

} // namespace qirn
