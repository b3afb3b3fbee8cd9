#include "platform/PathCoverage.h"

#include "platform/Require.h"

#include <algorithm>
#include <cmath>
#include <new>

#include <QPainter>
#include <QTransform>

namespace qirn {

namespace {

constexpr int kBandRows = 1024; // of a whole mask, drawn at a time
/// Beyond this coordinate or side QPainter clips a path itself: inexactly, and slowly for many corners.
constexpr double kPainterReach = 32767;
/// Where a path that reaches too far is clipped: near enough that QPainter never clips it again, whatever part of the
/// canvas is drawn.
constexpr double kCutMargin = 1024;
constexpr double kFarthest = 1e9; // corners beyond it would spoil the cut's arithmetic

/// The path with its curves flattened to chords, at a sixteenth of QPainter's tolerance: its own chords take up to 17
/// of 255 off the edge of a small ellipse, these less than 5, which is its error on straight edges.
QList<QPolygonF> outlinesOf(const QPainterPath& path) {
    constexpr double kFineness = 16;
    QList<QPolygonF> outlines = path.toSubpathPolygons(QTransform::fromScale(kFineness, kFineness));
    const QTransform back = QTransform::fromScale(1 / kFineness, 1 / kFineness);
    for (QPolygonF& outline : outlines) outline = back.map(outline);
    return outlines;
}

QRectF boxOf(const QList<QPolygonF>& outlines) {
    QRectF box;
    for (const QPolygonF& outline : outlines) {
        const QRectF own = outline.boundingRect();
        // Not QRectF's union, to which a box without width or height is nothing.
        box = box.isNull()
                  ? own
                  : QRectF(QPointF(std::min(box.left(), own.left()), std::min(box.top(), own.top())),
                           QPointF(std::max(box.right(), own.right()), std::max(box.bottom(), own.bottom())));
    }
    return box;
}

/// Clips an outline at a line across an axis by moving every point with `sign` x (coordinate - edge) above 0 onto the
/// line: the winding number of every point on the near side stays the same.
QPolygonF cutAt(const QPolygonF& outline, double (QPointF::*coordinate)() const, double edge, double sign) {
    QPolygonF cut;
    QPointF before = outline.back();
    for (const QPointF& corner : outline) {
        const double from = sign * ((before.*coordinate)() - edge),
                     to = sign * ((corner.*coordinate)() - edge);
        if ((from > 0) != (to > 0)) cut += before + (corner - before) * (from / (from - to));
        if (!(to > 0)) cut += corner;
        before = corner;
    }
    return cut;
}

QPolygonF cutTo(QPolygonF outline, const QRectF& rect) {
    for (QPointF& corner : outline) {
        corner = {std::clamp(corner.x(), -kFarthest, kFarthest),
                  std::clamp(corner.y(), -kFarthest, kFarthest)};
    }
    if (!outline.isEmpty()) outline = cutAt(outline, &QPointF::x, rect.left(), -1);
    if (!outline.isEmpty()) outline = cutAt(outline, &QPointF::x, rect.right(), 1);
    if (!outline.isEmpty()) outline = cutAt(outline, &QPointF::y, rect.top(), -1);
    if (!outline.isEmpty()) outline = cutAt(outline, &QPointF::y, rect.bottom(), 1);
    return outline;
}

/// QPainter draws on a grid of 1/64 pixels. Corners that lie on it are drawn alike wherever the origin is.
double onPainterGrid(double coordinate) {
    return qRound(coordinate * 64) / 64.0;
}

} // namespace

PathCoverage::PathCoverage(const QPainterPath& path, Antialias antialias, int64_t width, int64_t height)
    : outlines_(outlinesOf(path)),
      antialias_(antialias == Antialias::yes) {
    require(width >= 1 && height >= 1 && width <= 32767 && height <= 32767);
    const auto w = static_cast<double>(width), h = static_cast<double>(height);
    const QRectF canvas(0, 0, w, h), whole = boxOf(outlines_);
    // For lower rows the path is moved up.
    const QRectF drawable(QPointF(-kPainterReach, h - kPainterReach), QPointF(kPainterReach, kPainterReach));
    const bool fits =
        drawable.contains(whole) && whole.width() <= kPainterReach && whole.height() <= kPainterReach;
    for (QPolygonF& outline : outlines_) {
        if (!fits)
            outline = cutTo(outline, canvas.marginsAdded({kCutMargin, kCutMargin, kCutMargin, kCutMargin}));
        for (QPointF& corner : outline) corner = {onPainterGrid(corner.x()), onPainterGrid(corner.y())};
    }
    const QRectF box = boxOf(outlines_);
    if (!(box.width() > 0 && box.height() > 0)) return;
    const auto within = [](double edge, double side) {
        return static_cast<int>(std::clamp(edge, 0.0, side));
    };
    const QPoint first(within(std::floor(box.left()), w), within(std::floor(box.top()), h));
    reach_ = {first, QSize(within(std::ceil(box.right()) + 1, w) - first.x(),
                           within(std::ceil(box.bottom()) + 1, h) - first.y())};
}

QImage PathCoverage::rows(int top, int count) const {
    QImage image(reach_.width(), count, QImage::Format_Alpha8);
    if (image.isNull()) throw std::bad_alloc();
    image.fill(0);
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    for (const QPolygonF& outline : outlines_) path.addPolygon(outline.translated(-reach_.x(), -top));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, antialias_);
    painter.fillPath(path, Qt::white);
    return image;
}

void fillPathCoverage(const QPainterPath& path, Antialias antialias, uint8_t* mask, int64_t width,
                      int64_t height) {
    const PathCoverage coverage(path, antialias, width, height);
    const QRect& reach = coverage.reach();
    for (int top = reach.top(); !reach.isEmpty() && top <= reach.bottom(); top += kBandRows) {
        const int rows = std::min(kBandRows, reach.bottom() + 1 - top);
        const QImage band = coverage.rows(top, rows);
        for (int y = 0; y < rows; ++y)
            std::copy_n(band.constScanLine(y), reach.width(), mask + (top + y) * width + reach.x());
    }
}

} // namespace qirn
