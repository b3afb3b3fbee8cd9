#pragma once
#include "shell/panels/layers/LayerMarks.h"

#include <QStyledItemDelegate>

namespace qirn {

class LayersList;
class LayersModel;

/// Draws the cells of a `LayersList`: the marks, and the name with the thumbnail before it and the opacity below it. Names
/// are edited where they stand.
class LayerRowDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    LayerRowDelegate(const LayersModel& rows, LayersList& list); ///< The list owns it, and outlives the rows.

    static int rowHeight(); ///< At the zoom of the interface, as all sizes here.
    static int markWidth(LayerColumn mark);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;
    /// Presses and keys are the list's.
    bool editorEvent(QEvent*, QAbstractItemModel*, const QStyleOptionViewItem&, const QModelIndex&) override {
        return false;
    }

private:
    bool isShown(const LayerMark& mark, int row) const;
    QRect nameRoom(int row) const; ///< Up to the first mark that is shown.
    /// As it would be read from left to right.
    QRect cellRoom(int row, LayerColumn column) const;
    void paintMark(QPainter& painter, const QRect& cell, const LayerMark& mark, int row) const;
    void paintName(QPainter& painter, const QStyleOptionViewItem& option, int row) const;
    void paintThumbnail(QPainter& painter, const QRectF& room, int row) const;

    const LayersModel& rows_;
    const LayersList& list_;
};

} // namespace qirn
