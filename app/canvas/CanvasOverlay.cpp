#include "app/canvas/CanvasOverlay.h"

#include "app/files/ViewTransform.h"

#include <algorithm>
#include <cmath>

#include <QPainter>

namespace qirn {

namespace {

constexpr double kAntsDash = 4;          // logical points, on and off
constexpr double kAntsSpeed = 8 / 0.6;   // logical points a second
constexpr int kLongOutline = 2000;       // path elements from which a step costs milliseconds
constexpr double kPreviewWidth = 1.5;    // logical points
constexpr double kRingShadowWidth = 2.6; // the white line and 0.8 points of shadow on both sides

constexpr double kHandleHalfSide = 5, kRotateRadius = 6.5; // logical points
const QColor kHandleFill = QColor::fromRgbF(0.9f, 0.1f, 0.2f, 0.95f);

QPen pen(const QColor& color, double width) {
    return {color, width, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin};
}

} // namespace

void CanvasOverlay::setView(const QTransform& canvasToWidget, double zoom, double pixelRatio) {
    canvasToWidget_ = canvasToWidget;
    zoom_ = std::max(zoom, kMinZoom);
    ratio_ = pixelRatio;
    antsPath_.reset();
}

void CanvasOverlay::setSelection(SelectionRef selection) {
    if (selection == selection_) return;
    selection_ = std::move(selection);
    antsPath_.reset();
}

void CanvasOverlay::setPreview(const QPainterPath& path) {
    preview_ = path;
}

void CanvasOverlay::setTransform(const std::optional<TransformState>& transform) {
    if (!transform || !transform_ || transform_->floating != transform->floating) floatingImage_.clear();
    transform_ = transform;
}

QPainterPath CanvasOverlay::handlesPath() const {
    const double point = ratio_ / zoom_; // canvas pixels
    const auto corners = transform_->corners();
    QPainterPath path;
    path.addPolygon(canvasToWidget_.map(QPolygonF(QList<QPointF>(corners.begin(), corners.end()))));
    path.closeSubpath();
    for (const QPointF& corner : corners) {
        const QPointF center = canvasToWidget_.map(corner);
        path.addRect(QRectF(center.x() - kHandleHalfSide * ratio_, center.y() - kHandleHalfSide * ratio_,
                            2 * kHandleHalfSide * ratio_, 2 * kHandleHalfSide * ratio_));
    }
    const QPointF rotate = canvasToWidget_.map(transform_->rotateHandle(kRotateHandleDistance * point));
    path.moveTo(canvasToWidget_.map(transform_->topMiddle()));
    path.lineTo(rotate);
    path.addEllipse(rotate, kRotateRadius * ratio_, kRotateRadius * ratio_);
    return path;
}

void CanvasOverlay::paintTransform(QPainter& painter) const {
    const QTransform device = painter.transform();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, zoom_ < 2);
    floatingImage_.paint(painter, *transform_->floating, transform_->matrix() * canvasToWidget_);
    painter.setTransform(device);

    const QPainterPath handles = handlesPath();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(pen(QColor(0, 0, 0, 150), 3 * ratio_));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(handles);
    painter.setPen(pen(Qt::white, ratio_));
    // Only the handles are filled; the first part of the path is the box.
    painter.drawPath(handles);
    painter.setBrush(kHandleFill);
    for (const QPolygonF& part : handles.toSubpathPolygons().mid(1)) {
        if (part.size() > 2) painter.drawPolygon(part);
    }
    painter.setBrush(Qt::NoBrush);
}

QRegion CanvasOverlay::transformRegion() const {
    if (!transform_) return {};
    const double reach = 4 * ratio_;
    const QRectF pixels = (transform_->matrix() * canvasToWidget_)
                              .mapRect(QRectF(0, 0, transform_->width(), transform_->height()));
    return (pixels | handlesPath().boundingRect()).adjusted(-reach, -reach, reach, reach).toAlignedRect();
}

const QPainterPath& CanvasOverlay::antsPath() const {
    if (!antsPath_) antsPath_ = canvasToWidget_.map(selection_->outline());
    return *antsPath_;
}

int CanvasOverlay::antsInterval() const {
    return selection_ && selection_->outline().elementCount() > kLongOutline ? 200 : 50;
}

void CanvasOverlay::advanceAnts(double seconds) {
    antsPhase_ = std::fmod(antsPhase_ + kAntsSpeed * seconds, 2 * kAntsDash);
}

void CanvasOverlay::paint(QPainter& painter) const {
    painter.setBrush(Qt::NoBrush);
    painter.setRenderHint(QPainter::Antialiasing, true);
    if (transform_) paintTransform(painter);
    if (selection_) {
        painter.setPen(pen(Qt::white, ratio_));
        painter.drawPath(antsPath());
        QPen black = pen(Qt::black, ratio_);
        black.setDashPattern({kAntsDash, kAntsDash}); // in widths of the pen
        black.setDashOffset(antsPhase_);
        painter.setPen(black);
        painter.drawPath(antsPath());
    }
    if (!preview_.isEmpty()) {
        const QPainterPath path = canvasToWidget_.map(preview_);
        painter.setPen(pen(QColor(0, 0, 0, 150), (kPreviewWidth + 1.5) * ratio_));
        painter.drawPath(path);
        painter.setPen(pen(Qt::white, kPreviewWidth * ratio_));
        painter.drawPath(path);
    }
    if (ring_) {
        const double radius = ring_->diameter / 2;
        painter.setPen(pen(QColor(0, 0, 0, 140), kRingShadowWidth * ratio_));
        painter.drawEllipse(ring_->center, radius, radius);
        painter.setPen(pen(Qt::white, ratio_));
        painter.drawEllipse(ring_->center, radius, radius);
    }
}

QRegion CanvasOverlay::ringRegion() const {
    if (!ring_) return {};
    const double radius = ring_->diameter / 2, width = 2 * ratio_ + 1;
    const auto square = [&](double r) {
        return QRectF(ring_->center.x() - r, ring_->center.y() - r, 2 * r, 2 * r).toAlignedRect();
    };
    // Qt's elliptic regions are polygons: with a margin the line is inside the annulus all round.
    const double inner = radius - width - 2;
    if (inner < 24) return QRegion(square(radius + width));
    return QRegion(square(radius + width + 1), QRegion::Ellipse) - QRegion(square(inner), QRegion::Ellipse);
}

QRegion CanvasOverlay::antsRegion() const {
    return selection_ ? outlineRegion(antsPath()) : QRegion();
}

QRegion CanvasOverlay::previewRegion() const {
    return preview_.isEmpty() ? QRegion() : outlineRegion(canvasToWidget_.map(preview_));
}

QRegion CanvasOverlay::outlineRegion(const QPainterPath& path) const {
    const int width = static_cast<int>(std::ceil(3 * ratio_));
    const QRect box = path.boundingRect().toAlignedRect().adjusted(-width, -width, width, width);
    const bool upright = canvasToWidget_.type() <= QTransform::TxScale;
    // A rectangle that is parallel to the screen covers a frame. Of any other outline the whole box is taken.
    if (!upright || path.elementCount() != 5) return box;
    return QRegion(box) - QRegion(box.adjusted(2 * width, 2 * width, -2 * width, -2 * width));
}

} // namespace qirn
