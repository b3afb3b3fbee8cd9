// How the picture lies in the view: device pixels, fit, zoom, pan and rotation.
#include "app/canvas/CanvasView.h"

#include "app/model/CanvasStatus.h"
#include "app/model/PaintModel.h"
#include "core/PaintDocument.h"

#include <cmath>

namespace qirn {

namespace {

constexpr double kFitMargin = 60; // logical points, both sides together
constexpr double kLeastSide = 10; // view points; a smaller view is still coming up

} // namespace

// At a fractional ratio a widget's corner can fall between two device pixels; the view starts at the nearest whole one, so
// that a canvas pixel at 100% is exactly one device pixel.

QPointF CanvasView::deviceOffset() const {
    const QPointF corner = QPointF(mapTo(window(), QPoint(0, 0))) * pixelRatio();
    return {std::round(corner.x()) - corner.x(), std::round(corner.y()) - corner.y()};
}

QSizeF CanvasView::deviceSize() const {
    const QPointF corner = QPointF(mapTo(window(), QPoint(0, 0))) * pixelRatio();
    return {std::round(corner.x() + width() * pixelRatio()) - std::round(corner.x()),
            std::round(corner.y() + height() * pixelRatio()) - std::round(corner.y())};
}

QPointF CanvasView::middleInWindow() const {
    const QPointF corner = QPointF(mapTo(window(), QPoint(0, 0))) * pixelRatio() + deviceOffset();
    const QSizeF size = deviceSize();
    return corner + QPointF(size.width(), size.height()) / 2;
}

QPointF CanvasView::toView(QPointF widgetPoint) const {
    return transform_.flippedVertically(widgetPoint * pixelRatio() - deviceOffset());
}

QRect CanvasView::toWidget(const QRectF& device) const {
    const QPointF offset = deviceOffset();
    const double ratio = pixelRatio();
    return QRectF((device.x() + offset.x()) / ratio, (device.y() + offset.y()) / ratio,
                  device.width() / ratio, device.height() / ratio)
        .toAlignedRect();
}

QRegion CanvasView::toWidget(const QRegion& device) const {
    if (pixelRatio() == 1 && deviceOffset().isNull()) return device;
    QRegion region;
    for (const QRect& rect : device) region += toWidget(QRectF(rect));
    return region;
}

QPointF CanvasView::canvasPoint(QPointF viewPoint) const {
    return session_ ? transform_.canvasPoint(viewPoint) : QPointF();
}

QPointF CanvasView::viewPoint(QPointF canvasPoint) const {
    return session_ ? transform_.viewPoint(canvasPoint) : canvasPoint;
}

void CanvasView::fitIfNeeded() {
    const QSizeF size = deviceSize();
    if (!session_ || !session_->needsFit || !isVisible() || size.width() <= kLeastSide ||
        size.height() <= kLeastSide)
        return;
    fit();
    if (session_->atMostFullSize && session_->view.zoom > 1) actualPixels();
    session_->needsFit = true; // until a hand changes the view
}

void CanvasView::followSize() {
    if (!session_ || transform_.viewSize() == deviceSize()) return;
    fitIfNeeded();
    applyViewTransform();
}

void CanvasView::viewResized() {
    fitIfNeeded();
    applyViewTransform();
}

void CanvasView::viewShown() {
    fitIfNeeded();
    applyViewTransform();
    updateAntsTimer();
}

void CanvasView::applyView(const ViewState& state) {
    if (!session_) return;
    session_->view = state;
    session_->needsFit = false;
    applyViewTransform();
}

void CanvasView::applyViewTransform() {
    if (!session_) return;
    const TileGrid& grid = session_->doc().grid();
    const double heightBefore = transform_.viewSize().height();
    transform_ = ViewTransform(deviceSize(), QSizeF(grid.bounds().rectF().size()), session_->view);
    // A pointer at rest stays where it is from the top; view points count from the bottom.
    if (lastMouseView_) lastMouseView_->ry() += transform_.viewSize().height() - heightBefore;
    overlay_.setView(transform_.canvasToWidget(), session_->view.zoom, pixelRatio());
    updateOverlay();
    updateCursor(lastMouseView_);
    model_.status().setView({session_->view.zoom, session_->view.rotation, session_->view.flipView});
    if (lastMouseView_) reportCursor(*lastMouseView_, 0); // another pixel lies under it
    update();
}

void CanvasView::fit() {
    if (!session_ || deviceSize().width() <= kLeastSide) return;
    const TileGrid& grid = session_->doc().grid();
    const ViewTransform now(deviceSize(), QSizeF(grid.bounds().rectF().size()), session_->view);
    applyView(now.fitted(kFitMargin * pixelRatio()));
}

void CanvasView::followCanvas() {
    const bool wasFitted = session_->view == transform_.fitted(kFitMargin * pixelRatio());
    const bool untouched = session_->needsFit;
    presentation_.show(&session_->doc());
    if (wasFitted) fit();
    session_->needsFit = untouched;
    applyViewTransform();
}

void CanvasView::actualPixels() {
    if (!session_) return;
    ViewState state = session_->view;
    state.zoom = 1;
    state.pan = {};
    applyView(state);
}

/// One step alone is drawn smoothly. A second one before the rest timer ends is motion, drawn fast; the timer then draws the
/// last step again.
void CanvasView::noteMotion() {
    presentation_.setInMotion(restTimer_.isActive());
    restTimer_.start();
}

void CanvasView::setPan(QPointF pan) {
    if (!session_) return;
    ViewState state = session_->view;
    state.pan = pan;
    applyView(state);
}

void CanvasView::holdingThePicture(const std::function<void()>& relayout) {
    const QPointF middleBefore = middleInWindow();
    const QSizeF sizeBefore = deviceSize();
    const std::optional<QPointF> pointer = lastMouseView_;
    if (session_) session_->needsFit = false;
    relayout();
    const QPointF moved = middleInWindow() - middleBefore;
    const QPointF shift(-moved.x(), moved.y()); // of what rests on screen, from the view's middle
    const QSizeF grown = deviceSize() - sizeBefore;
    if (pointer) lastMouseView_ = *pointer + shift + QPointF(grown.width(), grown.height()) / 2;
    if (session_) setPan(session_->view.pan + shift);
}

void CanvasView::setZoom(double zoom, std::optional<QPointF> around) {
    if (!session_) return;
    noteMotion();
    applyView(transform_.zoomedTo(zoom, around));
}

void CanvasView::zoomStep(bool in, std::optional<QPointF> around) {
    if (session_) setZoom(nextZoomStop(session_->view.zoom, in), around);
}

void CanvasView::rotateView(double degrees) {
    if (session_) setRotation(std::fmod(session_->view.rotation + degrees, 360));
}

void CanvasView::setRotation(double degrees) {
    if (!session_) return;
    noteMotion();
    applyView(transform_.turnedTo(degrees, session_->view.flipView));
}

void CanvasView::toggleFlipView() {
    if (!session_) return;
    applyView(transform_.turnedTo(session_->view.rotation, !session_->view.flipView));
}

} // namespace qirn
