#pragma once
#include <QPersistentModelIndex>
#include <QPointer>
#include <QTableView>

namespace qirn {

class LayerRowDrag;
class LayersModel;
class PaintModel;

/// The stack as a list, top layer first. A press on a mark turns it, one elsewhere makes the layer active; a drag moves it,
/// a double click on the name, or F2 wherever the keys are in the window, renames it in place.
///
/// With the keys: Up and Down choose a layer, with Command or Option they move it; Left and Right go to the marks, Space
/// turns one. All other keys are the window's.
class LayersList : public QTableView {
    Q_OBJECT
public:
    LayersList(PaintModel& model, QWidget* parent); ///< Borrows the model.

    bool refresh(); ///< Shows the stack and its active layer. False where nothing is different.
    void renameActive();

    // For the one who draws it.
    QRect rowRect(int row) const;
    QModelIndex hovered() const { return hovered_; } ///< The cell under the pointer.
    int hoveredRow() const { return hovered_.row(); }
    bool showsAllMarks(int row) const; ///< Also those that are off.

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override; // of the window: F2
    void showEvent(QShowEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;

private:
    void layOut();
    void choose(int row);
    bool turnMark(const QModelIndex& cell); ///< False for a cell without one that is shown.
    void rename(const QModelIndex& row);
    void setHovered(const QModelIndex& cell);

    PaintModel& model_;
    LayersModel* rows_;
    LayerRowDrag* drag_;
    QPersistentModelIndex hovered_;
    QPointer<QWidget> focusBefore_; // gets the keys back when a name has been typed
    bool isReading_ = false;        // what becomes current meanwhile is not the user's choice
};

} // namespace qirn
