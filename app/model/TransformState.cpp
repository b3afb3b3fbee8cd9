#include "app/model/TransformState.h"

#include <algorithm>
#include <cmath>

namespace qirn {

namespace {

constexpr double kLeastArm = 0.5; // canvas pixels; a shorter arm has no direction
constexpr double kAngleStep = 15; // degrees
constexpr double kDegrees = 57.295779513082320876798154814105; // of a radian

double length(QPointF v) {
    return std::hypot(v.x(), v.y());
}

} // namespace

TransformState::TransformState(std::shared_ptr<const Floating> lifted)
    : floating(std::move(lifted)),
      center(floating->origin.rectF().center()) {}

double TransformState::width() const {
    return static_cast<double>(floating->origin.w);
}
double TransformState::height() const {
    return static_cast<double>(floating->origin.h);
}

QTransform TransformState::matrix() const {
    QTransform t;
    t.translate(shownCenter().x(), shownCenter().y());
    t.rotate(angle);
    t.scale(flipH ? -scaleX : scaleX, flipV ? -scaleY : scaleY);
    t.translate(-width() / 2, -height() / 2);
    return t;
}

std::array<QPointF, 4> TransformState::corners() const {
    const QTransform m = matrix();
    return {m.map(QPointF(0, 0)), m.map(QPointF(width(), 0)), m.map(QPointF(width(), height())),
            m.map(QPointF(0, height()))};
}

QPointF TransformState::topMiddle() const {
    const auto c = corners();
    return (c[0] + c[1]) / 2;
}

QPointF TransformState::rotateHandle(double distance) const {
    const QPointF arm = topMiddle() - shownCenter();
    const double divisor = length(arm) < 1 ? 1 : length(arm);
    return topMiddle() + arm / divisor * distance;
}

TransformState::Offset TransformState::wholeOffset() const {
    const QPointF way = center - floating->origin.rectF().center();
    return {std::llround(way.x()), std::llround(way.y())};
}

QPointF TransformState::shownCenter() const {
    if (!isTranslation()) return center;
    const auto [dx, dy] = wholeOffset();
    return floating->origin.rectF().center() + QPointF(static_cast<double>(dx), static_cast<double>(dy));
}

TransformState scaledBy(const TransformState& base, QPointF from, QPointF to, bool freeAxes) {
    TransformState next = base;
    QPointF s = from - base.center, q = to - base.center;
    if (!(length(s) > kLeastArm)) return next;
    if (!freeAxes) {
        const double f = length(q) / length(s);
        next.scaleX = std::max(base.scaleX * f, kLeastTransformScale);
        next.scaleY = std::max(base.scaleY * f, kLeastTransformScale);
        return next;
    }
    QTransform intoBox;
    intoBox.rotate(-base.angle);
    s = intoBox.map(s);
    q = intoBox.map(q);
    if (std::abs(s.x()) > kLeastArm)
        next.scaleX = std::max(std::abs(q.x() / s.x()) * base.scaleX, kLeastTransformScale);
    if (std::abs(s.y()) > kLeastArm)
        next.scaleY = std::max(std::abs(q.y() / s.y()) * base.scaleY, kLeastTransformScale);
    return next;
}

TransformState turnedBy(const TransformState& base, QPointF from, QPointF to, bool steps) {
    const auto direction = [&](QPointF p) {
        return std::atan2(p.y() - base.center.y(), p.x() - base.center.x()) * kDegrees;
    };
    TransformState next = base;
    next.angle = base.angle + direction(to) - direction(from);
    if (steps) next.angle = std::round(next.angle / kAngleStep) * kAngleStep;
    return next;
}

} // namespace qirn
