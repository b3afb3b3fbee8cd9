#include "app/canvas/CanvasView.h"

#include "app/desktop/Failures.h"
#include "app/files/DocSession.h"
#include "app/model/Brushes.h"
#include "app/model/CanvasStatus.h"
#include "app/model/Messages.h"
#include "app/model/PaintModel.h"
#include "app/model/PendingTransform.h"
#include "brush/BrushStroke.h"
#include "core/PaintDocument.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <new>
#include <utility>

#include <QApplication>
#include <QDateTime>
#include <QPaintEvent>
#include <QPainter>

namespace qirn {

namespace {

constexpr double kFitMargin = 60;     // logical points, both sides together
constexpr double kLeastSide = 10;     // a smaller view is still coming up
constexpr int kMostRepaintRects = 24; // more are painted as their box
constexpr int kBackgroundGrey = 31;   // white 0.12
constexpr double kSecondsBetweenReports = 0.05;
constexpr std::chrono::milliseconds kRestAfter(150); // of no turn or zoom

uint64_t clockSeed() {
    return static_cast<uint64_t>(QDateTime::currentMSecsSinceEpoch()) & 0xFFFFFFu;
}

double steadySeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

CanvasView::CanvasView(PaintModel& model, QWidget* parent)
    : QWidget(parent),
      strokeSeed(clockSeed),
      clock(steadySeconds),
      model_(model) {
    setObjectName(QStringLiteral("canvas"));
    setAccessibleName(tr("Canvas"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setTabletTracking(true);
    setAcceptDrops(true);
    holdTimer_.setTimerType(Qt::PreciseTimer);
    holdTimer_.setInterval(1000 / 60);
    connect(&holdTimer_, &QTimer::timeout, this, guarding(model_, [this] { holdTick(); }));
    connect(&antsTimer_, &QTimer::timeout, this, guarding(model_, [this] {
        overlay_.advanceAnts(antsTimer_.interval() / 1000.0);
        update(toWidget(overlay_.antsRegion()));
    }));
    restTimer_.setSingleShot(true);
    restTimer_.setInterval(kRestAfter);
    connect(&restTimer_, &QTimer::timeout, this, [this] {
        if (!presentation_.isInMotion()) return;
        presentation_.setInMotion(false);
        update();
    });
    presentation_.setCheckerSize(model.prefs().checkerSize);
    // Proximity of the pen is told to the application, not to a widget.
    qApp->installEventFilter(this);
    updateMouseCursor();
    model_.setCanvas(this);
}

CanvasView::~CanvasView() {
    model_.setCanvas(nullptr);
    if (session_) session_->doc().onGridChange = nullptr;
}

// --- Device pixels. At a fractional ratio a widget's corner can fall between two of them; the view starts at the
// nearest whole one, so that a canvas pixel at 100% is exactly one device pixel.

QPointF CanvasView::deviceOffset() const {
    const QPointF corner = QPointF(mapTo(window(), QPoint(0, 0))) * pixelRatio();
    return {std::round(corner.x()) - corner.x(), std::round(corner.y()) - corner.y()};
}

QSizeF CanvasView::deviceSize() const {
    const QPointF corner = QPointF(mapTo(window(), QPoint(0, 0))) * pixelRatio();
    return {std::round(corner.x() + width() * pixelRatio()) - std::round(corner.x()),
            std::round(corner.y() + height() * pixelRatio()) - std::round(corner.y())};
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

// --- Sessions

void CanvasView::showSession(DocSession& session) {
    endGesture();
    if (session_) session_->doc().onGridChange = nullptr;
    session_ = &session;
    const auto rebuild = [this] {
        presentation_.show(&session_->doc());
        applyViewTransform();
    };
    session.doc().onGridChange = rebuild;
    lastStrokeEnd_.reset();
    presentation_.show(&session.doc());
    session.doc().takeDirtyTiles(); // all are new to the screen
    fitIfNeeded();
    applyViewTransform();
}

void CanvasView::forgetSession(const DocSession& session) {
    if (session_ != &session) return;
    endGesture();
    session_->doc().onGridChange = nullptr;
    session_ = nullptr;
    presentation_.show(nullptr);
    update();
}

void CanvasView::fitIfNeeded() {
    const QSizeF size = deviceSize();
    if (!session_ || !session_->needsFit || !isVisible() || size.width() <= kLeastSide ||
        size.height() <= kLeastSide)
        return;
    fit();
    session_->needsFit = true; // while it stays like this
}

void CanvasView::followSize() {
    if (!session_ || transform_.viewSize() == deviceSize()) return;
    fitIfNeeded();
    applyViewTransform();
}

// --- From pixels to screen

void CanvasView::flush() {
    flushScheduled_ = false;
    if (!session_) return;
    const std::vector<DirtyTile> dirty = session_->doc().takeDirtyParts();
    if (dirty.empty()) return;
    repaintCanvas(presentation_.update(dirty));
}

void CanvasView::scheduleFlush() {
    if (flushScheduled_) return;
    flushScheduled_ = true;
    QMetaObject::invokeMethod(this, guarding(model_, [this] { flush(); }), Qt::QueuedConnection);
}

void CanvasView::refresh(AllTiles all) {
    if (session_ && all == AllTiles::yes) session_->doc().markAllDirty();
    flush();
    updateOverlay();
}

void CanvasView::repaintCanvas(const std::vector<IRect>& canvasRects) {
    QRegion region;
    for (const IRect& rect : canvasRects) {
        // The smooth filter reaches one pixel beyond a tile, the edge of a turned one another.
        region += toWidget(transform_.canvasToWidget().mapRect(rect.rectF()).adjusted(-2, -2, 2, 2));
    }
    region &= rect();
    if (region.rectCount() > kMostRepaintRects) region = region.boundingRect();
    // Not update(): the point is to be on screen before the next one is read.
    if (!region.isEmpty()) repaint(region);
}

void CanvasView::updateOverlay() {
    const auto covered = [this] {
        return overlay_.antsRegion() + overlay_.previewRegion() + overlay_.transformRegion();
    };
    const QRegion before = covered();
    // A transform shows its box in place of the ants.
    const bool floating = session_ && session_ == model_.current() && model_.transform().state();
    overlay_.setTransform(floating ? model_.transform().state() : std::nullopt);
    overlay_.setSelection(session_ && !floating ? session_->doc().selection : nullptr);
    if (drag_ == Drag::none) overlay_.setPreview({});
    update(toWidget(before + covered()));
    updateAntsTimer();
}

void CanvasView::updateAntsTimer() {
    // The ants rest during a stroke: their frame would come between two pen points.
    if (!overlay_.hasAnts() || stroke_ || !isVisible()) return antsTimer_.stop();
    if (!antsTimer_.isActive() || antsTimer_.interval() != overlay_.antsInterval())
        antsTimer_.start(overlay_.antsInterval());
}

void CanvasView::paintEvent(QPaintEvent* event) {
    contained([this] { followSize(); });
    QPainter painter(this);
    painter.scale(1 / pixelRatio(), 1 / pixelRatio());
    painter.translate(deviceOffset());
    const QRect box = event->rect();
    const QRectF exposed(QPointF(box.topLeft()) * pixelRatio() - deviceOffset(),
                         QSizeF(box.size()) * pixelRatio());
    painter.fillRect(exposed.adjusted(-1, -1, 1, 1),
                     QColor(kBackgroundGrey, kBackgroundGrey, kBackgroundGrey));
    if (!session_) return;
    // What there is no memory for stays away until it is seen again: nothing of the picture is lost by that.
    bool whole = contained([&] { presentation_.look(transform_, session_->view.zoom); });
    whole &= contained([&] { presentation_.draw(painter, exposed); });
    whole &= contained([&] { overlay_.paint(painter); });
    if (whole == std::exchange(shownWhole_, whole)) return;
    contained([&] {
        if (whole) return update();
        QMetaObject::invokeMethod(
            this, guarding(model_, [this] { model_.messages().flash(failureText(std::bad_alloc())); }),
            Qt::QueuedConnection);
    });
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

// --- The view

void CanvasView::applyView(const ViewState& state) {
    if (!session_) return;
    session_->view = state;
    session_->needsFit = false;
    applyViewTransform();
}

void CanvasView::applyViewTransform() {
    if (!session_) return;
    const TileGrid& grid = session_->doc().grid();
    transform_ = ViewTransform(deviceSize(), QSizeF(grid.bounds().rectF().size()), session_->view);
    overlay_.setView(transform_.canvasToWidget(), session_->view.zoom, pixelRatio());
    updateOverlay();
    updateCursor(lastMouseView_);
    model_.status().setView({session_->view.zoom, session_->view.rotation, session_->view.flipView});
    update();
}

void CanvasView::fit() {
    if (!session_ || deviceSize().width() <= kLeastSide) return;
    const TileGrid& grid = session_->doc().grid();
    transform_ = ViewTransform(deviceSize(), QSizeF(grid.bounds().rectF().size()), session_->view);
    applyView(transform_.fitted(kFitMargin * pixelRatio()));
}

void CanvasView::actualPixels() {
    if (!session_) return;
    ViewState state = session_->view;
    state.zoom = 1;
    state.pan = {};
    applyView(state);
}

/// A second step before the view has come to rest: it is in motion, and the last step is drawn again.
void CanvasView::noteMotion() {
    presentation_.setInMotion(restTimer_.isActive());
    restTimer_.start();
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
    ViewState state = session_->view;
    state.rotation = degrees;
    applyView(state);
}

void CanvasView::toggleFlipView() {
    if (!session_) return;
    ViewState state = session_->view;
    state.flipView = !state.flipView;
    applyView(state);
}

// --- Cursors and reports

void CanvasView::choicesChanged() {
    penEndChanged(model_.penIsEraser); // the preferences may no longer let it erase
    if (presentation_.setCheckerSize(model_.prefs().checkerSize)) update();
    updateCursor(lastMouseView_);
    updateMouseCursor();
    updateOverlay();
}

void CanvasView::updateCursor(std::optional<QPointF> viewPoint) {
    std::optional<CanvasOverlay::Ring> ring;
    const bool brush = rowOf(model_.tool()).usesBrush || model_.penIsEraser;
    if (viewPoint && session_ && brush && model_.prefs().showBrushOutline && !spaceDown_) {
        const double diameter =
            std::max(model_.brushes().activeBrush().size * session_->view.zoom, 2 * pixelRatio());
        ring = CanvasOverlay::Ring{transform_.flippedVertically(*viewPoint), diameter};
    }
    if (ring == overlay_.ring()) return;
    const QRegion before = overlay_.ringRegion();
    overlay_.setRing(ring);
    update(toWidget(before + overlay_.ringRegion()));
}

void CanvasView::updateMouseCursor() {
    const bool hand = spaceDown_ || model_.tool() == Tool::hand;
    if (hand)
        setCursor(drag_ == Drag::pan ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
    else if (model_.tool() == Tool::move)
        setCursor(Qt::ArrowCursor);
    else if (model_.tool() == Tool::text)
        setCursor(Qt::IBeamCursor);
    else
        setCursor(Qt::CrossCursor);
}

void CanvasView::reportCursor(QPointF viewPoint, double pressure) {
    const double time = now();
    if (!session_ || time - lastReport_ < kSecondsBetweenReports) return;
    lastReport_ = time;
    const QPointF p = canvasPoint(viewPoint);
    const TileGrid& grid = session_->doc().grid();
    const bool inside = p.x() >= 0 && p.y() >= 0 && p.x() < static_cast<double>(grid.width) &&
                        p.y() < static_cast<double>(grid.height);
    model_.status().setCursor(
        {static_cast<int64_t>(std::floor(p.x())), static_cast<int64_t>(std::floor(p.y())), inside, pressure});
}

} // namespace qirn
