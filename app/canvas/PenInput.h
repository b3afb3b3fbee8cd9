#pragma once
#include <optional>
#include <utility>

#include <QPointF>
#include <Qt>

class QKeyEvent;
class QMouseEvent;
class QTabletEvent;

namespace qirn {

/// What one mouse or pen event says, in the canvas view's own terms.
struct PenSample {
    QPointF view;         ///< Device pixels, y up.
    double pressure = 1;  ///< 0 to 1, as the device measures it.
    bool fromPen = false; ///< A mouse has no pressure of its own.
    double tiltX = 0;     ///< Degrees.
    double tiltY = 0;
    double time = 0; ///< Seconds.
    Qt::KeyboardModifiers modifiers;
    int clicks = 1;
};

/// Makes samples of the events of pen and mouse, and follows which of the two is in use. Times are seconds of the canvas's
/// own clock.
class PenInput {
public:
    PenSample sampleOf(const QTabletEvent& event, QPointF view, double now) const;
    /// Nothing for a mouse event that the desktop made of a pen or touch event. A real press of the mouse tells that a pen
    /// that has long said nothing is up.
    std::optional<PenSample> sampleOf(const QMouseEvent& event, QPointF view, double now);

    bool isPenDown() const { return penDown_; }
    void setPenDown(bool down) { penDown_ = pressWaits_ = down; }
    void setPenInReach(bool in) {
        returns_ = in && leftDown_;
        leftDown_ = !in && penDown_;
    }
    /// True for a press of its tip, and for the first event of one that left the reach of the tablet down and came back so.
    bool comesDown(const QTabletEvent& event);
    bool takePress() { return std::exchange(pressWaits_, false); } ///< True once after the pen came down.
    void penHandled(double now) { lastPenTime_ = now; } ///< After a pen event and all that it painted.
    /// Touch is the hand that holds it then, or about to.
    bool isPenNear(double now) const { return penDown_ || now - lastPenTime_ < kPenNear; }
    void follow(const QKeyEvent& event);
    void keysLost() { keysHeld_ = {}; } ///< Their releases go elsewhere.

    /// Seconds for which a pen that says nothing is still near. A pen in a hand reports without a pause, and between the
    /// strokes of one drawing is out of reach for less; to change from it to the fingers takes a hand longer.
    static constexpr double kPenNear = 0.5;

private:
    bool penDown_ = false;
    bool pressWaits_ = false;
    bool leftDown_ = false, returns_ = false;
    double lastPenTime_ = -1;
    Qt::KeyboardModifiers keysHeld_; // pen events have no modifiers on some desktops
};

/// Pressure from a mouse's speed: fast is thin. Points are logical ones, so that the same hand draws the same line on any
/// display.
class SpeedPressure {
public:
    /// Notes an event that needs no pressure; the next one is measured from it.
    void follow(double time, QPointF point);
    /// 0.15 to 1.0, from the speed since the previous event.
    double next(double time, QPointF point);

    static constexpr double kAtRest = 1;

private:
    double time_ = 0;
    QPointF point_;
};

/// The pressure that reaches the brush: clamped to 0 to 1, then raised to the preference's exponent.
double shapedPressure(double raw, double curve);

} // namespace qirn
