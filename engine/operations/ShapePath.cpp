#include "operations/ShapePath.h"

#include "platform/CheckedMath.h"
#include "platform/Trigonometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include <QPainterPathStroker>

namespace qirn {

namespace {

using std::numbers::pi;

constexpr double kCornerRadius = 0.18;  // of the smaller side
constexpr double kStarInside = 0.45;    // radius of a star's inner points
constexpr double kArrowAngle = 0.45;    // radians between the line and each stroke of its head
constexpr double kLeastArrow = 10;      // pixels
constexpr int64_t kMostPixels = 39'999; // a side
constexpr int64_t kMaskBytes = 1 << 24; // of coverage held at a time

QPointF toEighthOfACircle(QPointF a, QPointF b) {
    const QPointF drag = b - a;
    const SineCosine t = sineCosine(std::round(std::atan2(drag.y(), drag.x()) / (pi / 4)) * (pi / 4));
    return a + std::hypot(drag.x(), drag.y()) * QPointF(t.cosine, t.sine);
}

/// Corners on an ellipse, the first at the top; every second one lies at `inner` of the radius.
QPainterPath cornersIn(const QRectF& box, int count, double inner) {
    QPolygonF corners;
    for (int i = 0; i < count; ++i) {
        const SineCosine t = sineCosine(2 * pi * i / count - pi / 2);
        const double k = i % 2 == 0 ? 1 : inner;
        corners += box.center() + QPointF(t.cosine * box.width() * 0.5 * k, t.sine * box.height() * 0.5 * k);
    }
    QPainterPath path;
    path.addPolygon(corners);
    path.closeSubpath();
    return path;
}

void addArrowHead(QPainterPath& path, QPointF a, QPointF b, double lineWidth) {
    const QPointF line = b - a;
    const QPointF back = line / -std::hypot(line.x(), line.y()) * std::max(4 * lineWidth, kLeastArrow);
    const SineCosine t = sineCosine(kArrowAngle);
    path.moveTo(b +
                QPointF(back.x() * t.cosine + back.y() * t.sine, back.y() * t.cosine - back.x() * t.sine));
    path.lineTo(b);
    path.lineTo(b +
                QPointF(back.x() * t.cosine - back.y() * t.sine, back.y() * t.cosine + back.x() * t.sine));
}

QPainterPath outlineOf(const QPainterPath& path, double lineWidth) {
    QPainterPathStroker stroker;
    stroker.setWidth(lineWidth);
    stroker.setJoinStyle(Qt::RoundJoin);
    stroker.setCapStyle(Qt::RoundCap);
    // Tolerance of the curves that approximate the outline, in pixels: the default of a quarter of a pixel is
    // visible.
    stroker.setCurveThreshold(1.0 / 2048);
    return stroker.createStroke(path);
}

/// Source-over of one color through a coverage, in 32-bit floats.
void lay(const PaintColor& color, const uint8_t* coverage, uint8_t* pixels, int64_t count) {
    const float straight[] = {static_cast<float>(color.r), static_cast<float>(color.g),
                              static_cast<float>(color.b), 1};
    const auto alpha = static_cast<float>(color.a);
    for (int64_t i = 0; i < count; ++i, pixels += 4) {
        if (coverage[i] == 0) continue;
        const float k = static_cast<float>(coverage[i]) * alpha / 255;
        for (int c = 0; c < 4; ++c) {
            const float v = k * straight[c] + (1 - k) * (static_cast<float>(pixels[c]) / 255);
            pixels[c] = static_cast<uint8_t>(static_cast<int>(std::min(v * 255 + 0.5f, 255.0f)));
        }
    }
}

void layPath(const QPainterPath& path, const PaintColor& color, Antialias antialias,
             const PlacedPixels& out) {
    // In parts, which bounds the memory for the coverage of a shape on a huge canvas.
    constexpr int64_t kMostColumns = 20'000;
    for (int64_t left = 0; left < out.rect.w; left += kMostColumns) {
        const int64_t columns = std::min(kMostColumns, out.rect.w - left);
        const int64_t bandRows = kMaskBytes / columns;
        for (int64_t top = 0; top < out.rect.h;) {
            const int64_t rows = std::min({bandRows, kMostColumns, out.rect.h - top});
            std::vector<uint8_t> mask(checkedSize(columns * rows));
            const QPainterPath moved = path.translated(-static_cast<double>(out.rect.x + left),
                                                       -static_cast<double>(out.rect.y + top));
            fillPathCoverage(moved, antialias, mask.data(), columns, rows);
            for (int64_t y = 0; y < rows; ++y) {
                lay(color, mask.data() + y * columns, out.buffer->row(top + y) + left * 4, columns);
            }
            top += rows;
        }
    }
}

} // namespace

QPointF squareCorner(QPointF a, QPointF b) {
    const QPointF drag = b - a;
    const double side = std::max(std::fabs(drag.x()), std::fabs(drag.y()));
    return a + QPointF(drag.x() < 0 ? -side : side, drag.y() < 0 ? -side : side);
}

std::optional<QPainterPath> shapePath(ShapeKind kind, QPointF a, QPointF b, Constrain constrain,
                                      double lineWidth) {
    if (constrain == Constrain::yes) b = isOpen(kind) ? toEighthOfACircle(a, b) : squareCorner(a, b);
    const QRectF box = QRectF(a, b).normalized();
    if (!(box.width() >= 1) && !(box.height() >= 1)) return std::nullopt;
    QPainterPath path;
    switch (kind) {
    case ShapeKind::rectangle:
        path.addRect(box);
        break;
    case ShapeKind::roundedRect: {
        const double radius = kCornerRadius * std::min(box.width(), box.height());
        path.addRoundedRect(box, radius, radius);
        break;
    }
    case ShapeKind::ellipse:
        path.addEllipse(box);
        break;
    case ShapeKind::line:
    case ShapeKind::arrow:
        path.moveTo(a);
        path.lineTo(b);
        if (kind == ShapeKind::arrow) addArrowHead(path, a, b, lineWidth);
        break;
    case ShapeKind::star:
        return cornersIn(box, 10, kStarInside);
    case ShapeKind::polygon:
        return cornersIn(box, 6, 1);
    }
    return path;
}

std::optional<PlacedPixels> renderShape(const QPainterPath& path, const std::optional<PaintColor>& fill,
                                        const std::optional<PaintColor>& stroke, double lineWidth,
                                        Antialias antialias) {
    const QRectF box = path.boundingRect();
    const double pad = std::ceil(std::max(lineWidth, 0.0)) + 2;
    const double farthest = 1e15; // beyond it a double does not resolve pixels
    if (!(pad < kMostPixels && box.width() < kMostPixels && box.height() < kMostPixels &&
          std::fabs(box.x()) < farthest && std::fabs(box.y()) < farthest)) {
        return std::nullopt;
    }
    const IRect rect = IRect::covering(box).insetBy(-static_cast<int64_t>(pad));
    if (rect.w > kMostPixels || rect.h > kMostPixels) return std::nullopt;
    PlacedPixels shape{std::make_shared<RGBABuffer>(rect.w, rect.h), rect};
    if (fill) layPath(path, *fill, antialias, shape);
    if (stroke && lineWidth > 0) layPath(outlineOf(path, lineWidth), *stroke, antialias, shape);
    return shape;
}

} // namespace qirn
