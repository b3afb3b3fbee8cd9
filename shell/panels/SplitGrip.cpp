#include "shell/panels/SplitGrip.h"

#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

#include <cmath>
#include <utility>

#include <QKeyEvent>
#include <QMouseEvent>

namespace qirn {

SplitGrip::SplitGrip(Qt::Edge edge, const QString& name, const Size& size, QWidget* parent)
    : QWidget(parent),
      edge_(edge),
      size_(size) {
    setAccessibleName(name);
    setToolTip(name);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setCursor(isUpright() ? Qt::SplitHCursor : Qt::SplitVCursor);
}

double SplitGrip::place(const QMouseEvent& event) const {
    if (!isUpright()) return event.globalPosition().y();
    return isRightToLeft() ? event.globalPosition().x() : -event.globalPosition().x();
}

void SplitGrip::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    dragging_ = true;
    pressed_ = place(*event);
    sizeThen_ = size_.get();
}

void SplitGrip::mouseMoveEvent(QMouseEvent* event) {
    if (dragging_) size_.set(sizeThen_ + static_cast<int>(std::lround(place(*event) - pressed_)));
}

void SplitGrip::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !std::exchange(dragging_, false)) return;
    update();
    size_.finished();
}

void SplitGrip::keyPressEvent(QKeyEvent* event) {
    int grows = isUpright() ? Qt::Key_Left : Qt::Key_Down;
    int shrinks = isUpright() ? Qt::Key_Right : Qt::Key_Up;
    if (isUpright() && isRightToLeft()) std::swap(grows, shrinks);
    if (event->key() != grows && event->key() != shrinks) return QWidget::keyPressEvent(event);
    const int step = QirnKitHost::metrics().gap;
    size_.set(size_.get() + (event->key() == grows ? step : -step));
    size_.finished();
}

void SplitGrip::paintEvent(QPaintEvent*) {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    if (!isUpright()) { // the other lies on the seam that its panel draws
        const QRectF middle(0, (height() - m.px(1)) / 2, width(), m.px(1));
        ChromePaint::line(painter, middle, ChromePaint::Side::top, c.divider);
    }
    if (underMouse() || dragging_) {
        const QRectF mark = isUpright() ? QRectF(0, 0, m.focusWidth, height())
                                        : QRectF(0, (height() - m.focusWidth) / 2.0, width(), m.focusWidth);
        painter.fillRect(ChromePaint::snapped(painter, ChromePaint::visual(rect(), mark)), c.edgeHover);
    }
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
        ChromePaint::focusRing(painter, rect(), m.smallRadius);
}

} // namespace qirn
