#include "shell/panels/layers/LayerRowDrag.h"

#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTableView>

namespace qirn {

namespace {

constexpr int kScrollTime = 16; // milliseconds between two steps at an edge
constexpr int kScrollShare = 4; // of the way into the edge, in one step

} // namespace

LayerRowDrag::LayerRowDrag(QTableView& list, std::function<void(int, int)> drop)
    : QObject(&list),
      list_(list),
      drop_(std::move(drop)) {}

int LayerRowDrag::rowHeight() const {
    return std::max(list_.rowHeight(0), 1);
}

void LayerRowDrag::press(QPoint position, const QModelIndex& row) {
    cancel();
    row_ = row;
    pressed_ = position;
}

void LayerRowDrag::move(QPoint position) {
    if (!row_.isValid()) return cancel();
    position_ = position;
    if (!isDragging()) {
        if ((position - pressed_).manhattanLength() < QApplication::startDragDistance()) return;
        qApp->installEventFilter(this);
        list_.viewport()->setCursor(Qt::ClosedHandCursor);
        scroll_.start(kScrollTime, this);
    }
    follow();
}

void LayerRowDrag::follow() {
    const int y = std::clamp(position_.y(), 0, list_.viewport()->height());
    const double place = static_cast<double>(y + list_.verticalScrollBar()->value()) / rowHeight();
    gap_ = std::min(static_cast<int>(std::lround(place)), list_.model()->rowCount());
    list_.viewport()->update();
}

void LayerRowDrag::release() {
    const bool drops = isDragging() && row_.isValid();
    const int from = row_.row();
    const int to = gap_ > from ? gap_ - 1 : gap_;
    cancel();
    if (drops && to != from) drop_(from, to);
}

void LayerRowDrag::cancel() {
    row_ = QModelIndex();
    if (!isDragging()) return;
    gap_ = -1;
    scroll_.stop();
    qApp->removeEventFilter(this);
    list_.viewport()->unsetCursor();
    list_.viewport()->update();
}

void LayerRowDrag::timerEvent(QTimerEvent* event) {
    if (event->timerId() != scroll_.timerId()) return;
    const int edge = rowHeight() / 2;
    const int above = edge - position_.y();
    const int below = position_.y() - (list_.viewport()->height() - edge);
    const int into = above > 0 ? -above : std::max(below, 0);
    if (into == 0) return;
    QScrollBar& bar = *list_.verticalScrollBar();
    bar.setValue(bar.value() + into / kScrollShare + (into < 0 ? -1 : 1));
    follow();
}

bool LayerRowDrag::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        event->accept();
        return true;
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) cancel();
        return true; // nothing else happens to the stack meanwhile
    case QEvent::Hide:
    case QEvent::EnabledChange:
    case QEvent::WindowDeactivate:
        if (watched == &list_) cancel();
        return false;
    default:
        return false;
    }
}

void LayerRowDrag::paint(QPainter& painter) const {
    if (!isDragging() || !row_.isValid()) return;
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    const int width = list_.viewport()->width();
    const int scrolled = list_.verticalScrollBar()->value();
    QColor veil = c.panel;
    veil.setAlphaF(0.6F);
    painter.fillRect(0, row_.row() * rowHeight() - scrolled, width, rowHeight(), veil);
    const double thickness = m.focusWidth, knob = 3 * thickness;
    const double y =
        std::clamp<double>(gap_ * rowHeight() - scrolled, knob / 2, list_.viewport()->height() - knob / 2);
    ChromePaint::box(painter, QRectF(m.inset, y - thickness / 2, width - 2 * m.inset, thickness), 0, c.focus);
    ChromePaint::box(painter, QRectF(m.inset, y - knob / 2, knob, knob), knob / 2, c.focus);
}

} // namespace qirn
