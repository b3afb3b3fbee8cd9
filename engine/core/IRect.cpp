#include "core/IRect.h"

#include "platform/CheckedMath.h"

#include <algorithm>
#include <cmath>

namespace qirn {

IRect IRect::covering(const QRectF& rect) {
    const QRectF r = rect.normalized();
    const double edges[] = {r.left(), r.top(), r.left() + r.width(), r.top() + r.height()};
    for (double edge : edges) {
        if (!std::isfinite(edge)) return {};
    }
    if (rect.isNull()) return {};
    const int64_t left = checkedWhole(std::floor(edges[0]));
    const int64_t top = checkedWhole(std::floor(edges[1]));
    return {left, top, checkedSubtract(checkedWhole(std::ceil(edges[2])), left),
            checkedSubtract(checkedWhole(std::ceil(edges[3])), top)};
}

int64_t IRect::maxX() const {
    return checkedAdd(x, w);
}

int64_t IRect::maxY() const {
    return checkedAdd(y, h);
}

IRect IRect::intersection(const IRect& other) const {
    const int64_t left = std::max(x, other.x);
    const int64_t top = std::max(y, other.y);
    const int64_t right = std::min(maxX(), other.maxX());
    const int64_t bottom = std::min(maxY(), other.maxY());
    if (left >= right || top >= bottom) return {};
    return {left, top, checkedSubtract(right, left), checkedSubtract(bottom, top)};
}

IRect IRect::united(const IRect& other) const {
    if (isEmpty()) return other;
    if (other.isEmpty()) return *this;
    const int64_t left = std::min(x, other.x);
    const int64_t top = std::min(y, other.y);
    return {left, top, checkedSubtract(std::max(maxX(), other.maxX()), left),
            checkedSubtract(std::max(maxY(), other.maxY()), top)};
}

IRect IRect::insetBy(int64_t d) const {
    const int64_t both = checkedMultiply(d, 2);
    return {checkedAdd(x, d), checkedAdd(y, d), checkedSubtract(w, both), checkedSubtract(h, both)};
}

QRectF IRect::rectF() const {
    return {static_cast<double>(x), static_cast<double>(y), static_cast<double>(w), static_cast<double>(h)};
}

QString IRect::description() const {
    return QStringLiteral("(%1,%2 %3x%4)").arg(x).arg(y).arg(w).arg(h);
}

} // namespace qirn
