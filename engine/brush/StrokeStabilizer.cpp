#include "brush/StrokeStabilizer.h"

#include "platform/CheckedMath.h"

#include <algorithm>
#include <cmath>

namespace qirn {

StrokePoint StrokeStabilizer::follow(const StrokePoint& smoothed, const StrokePoint& sample,
                                     double strength) {
    const double k = 1 - 0.95 * std::sqrt(strength / 100);
    const double kPressure = std::max(k, 0.3);
    StrokePoint next = smoothed;
    next.x += (sample.x - next.x) * k;
    next.y += (sample.y - next.y) * k;
    next.pressure += (sample.pressure - next.pressure) * kPressure;
    next.time = sample.time;
    return next;
}

std::vector<StrokePoint> StrokeStabilizer::catchUp(const StrokePoint& smoothed, const StrokePoint& pen) {
    const double half = std::hypot(pen.x - smoothed.x, pen.y - smoothed.y) * 0.5;
    const int64_t steps = std::max<int64_t>(1, checkedWhole(half));
    std::vector<StrokePoint> points;
    points.reserve(checkedSize(steps));
    StrokePoint point = smoothed;
    for (int64_t i = 1; i <= steps; ++i) {
        // A fraction of the remaining distance, not of the whole: the line speeds up, and the last step ends at the
        // pen.
        const double t = static_cast<double>(i) / static_cast<double>(steps);
        point.x += (pen.x - point.x) * t;
        point.y += (pen.y - point.y) * t;
        points.push_back(point);
    }
    return points;
}

} // namespace qirn
