#include "app/canvas/PenInput.h"

#include <algorithm>
#include <cmath>

namespace qirn {

void SpeedPressure::follow(double time, QPointF point) {
    time_ = time;
    point_ = point;
}

double SpeedPressure::next(double time, QPointF point) {
    const double dt = std::max(time - time_, 0.001);
    const QPointF way = point - point_;
    const double speed = std::hypot(way.x(), way.y()) / dt; // points a second
    follow(time, point);
    return std::max(std::min(1.2 - speed / 2500, kAtRest), 0.15);
}

double shapedPressure(double raw, double curve) {
    return std::clamp(std::pow(std::clamp(raw, 0.0, 1.0), curve), 0.0, 1.0);
}

} // namespace qirn
