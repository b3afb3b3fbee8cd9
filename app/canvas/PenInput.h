#pragma once
#include <QPointF>
#include <Qt>

namespace qirn {

/// What one mouse or pen event brings, in the canvas view's own terms.
struct PenSample {
    QPointF view;         ///< Device pixels, y up.
    double pressure = 1;  ///< 0 to 1 as the device says it.
    bool fromPen = false; ///< A mouse has no pressure of its own.
    double tiltX = 0;     ///< Degrees.
    double tiltY = 0;
    double time = 0; ///< Seconds.
    Qt::KeyboardModifiers modifiers;
    int clicks = 1;
};

/// Pressure made of a mouse's speed: fast is thin. Points are logical ones, so that the same hand draws the same line
/// on any display.
class SpeedPressure {
public:
    /// Takes the event as the latest one without asking for a pressure.
    void follow(double time, QPointF point);
    /// 0.15 to 1.0, by the way from the latest event, which this one then is.
    double next(double time, QPointF point);

    static constexpr double kAtRest = 1;

private:
    double time_ = 0;
    QPointF point_;
};

/// The pressure that reaches the brush: clamped to 0 to 1, then raised to the preference's exponent.
double shapedPressure(double raw, double curve);

} // namespace qirn
