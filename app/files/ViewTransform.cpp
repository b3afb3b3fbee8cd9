#include "app/files/ViewTransform.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

namespace qirn {

namespace {

constexpr double kZoomStops[] = {0.05, 0.1, 0.167, 0.25, 0.333, 0.5, 0.667, 1,  1.5, 2,
                                 3,    4,   6,     8,    12,    16,  24,    32, 48,  64};

/// Canvas (y down) to view (y up), before it is snapped to device pixels.
QTransform unsnapped(QSizeF view, QSizeF canvas, const ViewState& state) {
    // Read from the bottom: the picture's middle to the origin with y turned up, scaled, turned, put in place.
    QTransform t;
    t.translate(view.width() / 2 + state.pan.x(), view.height() / 2 + state.pan.y());
    t.rotate(-state.rotation);
    t.scale(state.flipView ? -state.zoom : state.zoom, -state.zoom);
    t.translate(-canvas.width() / 2, -canvas.height() / 2);
    return t;
}

} // namespace

ViewTransform::ViewTransform(QSizeF viewSize, QSizeF canvasSize, const ViewState& state)
    : viewSize_(viewSize),
      canvasSize_(canvasSize),
      state_(state),
      canvasToView_(unsnapped(viewSize, canvasSize, state)) {
    // The picture's corner falls on a whole device pixel, so that 100% is exact whatever the sizes. Drawing and
    // the pen go through the same value.
    const QPointF corner = canvasToView_.map(QPointF(0, 0));
    const QPointF snap(std::round(corner.x()) - corner.x(), std::round(corner.y()) - corner.y());
    canvasToView_ *= QTransform::fromTranslate(snap.x(), snap.y());
    viewToCanvas_ = canvasToView_.inverted();
    canvasToWidget_ = canvasToView_ * QTransform(1, 0, 0, -1, 0, viewSize.height());
}

ViewState ViewTransform::holding(QPointF viewPoint, ViewState next) const {
    // Without the snap: its rounding would add up over many small steps and let the point wander.
    return moved(unsnapped(viewSize_, canvasSize_, state_).inverted().map(viewPoint), viewPoint, next);
}

ViewState ViewTransform::moved(QPointF canvasPoint, QPointF viewPoint, ViewState next) const {
    next.pan += viewPoint - unsnapped(viewSize_, canvasSize_, next).map(canvasPoint);
    return next;
}

ViewState ViewTransform::zoomedTo(double zoom, std::optional<QPointF> around) const {
    ViewState next = state_;
    next.zoom = std::clamp(zoom, kMinZoom, kMaxZoom);
    return holding(around.value_or(viewMiddle()), next);
}

ViewState ViewTransform::turnedTo(double rotation, bool flipView) const {
    ViewState next = state_;
    next.rotation = rotation;
    next.flipView = flipView;
    return next.pan.isNull() ? next : holding(viewMiddle(), next); // nothing is rounded round the middle
}

ViewState ViewTransform::gripped(const std::array<QPointF, 2>& canvas,
                                 const std::array<QPointF, 2>& view) const {
    const QPointF from = viewPoint(canvas[1]) - viewPoint(canvas[0]), to = view[1] - view[0];
    const double lengthBefore = std::hypot(from.x(), from.y()), length = std::hypot(to.x(), to.y());
    ViewState next = state_;
    if (lengthBefore >= 1 && length >= 1) { // of fingers that lie on each other nothing can be told
        next.zoom = std::clamp(state_.zoom * length / lengthBefore, kMinZoom, kMaxZoom);
        const double turn = std::atan2(from.y(), from.x()) - std::atan2(to.y(), to.x()); // clockwise
        next.rotation = std::fmod(state_.rotation + std::remainder(turn * 180 / std::numbers::pi, 360), 360);
    }
    return moved((canvas[0] + canvas[1]) / 2, (view[0] + view[1]) / 2, next);
}

ViewState ViewTransform::fitted(double margin) const {
    ViewState next = state_;
    next.zoom = std::clamp(std::min((viewSize_.width() - margin) / canvasSize_.width(),
                                    (viewSize_.height() - margin) / canvasSize_.height()),
                           kMinZoom, kMaxZoom);
    next.pan = {};
    next.rotation = 0;
    return next;
}

double nextZoomStop(double zoom, bool in) {
    if (in) {
        const auto above = std::upper_bound(std::begin(kZoomStops), std::end(kZoomStops), zoom * 1.01);
        return above == std::end(kZoomStops) ? kMaxZoom : *above;
    }
    const auto notBelow = std::lower_bound(std::begin(kZoomStops), std::end(kZoomStops), zoom / 1.01);
    return notBelow == std::begin(kZoomStops) ? kZoomStops[0] : *std::prev(notBelow);
}

} // namespace qirn
