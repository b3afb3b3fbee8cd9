// What moves the view without a tool: wheel, touchpad, and fingers on the screen.
#include "app/canvas/CanvasView.h"
#include "app/model/PaintModel.h"

#include <algorithm>
#include <cmath>

#include <QApplication>
#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QTouchEvent>
#include <QWheelEvent>

namespace qirn {

namespace {

constexpr int kWheelNotch = 120;      // Qt's angle for one notch of a wheel
constexpr double kAngleOfAPoint = 8;  // of a touchpad that tells no lengths: 15 points are one notch
constexpr double kNearlyStraight = 2; // degrees, which a hand cannot tell from none

/// A plain wheel tells whole notches, and its pixels are no measure: X11 has some for it as well.
bool isPrecise(const QWheelEvent& event) {
    const QPoint angle = event.angleDelta();
    return event.deviceType() == QInputDevice::DeviceType::TouchPad || event.phase() != Qt::NoScrollPhase ||
           angle.x() % kWheelNotch != 0 || angle.y() % kWheelNotch != 0;
}

/// Of a touchpad, in logical points.
QPointF scrolledBy(const QWheelEvent& event) {
    const QPoint angle = event.angleDelta(), points = event.pixelDelta();
    // X11 can give the angle for both.
    return points.isNull() || points == angle ? QPointF(angle) / kAngleOfAPoint : QPointF(points);
}

} // namespace

std::vector<Finger> fingersOf(const QTouchEvent& event) {
    std::vector<Finger> down;
    for (const QEventPoint& point : event.points()) {
        const QPointF at = point.position();
        if (point.state() == QEventPoint::Released || !std::isfinite(at.x()) || !std::isfinite(at.y()))
            continue;
        down.push_back({point.id(), at});
    }
    std::ranges::sort(down, {}, &Finger::id);
    return down;
}

bool CanvasView::event(QEvent* event) {
    bool taken = false;
    guarded(model_, [&] { taken = handleTouchOrWindow(event); });
    return taken || QWidget::event(event);
}

bool CanvasView::handleTouchOrWindow(QEvent* event) {
    switch (event->type()) {
    case QEvent::NativeGesture:
        return session_ && turnedOnTouchpad(*static_cast<QNativeGestureEvent*>(event));
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        return touched(*static_cast<QTouchEvent*>(event));
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride:
        return handleKeyOfWindow(static_cast<QKeyEvent*>(event));
    case QEvent::WindowDeactivate:
        input_.keysLost();
        inputLost();
        return false;
    default:
        return false;
    }
}

bool CanvasView::turnedOnTouchpad(const QNativeGestureEvent& gesture) {
    if (gesture.gestureType() == Qt::ZoomNativeGesture)
        setZoom(session_->view.zoom * (1 + gesture.value()), toView(gesture.position()));
    else if (gesture.gestureType() == Qt::RotateNativeGesture)
        rotateView(-gesture.value());
    else
        return false;
    return true;
}

void CanvasView::wheelTurned(QWheelEvent* event) {
    event->accept();
    if (!session_) return;
    const bool precise = isPrecise(*event);
    const bool command = event->modifiers().testFlag(Qt::ControlModifier);
    const QPointF around = toView(event->position());
    if (precise && !command) {
        const QPointF delta = scrolledBy(*event) * pixelRatio();
        setPan(session_->view.pan + QPointF(delta.x(), -delta.y()));
    } else {
        const double lines = event->angleDelta().y() * QApplication::wheelScrollLines() / double(kWheelNotch);
        const double exponent = precise ? scrolledBy(*event).y() / 100 : lines / 10;
        setZoom(session_->view.zoom * std::exp2(exponent), around);
    }
    lastMouseView_ = around;
    updateCursor(around);
}

// --- Fingers

/// One finger does nothing: it is as often a hand that rests as one that means something. True when the event is taken:
/// what is not taken comes again as a mouse.
bool CanvasView::touched(const QTouchEvent& event) {
    if (event.deviceType() != QInputDevice::DeviceType::TouchScreen) return false;
    if (event.type() == QEvent::TouchBegin) {
        grip_.reset();
        fingersRest_ = !session_ || !phase_.isIdle() || input_.isPenNear(now());
    }
    const std::vector<Finger> down = fingersOf(event);
    if (grip_ && !grip_->isOf(down)) endGrip(event.type() != QEvent::TouchCancel && down.size() < 2);
    if (fingersRest_ || down.size() != 2) return true;
    const std::array view{toView(down[0].place), toView(down[1].place)};
    if (!grip_) {
        grip_ = FingerGrip{{down[0].id, down[1].id},
                           {canvasPoint(view[0]), canvasPoint(view[1])},
                           session_->view,
                           session_->view,
                           now()};
        return true;
    }
    noteMotion();
    applyView(transform_.gripped(grip_->canvas, view));
    grip_->latest = session_->view;
    return true;
}

void CanvasView::endGrip(bool lifted) {
    grip_.reset();
    const double rotation = session_->view.rotation, straight = std::round(rotation / 90) * 90;
    // A picture that is a little off is drawn soft, and nobody meant it.
    if (lifted && rotation != straight && std::abs(rotation - straight) <= kNearlyStraight)
        rotateView(straight - rotation);
}

void CanvasView::penIsNear() {
    input_.penHandled(now());
    // What fingers did just before was the hand that brought the pen.
    const bool wasThatHand =
        grip_ && session_ && session_->view == grip_->latest && now() - grip_->since < PenInput::kPenNear;
    if (wasThatHand) applyView(grip_->before);
    restFingers();
}

void CanvasView::restFingers() {
    grip_.reset();
    fingersRest_ = true;
}

} // namespace qirn
