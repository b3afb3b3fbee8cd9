#include "app/canvas/PenInput.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointingDevice>
#include <QTabletEvent>

namespace qirn {

namespace {

// A desktop can follow a pen event with a mouse event of its own: one that comes this soon is not from a mouse.
constexpr double kMouseAfterPen = 0.05; // seconds

double secondsOf(const QInputEvent& event, double now) {
    return event.timestamp() != 0 ? static_cast<double>(event.timestamp()) / 1000.0 : now;
}

Qt::KeyboardModifier modifierOf(int key) {
    switch (key) {
    case Qt::Key_Shift:
        return Qt::ShiftModifier;
    case Qt::Key_Control:
        return Qt::ControlModifier;
    case Qt::Key_Alt:
        return Qt::AltModifier;
    case Qt::Key_Meta:
        return Qt::MetaModifier;
    default:
        return Qt::NoModifier;
    }
}

} // namespace

PenSample PenInput::sampleOf(const QTabletEvent& event, QPointF view, double now) const {
    PenSample sample;
    sample.view = view;
    sample.pressure =
        std::isfinite(event.pressure()) ? event.pressure() : 1; // a device without a range of its own
    sample.fromPen = true;
    sample.tiltX = std::isfinite(event.xTilt()) ? event.xTilt() : 0;
    sample.tiltY = std::isfinite(event.yTilt()) ? event.yTilt() : 0;
    sample.time = secondsOf(event, now);
    sample.modifiers = event.modifiers() | keysHeld_;
    return sample;
}

std::optional<PenSample> PenInput::sampleOf(const QMouseEvent& event, QPointF view, double now) {
    const QInputDevice::DeviceType device = event.pointingDevice()->type();
    const bool follows =
        event.source() != Qt::MouseEventNotSynthesized || device == QInputDevice::DeviceType::Stylus ||
        device == QInputDevice::DeviceType::TouchScreen || now - lastPenTime_ < kMouseAfterPen;
    if (follows) return std::nullopt;
    // A hand that presses a mouse has put the pen away: its release was lost. While the pen still moves, the press is
    // that of a mouse that was pushed.
    if ((event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonDblClick) &&
        now - lastPenTime_ >= kPenNear)
        setPenDown(false);
    if (penDown_) return std::nullopt;
    PenSample sample;
    sample.view = view;
    sample.time = secondsOf(event, now);
    sample.modifiers = event.modifiers();
    return sample;
}

bool PenInput::comesDown(const QTabletEvent& event) {
    // Qt, which heard of no release, tells of a move here, and not of a press.
    const bool returns = std::exchange(returns_, false) && event.buttons().testFlag(Qt::LeftButton);
    return event.type() == QEvent::TabletPress ? event.button() == Qt::LeftButton : returns;
}

void PenInput::follow(const QKeyEvent& event) {
    const Qt::KeyboardModifier own = modifierOf(event.key());
    if (own != Qt::NoModifier)
        keysHeld_.setFlag(own, event.type() == QEvent::KeyPress);
    else if (event.spontaneous()) // tells of the others as well, should the desktop have kept a release
        keysHeld_ &= event.modifiers();
}

void SpeedPressure::follow(double time, QPointF point) {
    time_ = time;
    point_ = point;
}

double SpeedPressure::next(double time, QPointF point) {
    const double seconds = std::max(time - time_, 0.001);
    const QPointF moved = point - point_;
    const double speed = std::hypot(moved.x(), moved.y()) / seconds; // points a second
    follow(time, point);
    return std::max(std::min(1.2 - speed / 2500, kAtRest), 0.15);
}

double shapedPressure(double raw, double curve) {
    return std::clamp(std::pow(std::clamp(raw, 0.0, 1.0), curve), 0.0, 1.0);
}

} // namespace qirn
