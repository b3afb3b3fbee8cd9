#include "app/canvas/CanvasView.h"

#include "app/desktop/Failures.h"
#include "app/files/DocSession.h"
#include "app/model/Brushes.h"
#include "app/model/CanvasStatus.h"
#include "app/model/Messages.h"
#include "app/model/PaintModel.h"
#include "app/model/PendingTransform.h"
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

constexpr int kMostRepaintRects = 24; // more are painted as their box
constexpr int kBackgroundGray = 31;   // white 0.12
constexpr double kSecondsBetweenReports = 0.05;
constexpr std::chrono::milliseconds kRestAfter(150); // of no turn or zoom

uint64_t clockSeed() {
    return static_cast<uint64_t>(QDateTime::currentMSecsSinceEpoch()) & 0xFFFFFFu;
}

double steadySeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

CanvasView::CanvasView(PaintModel& model, const ToolTable& tools, QWidget* parent)
    : QWidget(parent),
      strokeSeed(clockSeed),
      clock(steadySeconds),
      model_(model),
      tools_(tools) {
    setObjectName(QStringLiteral("canvas"));
    setAccessibleName(tr("Canvas"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setTabletTracking(true);
    setAttribute(Qt::WA_AcceptTouchEvents);
    setAcceptDrops(true);
    connect(&antsTimer_, &QTimer::timeout, this, guarding(model_, [this] {
        overlay_.advanceAnts(antsTimer_.interval() / 1000.0);
        update(toWidget(overlay_.antsRegion()));
    }));
    reportTimer_.setSingleShot(true);
    reportTimer_.setInterval(static_cast<int>(kSecondsBetweenReports * 1000) + 1);
    connect(&reportTimer_, &QTimer::timeout, this, guarding(model_, [this] {
        if (lastMouseView_ && !phase_.isPainting()) reportCursor(*lastMouseView_, 0);
    }));
    restTimer_.setSingleShot(true);
    restTimer_.setInterval(kRestAfter);
    connect(&restTimer_, &QTimer::timeout, this, [this] {
        if (!presentation_.isInMotion()) return;
        presentation_.setInMotion(false);
        update();
    });
    presentation_.setCheckerSize(model.prefs().checkerSize);
    // Qt sends proximity events of the pen to the application; keys and pen events concern the canvas wherever they go.
    qApp->installEventFilter(this);
    updateMouseCursor();
    model_.setCanvas(this);
}

CanvasView::~CanvasView() {
    model_.setCanvas(nullptr);
    if (session_) session_->doc().onGridChange = nullptr;
}

// --- Sessions

void CanvasView::showSession(DocSession& session) {
    endGesture();
    restFingers();
    if (session_) session_->doc().onGridChange = nullptr;
    session_ = &session;
    session.doc().onGridChange = [this] { followCanvas(); };
    lastStrokeEnd_.reset();
    presentation_.show(&session.doc());
    session.doc().takeDirtyTiles(); // all are new to the screen
    fitIfNeeded();
    applyViewTransform();
}

void CanvasView::forgetSession(const DocSession& session) {
    if (session_ != &session) return;
    endGesture();
    restFingers();
    session_->doc().onGridChange = nullptr;
    session_ = nullptr;
    presentation_.show(nullptr);
    update();
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
    // Not update(), which would wait: each pen point is on screen before the next one is read.
    if (!region.isEmpty()) repaint(region);
}

void CanvasView::updateOverlay() {
    const auto covered = [this] {
        return overlay_.antsRegion() + overlay_.previewRegion() + overlay_.transformRegion();
    };
    const QRegion before = covered();
    // While pixels float their box is shown instead of the ants.
    const bool floating = session_ && session_ == model_.current() && model_.transform().state();
    overlay_.setTransform(floating ? model_.transform().state() : std::nullopt);
    overlay_.setSelection(session_ && !floating ? session_->doc().selection : nullptr);
    if (phase_.isIdle()) overlay_.setPreview({});
    update(toWidget(before + covered()));
    updateAntsTimer();
}

void CanvasView::showPreview(const QPainterPath& canvasPath) {
    const QRegion before = overlay_.previewRegion();
    overlay_.setPreview(canvasPath);
    update(toWidget(before + overlay_.previewRegion()));
}

/// Ring and status bar come before the flush, whose repaint then shows them too: a repaint of their own would cost a whole
/// window where the desktop takes windows as a whole.
void CanvasView::showPainted(QPointF viewPoint, double pressure) {
    updateCursor(viewPoint);
    reportCursor(viewPoint, pressure);
    flush();
}

void CanvasView::updateAntsTimer() {
    // The ants stand still during a stroke: their repaint would delay a pen point.
    if (!overlay_.hasAnts() || phase_.isPainting() || !isVisible()) return antsTimer_.stop();
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
                     QColor(kBackgroundGray, kBackgroundGray, kBackgroundGray));
    if (!session_) return;
    // What there is no memory for is left out of this paint and tried again at the next: the picture itself is whole.
    bool whole = contained([&] { presentation_.prepare(transform_, session_->view.zoom); });
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
    const bool brush = rowOf(model_.tool()).usesBrush() || model_.penIsEraser;
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
    const ToolRow& row = rowOf(spaceDown_ ? Tool::hand : model_.tool());
    setCursor(phase_.isGestureOf(row.tool) ? row.dragCursor : row.cursor);
}

void CanvasView::reportCursor(QPointF viewPoint, double pressure) {
    const double time = now();
    if (!session_) return;
    if (time - lastReport_ < kSecondsBetweenReports) {
        if (!reportTimer_.isActive()) reportTimer_.start(); // where the pointer then is
        return;
    }
    lastReport_ = time;
    const QPointF p = canvasPoint(viewPoint);
    const TileGrid& grid = session_->doc().grid();
    const bool inside = p.x() >= 0 && p.y() >= 0 && p.x() < static_cast<double>(grid.width) &&
                        p.y() < static_cast<double>(grid.height);
    model_.status().setCursor(
        {static_cast<int64_t>(std::floor(p.x())), static_cast<int64_t>(std::floor(p.y())), inside, pressure});
}

} // namespace qirn
