#include "shell/panels/layers/LayersList.h"

#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "shell/panels/layers/LayerMenu.h"
#include "shell/panels/layers/LayerRowDelegate.h"
#include "shell/panels/layers/LayerRowDrag.h"
#include "shell/panels/layers/LayersModel.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QHoverEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>

namespace qirn {

namespace {

constexpr int kNameColumn = static_cast<int>(LayerColumn::name);
constexpr int kLeastRows = 4;

} // namespace

LayersList::LayersList(PaintModel& model, QWidget* parent)
    : QTableView(parent),
      model_(model),
      rows_(new LayersModel(model, this)),
      drag_(new LayerRowDrag(*this, [this](int from, int to) {
          guarded(model_,
                  [&] { LayerEdits::moveLayer(model_, rows_->layerOfRow(from), rows_->layerOfRow(to)); });
      })) {
    setObjectName(QStringLiteral("layers"));
    setAccessibleName(tr("Layers"));
    setModel(rows_);
    setItemDelegate(new LayerRowDelegate(*rows_, *this));
    setFocusPolicy(Qt::TabFocus);
    setTabKeyNavigation(false);
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers); // the names are edited on request
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setShowGrid(false);
    setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_Hover);
    for (QHeaderView* header : {horizontalHeader(), verticalHeader()}) {
        header->hide();
        header->setMinimumSectionSize(1);
        header->setSectionResizeMode(QHeaderView::Fixed);
    }
    horizontalHeader()->setSectionResizeMode(kNameColumn, QHeaderView::Stretch);
    QirnKit::followMetrics(this, [this](const Metrics&) { layOut(); });
    connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            guarding(model_, [this](const QModelIndex& current, const QModelIndex&) {
                if (!isReading_ && current.isValid())
                    LayerEdits::setActiveLayer(model_, rows_->layerOfRow(current.row()));
            }));
}

void LayersList::layOut() {
    const int height = LayerRowDelegate::rowHeight();
    for (const LayerMark& mark : kLayerMarks)
        horizontalHeader()->resizeSection(static_cast<int>(mark.column),
                                          LayerRowDelegate::markWidth(mark.column));
    verticalHeader()->setDefaultSectionSize(height);
    verticalScrollBar()->setSingleStep(height / 2);
    setMinimumHeight(kLeastRows * height + 2 * frameWidth());
}

bool LayersList::refresh() {
    const DocSession* session = model_.current();
    const QScopedValueRollback reading(isReading_, true);
    const bool isDifferent = rows_->refresh();
    if (session && isDifferent) {
        const int column = currentIndex().isValid() ? currentIndex().column() : kNameColumn;
        setCurrentIndex(rows_->index(rows_->rowOfLayer(session->doc().activeIndex()), column));
    }
    return isDifferent;
}

QRect LayersList::rowRect(int row) const {
    return visualRect(rows_->index(row, 0)).united(visualRect(rows_->index(row, kLayerColumns - 1)));
}

bool LayersList::showsAllMarks(int row) const {
    return row == hoveredRow() || row == currentIndex().row();
}

void LayersList::choose(int row) {
    setCurrentIndex(rows_->index(row, kNameColumn));
}

bool LayersList::turnMark(const QModelIndex& cell) {
    const LayerMark* mark = markOfColumn(cell.column());
    if (!mark) return false;
    const bool on = rows_->layer(cell.row()).*mark->flag;
    if (!on && mark->column != LayerColumn::eye && !showsAllMarks(cell.row())) return false;
    rows_->setData(cell, on ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
    return true;
}

void LayersList::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    QPainter painter(viewport());
    drag_->paint(painter);
}

// --- Pointer

void LayersList::mousePressEvent(QMouseEvent* event) {
    const QModelIndex cell = indexAt(event->position().toPoint());
    if (event->button() != Qt::LeftButton || !cell.isValid() || turnMark(cell)) return;
    choose(cell.row());
    drag_->press(event->position().toPoint(), cell);
}

void LayersList::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() & Qt::LeftButton) drag_->move(event->position().toPoint());
}

void LayersList::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) drag_->release();
}

void LayersList::mouseDoubleClickEvent(QMouseEvent* event) {
    const QModelIndex cell = indexAt(event->position().toPoint());
    if (event->button() != Qt::LeftButton || !cell.isValid() || turnMark(cell)) return;
    rename(cell);
}

void LayersList::contextMenuEvent(QContextMenuEvent* event) {
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex cell = byKey ? currentIndex() : indexAt(event->pos());
    if (!cell.isValid()) return;
    choose(cell.row()); // what the menu does is seen in the panel round it
    showLayerMenu(model_, *this,
                  byKey ? viewport()->mapToGlobal(rowRect(cell.row()).center()) : event->globalPos());
}

bool LayersList::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverMove)
        setHovered(indexAt(static_cast<QHoverEvent*>(event)->position().toPoint()));
    else if (event->type() == QEvent::HoverLeave || event->type() == QEvent::Leave)
        setHovered({});
    return QTableView::viewportEvent(event);
}

void LayersList::setHovered(const QModelIndex& cell) {
    if (hovered_ == cell) return;
    if (hovered_.isValid()) viewport()->update(rowRect(hovered_.row()));
    hovered_ = cell;
    if (cell.isValid()) viewport()->update(rowRect(cell.row()));
}

// --- Keys

void LayersList::keyPressEvent(QKeyEvent* event) {
    const auto modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool isArrow = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down;
    if (state() == EditingState) return event->ignore(); // what the field has no use for
    if (isArrow && (modifiers == Qt::ControlModifier || modifiers == Qt::AltModifier)) {
        guarded(model_, [&] {
            (event->key() == Qt::Key_Up ? LayerEdits::moveLayerUp : LayerEdits::moveLayerDown)(model_);
        });
        return;
    }
    if (modifiers != Qt::NoModifier) return event->ignore();
    switch (event->key()) {
    case Qt::Key_Space: {
        const QModelIndex current = currentIndex();
        if (!turnMark(current)) turnMark(current.siblingAtColumn(static_cast<int>(LayerColumn::eye)));
        return;
    }
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        return QTableView::keyPressEvent(event);
    default:
        event->ignore();
    }
}

QModelIndex LayersList::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    if (action != MoveHome && action != MoveEnd) return QTableView::moveCursor(action, modifiers);
    const int row = action == MoveHome ? 0 : rows_->rowCount() - 1;
    return rows_->index(row, std::max(currentIndex().column(), 0));
}

// --- Names

void LayersList::showEvent(QShowEvent* event) {
    QTableView::showEvent(event);
    window()->installEventFilter(this);
}

bool LayersList::eventFilter(QObject* watched, QEvent* event) {
    if (watched != window() || event->type() != QEvent::KeyPress)
        return QTableView::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_F2 || key->modifiers() != Qt::NoModifier || !isVisible() || !isEnabled())
        return false;
    renameActive();
    return true;
}

void LayersList::renameActive() {
    if (currentIndex().isValid()) rename(currentIndex());
}

void LayersList::rename(const QModelIndex& row) {
    if (state() == EditingState) return;
    guarded(model_, [&] { model_.finishGesture(); });
    focusBefore_ = QApplication::focusWidget();
    const QModelIndex name = row.siblingAtColumn(kNameColumn);
    scrollTo(name);
    edit(name);
}

void LayersList::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint) {
    const bool hadKeys = editor->hasFocus();
    QTableView::closeEditor(editor, QAbstractItemDelegate::NoHint); // Tab opens no other name
    if (hadKeys && focusBefore_) focusBefore_->setFocus(Qt::OtherFocusReason);
}

} // namespace qirn
