#pragma once
#include <functional>

#include <QBasicTimer>
#include <QObject>
#include <QPersistentModelIndex>
#include <QPoint>

class QPainter;
class QTableView;

namespace qirn {

/// Takes a row of a list to another place under the pointer: a line shows where it lands, the list scrolls at its edges,
/// Escape leaves everything as it was. Points are those of the list's viewport; all rows have one height.
class LayerRowDrag : public QObject {
    Q_OBJECT
public:
    /// Borrows the list, which scrolls by pixels. `drop` gets the row and the row that it becomes.
    LayerRowDrag(QTableView& list, std::function<void(int from, int to)> drop);

    void press(QPoint position, const QModelIndex& row);
    void move(QPoint position);
    void release();
    void cancel();
    void paint(QPainter& painter) const; ///< Over the rows.

protected:
    bool eventFilter(QObject* watched, QEvent* event) override; // of the application, during a drag
    void timerEvent(QTimerEvent* event) override;

private:
    bool isDragging() const { return gap_ >= 0; }
    int rowHeight() const;
    void follow();

    QTableView& list_;
    std::function<void(int, int)> drop_;
    QPersistentModelIndex row_; // invalid: no button is down on a row
    QPoint pressed_;
    QPoint position_;
    int gap_ = -1; // the line is above this row; -1 while the pointer has not moved far enough
    QBasicTimer scroll_;
};

} // namespace qirn
