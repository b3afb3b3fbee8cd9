// Pen, mouse, scroll and touchpad events of the canvas, from the event to the stroke or the view.
#include "app/canvas/CanvasView.h"

#include "app/files/DocSession.h"
#include "app/model/Brushes.h"
#include "app/model/CanvasStatus.h"
#include "app/model/Colors.h"
#include "app/model/Messages.h"
#include "app/model/OpacityPreview.h"
#include "app/model/PaintModel.h"
#include "brush/BrushStroke.h"
#include "compositing/CompositeInputs.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include <QApplication>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QTabletEvent>
#include <QWheelEvent>

namespace qirn {

namespace {

constexpr double kWheelNotch = 120; // what Qt tells for one notch of a wheel
// A desktop can follow a pen event with a mouse event of its own; one that comes this soon is not a hand's.
constexpr double kMouseAfterPen = 0.05; // seconds

bool picksColorWithOption(Tool tool) {
    return rowOf(tool).usesBrush || tool == Tool::bucket || tool == Tool::gradient || tool == Tool::shape;
}

double secondsOf(const QInputEvent& event, double now) {
    return event.timestamp() != 0 ? static_cast<double>(event.timestamp()) / 1000.0 : now;
}

} // namespace

// --- Events

bool CanvasView::event(QEvent* event) {
    bool taken = false;
    guarded(model_, [&] { taken = gestureMade(event); });
    return taken || QWidget::event(event);
}

bool CanvasView::gestureMade(QEvent* event) {
    if (event->type() == QEvent::NativeGesture && session_) {
        auto* gesture = static_cast<QNativeGestureEvent*>(event);
        const QPointF around = toView(gesture->position());
        if (gesture->gestureType() == Qt::ZoomNativeGesture) {
            setZoom(session_->view.zoom * (1 + gesture->value()), around);
            return true;
        }
        if (gesture->gestureType() == Qt::RotateNativeGesture) {
            setRotation(std::fmod(session_->view.rotation - gesture->value(), 360));
            return true;
        }
    }
    if (event->type() == QEvent::WindowDeactivate) inputLost();
    return false;
}

bool CanvasView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp) enter(&CanvasView::applicationTold, event);
    return QWidget::eventFilter(watched, event);
}

void CanvasView::applicationTold(QEvent* event) {
    if (event->type() == QEvent::TabletEnterProximity) {
        penEndChanged(static_cast<QTabletEvent*>(event)->pointerType() ==
                      QPointingDevice::PointerType::Eraser);
    } else if (event->type() == QEvent::TabletLeaveProximity) {
        // A pen that leaves has let go, even when its release was lost.
        if (std::exchange(penDown_, false)) endGesture();
        penEndChanged(false);
    }
}

void CanvasView::penEndChanged(bool eraser) {
    const bool erases = eraser && model_.prefs().tabletEraserSwitches;
    if (erases == model_.penIsEraser || stroke_) return;
    model_.penIsEraser = erases;
    if (erases) {
        if (model_.tool() != Tool::eraser) {
            toolBeforeEraserTip_ = model_.tool();
            model_.setTool(Tool::eraser);
        }
    } else if (toolBeforeEraserTip_) {
        model_.setTool(*std::exchange(toolBeforeEraserTip_, std::nullopt));
    }
    updateCursor(lastMouseView_);
}

void CanvasView::penMoved(QTabletEvent* event) {
    // Always taken: a pen event that is not comes again as a mouse event.
    event->accept();
    PenSample sample;
    sample.view = toView(event->position());
    sample.pressure = event->pressure();
    sample.fromPen = true;
    sample.tiltX = event->xTilt();
    sample.tiltY = event->yTilt();
    sample.time = secondsOf(*event, now());
    sample.modifiers = event->modifiers() | keysHeld_;
    // The end of the pen is read from each event: without a vendor's driver no proximity is ever told.
    if (!penDown_) penEndChanged(event->pointerType() == QPointingDevice::PointerType::Eraser);
    switch (event->type()) {
    case QEvent::TabletPress:
        if (event->button() == Qt::LeftButton) {
            penDown_ = true;
            press(sample);
        }
        break;
    case QEvent::TabletMove:
        penDown_ ? drag(sample) : hover(sample);
        break;
    case QEvent::TabletRelease:
        if (event->button() == Qt::LeftButton && penDown_) {
            penDown_ = false;
            release(sample);
        }
        break;
    default:
        break;
    }
    lastPenTime_ = now(); // the echo comes after the painting
}

std::optional<PenSample> CanvasView::mouseSample(const QMouseEvent& event) {
    const bool follows = event.source() != Qt::MouseEventNotSynthesized ||
                         event.pointingDevice()->type() == QInputDevice::DeviceType::Stylus ||
                         now() - lastPenTime_ < kMouseAfterPen;
    if (follows) return std::nullopt;
    // A hand that presses a mouse has put the pen away, whose release got lost.
    if (event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonDblClick)
        penDown_ = false;
    if (penDown_) return std::nullopt;
    PenSample sample;
    sample.view = toView(event.position());
    sample.time = secondsOf(event, now());
    sample.modifiers = event.modifiers();
    return sample;
}

void CanvasView::mousePressed(QMouseEvent* event) {
    const auto sample = mouseSample(*event);
    if (!sample) return;
    if (event->button() == Qt::LeftButton) press(*sample);
    if (event->button() != Qt::MiddleButton) return;
    if (!event->buttons().testFlag(Qt::LeftButton)) endGesture();
    if (drag_ == Drag::none) beginPan(*sample);
}

void CanvasView::mouseDoubleClicked(QMouseEvent* event) {
    auto sample = mouseSample(*event);
    if (!sample || event->button() != Qt::LeftButton) return;
    sample->clicks = 2;
    press(*sample);
}

void CanvasView::mouseMoved(QMouseEvent* event) {
    const auto sample = mouseSample(*event);
    if (!sample) return;
    if (event->buttons() != Qt::NoButton) return drag(*sample);
    endGesture();
    hover(*sample);
}

void CanvasView::mouseReleased(QMouseEvent* event) {
    const bool ends =
        event->button() == Qt::LeftButton || (event->button() == Qt::MiddleButton && drag_ == Drag::pan);
    if (const auto sample = mouseSample(*event); sample && ends) release(*sample);
}

void CanvasView::pointerLeft() {
    lastMouseView_.reset();
    updateCursor(std::nullopt);
    CanvasStatus::Cursor cursor = model_.status().cursor();
    cursor.inside = false;
    model_.status().setCursor(cursor);
}

void CanvasView::focusOutEvent(QFocusEvent* event) {
    guarded(model_, [this] { inputLost(); });
    QWidget::focusOutEvent(event);
}

void CanvasView::wheelTurned(QWheelEvent* event) {
    event->accept();
    if (!session_) return;
    const bool precise = !event->pixelDelta().isNull();
    const bool command = event->modifiers().testFlag(Qt::ControlModifier);
    const QPointF around = toView(event->position());
    if (precise && !command) {
        ViewState state = session_->view;
        const QPointF delta = QPointF(event->pixelDelta()) * pixelRatio();
        state.pan += QPointF(delta.x(), -delta.y());
        applyView(state);
    } else {
        const double lines = event->angleDelta().y() / kWheelNotch * QApplication::wheelScrollLines();
        const double exponent = precise ? event->pixelDelta().y() / 100.0 : lines / 10;
        setZoom(session_->view.zoom * std::exp2(exponent), around);
    }
    lastMouseView_ = around;
    updateCursor(around);
}

// --- Gestures

void CanvasView::press(const PenSample& sample) {
    setFocus(Qt::MouseFocusReason);
    if (!session_) return;
    endGesture(); // one whose release got lost
    model_.opacity().commit();
    lastSample_ = sample;
    session_->needsFit = false; // a hand knows its place by now
    const QPointF c = canvasPoint(sample.view);
    dragStart_ = dragCurrent_ = c;
    dragStartView_ = sample.view;
    lastMouseView_ = sample.view;
    const Tool tool = model_.tool();
    const bool picks =
        sample.modifiers.testFlag(Qt::AltModifier) || sample.modifiers.testFlag(Qt::ControlModifier);
    if (sample.clicks == 2 && tool == Tool::hand) return fit();
    if (spaceDown_ && sample.modifiers.testFlag(Qt::ControlModifier)) {
        drag_ = Drag::zoomDrag;
        zoomStart_ = session_->view.zoom;
    } else if (spaceDown_ || tool == Tool::hand) {
        beginPan(sample);
    } else if (tool == Tool::zoom && sample.modifiers.testFlag(Qt::AltModifier)) {
        zoomStep(false, sample.view);
    } else if (tool == Tool::zoom) {
        drag_ = Drag::zoomDrag;
        zoomStart_ = session_->view.zoom;
    } else if (tool == Tool::eyedropper || (picks && picksColorWithOption(tool))) {
        sampleColor(c);
    } else if (rowOf(tool).usesBrush) {
        if (beginStroke(sample)) drag_ = Drag::paint;
    } else {
        pressTool(sample);
    }
}

void CanvasView::beginPan(const PenSample& sample) {
    if (!session_) return;
    drag_ = Drag::pan;
    lastSample_ = sample;
    dragStartView_ = sample.view;
    panStart_ = session_->view.pan;
    updateMouseCursor();
}

void CanvasView::drag(const PenSample& sample) {
    if (!session_) return;
    lastSample_ = sample;
    lastMouseView_ = sample.view;
    dragCurrent_ = canvasPoint(sample.view);
    const QPointF way = sample.view - dragStartView_;
    switch (drag_) {
    case Drag::paint:
        return addToStroke(sample);
    case Drag::pan: {
        ViewState state = session_->view;
        state.pan = panStart_ + way;
        return applyView(state);
    }
    case Drag::zoomDrag:
        return setZoom(zoomStart_ * std::pow(1.01, way.x()), dragStartView_);
    case Drag::tool:
        dragTool(sample);
        break;
    case Drag::none:
        break;
    }
    updateCursor(sample.view);
    reportCursor(sample.view, 0);
}

void CanvasView::release(const PenSample& sample) {
    const Drag ended = std::exchange(drag_, Drag::none);
    if (!session_) return;
    if (ended == Drag::paint) {
        if (waiting_) beginLine(*std::exchange(waiting_, std::nullopt), shapedPressureOf(sample));
        endStroke();
    }
    if (ended == Drag::tool) {
        dragCurrent_ = canvasPoint(sample.view);
        releaseTool(sample);
    }
    updateOverlay();
    updateMouseCursor();
}

void CanvasView::hover(const PenSample& sample) {
    lastMouseView_ = sample.view;
    updateCursor(sample.view);
    reportCursor(sample.view, 0);
}

void CanvasView::endGesture() {
    if (drag_ != Drag::none) release(lastSample_);
}

void CanvasView::inputLost() {
    penDown_ = false;
    endGesture();
    keysHeld_ = {};
    setSpaceDown(false);
}

void CanvasView::dropGesture() {
    drag_ = Drag::none;
    updateOverlay();
    updateMouseCursor();
}

void CanvasView::sampleColor(QPointF canvasPoint) {
    PaintDocument& doc = session_->doc();
    const auto x = static_cast<int64_t>(std::floor(canvasPoint.x())),
               y = static_cast<int64_t>(std::floor(canvasPoint.y()));
    if (!doc.grid().bounds().contains(x, y)) return;
    const PixelBytes pixel =
        model_.prefs().eyedropperAllLayers ? compositePixel(doc, x, y) : doc.activeLayer().pixel(x, y);
    if (pixel[3] == 0) return model_.messages().flash(tr("Nothing to pick there (transparent)"));
    const double a = pixel[3];
    model_.colors().pick(PaintColor(pixel[0] / a, pixel[1] / a, pixel[2] / a), Colors::AddRecent::yes);
}

// --- Strokes

double CanvasView::shapedPressureOf(const PenSample& sample) {
    double raw = 1;
    if (sample.fromPen)
        raw = sample.pressure;
    else if (model_.prefs().mouseSpeedPressure)
        raw = speedPressure_.next(sample.time, sample.view / pixelRatio());
    return shapedPressure(raw, model_.prefs().pressureCurve);
}

StrokePoint CanvasView::strokePoint(const PenSample& sample, double pressure) const {
    const QPointF c = canvasPoint(sample.view);
    return StrokePoint(c.x(), c.y(), pressure, sample.tiltX, sample.tiltY, sample.time);
}

bool CanvasView::beginStroke(const PenSample& sample) {
    PaintDocument& doc = session_->doc();
    const Layer& layer = doc.activeLayer();
    if (layer.isLocked) {
        model_.messages().flash(
            tr("The layer \"%1\" is locked — unlock it in the Layers panel").arg(layer.name));
        return false;
    }
    if (!layer.isVisible) {
        model_.messages().flash(tr("The layer \"%1\" is hidden — show it to paint on it").arg(layer.name));
        return false;
    }
    strokeTool_ = model_.tool();
    if (strokeTool_ == Tool::brush) model_.colors().pushRecent(model_.colors().primary());
    BrushSettings settings = model_.brushes().activeBrush();
    if (model_.penIsEraser && settings.kind == BrushKind::paint) settings.kind = BrushKind::erase;
    const auto active = checkedSize(doc.activeIndex());
    stroke_ = std::make_unique<BrushStroke>(doc, doc.layers()[active], settings, model_.colors().primary(),
                                            strokeSeed());
    updateAntsTimer();
    perfSamples_.clear();
    lastEventPoint_ = sample.view;
    if (sample.fromPen || !model_.prefs().mouseSpeedPressure) {
        beginLine(sample, shapedPressureOf(sample));
    } else {
        // Nobody knows yet how fast the hand is: at rest it would begin each line with a full blob.
        speedPressure_.follow(sample.time, sample.view / pixelRatio());
        waiting_ = sample;
    }
    if (settings.airbrush || settings.spray) {
        lastHold_ = now();
        holdTimer_.start();
    }
    return true;
}

void CanvasView::beginLine(const PenSample& sample, double pressure) {
    const StrokePoint point = strokePoint(sample, pressure);
    const double start = now();
    if (sample.modifiers.testFlag(Qt::ShiftModifier) && lastStrokeEnd_) {
        stroke_->add(StrokePoint(lastStrokeEnd_->x(), lastStrokeEnd_->y(), point.pressure, 0, 0, point.time));
    }
    stroke_->add(point);
    showStroke(sample.view, point.pressure);
    perfSamples_.push_back((now() - start) * 1000);
}

void CanvasView::addToStroke(const PenSample& sample) {
    if (!stroke_) return;
    const double pressure = shapedPressureOf(sample);
    if (waiting_) beginLine(*std::exchange(waiting_, std::nullopt), pressure);
    const StrokePoint point = strokePoint(sample, pressure);
    lastEventPoint_ = sample.view;
    const double start = now();
    stroke_->add(point);
    showStroke(sample.view, point.pressure);
    perfSamples_.push_back((now() - start) * 1000);
}

/// Ring and status bar first: what they mark is painted along with the flush. A second repaint would cost a whole
/// window again where the desktop takes windows as a whole.
void CanvasView::showStroke(QPointF viewPoint, double pressure) {
    updateCursor(viewPoint);
    reportCursor(viewPoint, pressure);
    flush();
}

void CanvasView::beginWaitingLine() {
    if (!waiting_) return;
    const double pressure = shapedPressure(SpeedPressure::kAtRest, model_.prefs().pressureCurve);
    beginLine(*std::exchange(waiting_, std::nullopt), pressure);
}

void CanvasView::holdTick() {
    if (!stroke_) return holdTimer_.stop();
    beginWaitingLine();
    const double time = now();
    stroke_->hold(time - std::exchange(lastHold_, time));
    scheduleFlush();
}

void CanvasView::cancelStroke() {
    holdTimer_.stop();
    waiting_.reset();
    if (stroke_ && session_) {
        stroke_.reset();
        session_->doc().revertToLastCommit();
        flush();
    }
    dropGesture();
    model_.announce();
}

void CanvasView::dropUncommitted() {
    holdTimer_.stop();
    stroke_.reset();
    waiting_.reset();
    dragBase_.reset();
    lassoPoints_.clear();
    presentation_.show(session_ ? &session_->doc() : nullptr);
    dropGesture();
    update();
}

bool CanvasView::isBusy() const {
    return stroke_ != nullptr;
}

void CanvasView::endStroke() {
    holdTimer_.stop();
    if (!stroke_ || !session_) return;
    if (drag_ == Drag::paint) drag_ = Drag::none;
    beginWaitingLine();
    const double start = now();
    stroke_->end();
    flush();
    perfSamples_.push_back((now() - start) * 1000);
    const int64_t dabs = stroke_->dabCount();
    stroke_.reset();
    lastStrokeEnd_ = canvasPoint(lastEventPoint_);
    updateAntsTimer();
    CanvasStatus::Cursor lifted = model_.status().cursor();
    lifted.pressure = 0;
    model_.status().setCursor(lifted);
    if (dabs >= 1) {
        session_->doc().commit(strokeTool_ == Tool::eraser   ? tr("Erase")
                               : strokeTool_ == Tool::smudge ? tr("Smudge")
                               : strokeTool_ == Tool::blur   ? tr("Blur")
                                                             : tr("Brush Stroke"));
    }
    session_->announceChange();
    model_.announce();
    const auto count = static_cast<double>(perfSamples_.size());
    const double mean = std::accumulate(perfSamples_.begin(), perfSamples_.end(), 0.0) / count;
    const double most = *std::max_element(perfSamples_.begin(), perfSamples_.end());
    model_.status().setLastStrokeStats(tr("Last stroke: %1 points, avg %2 ms, max %3 ms per point, %4 dabs")
                                           .arg(perfSamples_.size())
                                           .arg(mean, 0, 'f', 1)
                                           .arg(most, 0, 'f', 1)
                                           .arg(dabs));
}

} // namespace qirn
