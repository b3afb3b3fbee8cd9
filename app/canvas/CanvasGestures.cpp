// Pen and mouse events of the canvas, from the event to the gesture of a tool.
#include "app/canvas/CanvasView.h"

#include "app/model/CanvasStatus.h"
#include "app/model/OpacityPreview.h"
#include "app/model/PaintModel.h"
#include "app/model/Safety.h"
#include "core/PaintDocument.h"

#include <cmath>
#include <utility>

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPointingDevice>
#include <QScreen>
#include <QTabletEvent>

namespace qirn {

namespace {

bool isEraser(const QTabletEvent& event) {
    return event.pointerType() == QPointingDevice::PointerType::Eraser;
}

bool isFinite(QPointF point) {
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

} // namespace

// --- Events

/// False where no hand can be: drivers can send such a point between good ones. A tablet may reach over the rectangle that
/// holds all screens. Wayland does not tell where on them a window is, so that nothing is known of points outside it.
bool CanvasView::isPlace(QPointF widgetPoint, QPointF onScreen) const {
    if (!isFinite(widgetPoint) || !isFinite(onScreen)) return false;
    static const bool knowsScreens = !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
    return !knowsScreens || QRectF(rect()).contains(widgetPoint) ||
           QRectF(screen()->virtualGeometry()).contains(onScreen);
}

bool CanvasView::isPressed() const {
    return input_.isPenDown() || !phase_.isIdle();
}

/// Of the whole application: a pen over a panel is near as well, and a key is held whoever has the keyboard.
bool CanvasView::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::TabletEnterProximity:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
        enter(&CanvasView::penIsNear);
        [[fallthrough]];
    case QEvent::TabletLeaveProximity:
        if (watched == qApp) enter(&CanvasView::handleProximity, event);
        break;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        input_.follow(*static_cast<QKeyEvent*>(event));
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void CanvasView::handleProximity(QEvent* event) {
    if (event->type() == QEvent::TabletEnterProximity) {
        input_.setPenInReach(true);
        penEndChanged(isEraser(*static_cast<QTabletEvent*>(event)));
    } else if (event->type() == QEvent::TabletLeaveProximity) {
        input_.setPenInReach(false);
        penLifted(); // out of reach it is up, even when its release was lost
        penEndChanged(false);
    }
}

void CanvasView::penLifted() {
    if (!input_.isPenDown()) return;
    input_.setPenDown(false);
    endGesture();
}

void CanvasView::penEndChanged(bool eraser) {
    const bool erases = eraser && model_.prefs().tabletEraserSwitches;
    if (erases == model_.penIsEraser || phase_.isPainting()) return;
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
    // Always accepted: Qt sends an ignored pen event again as a mouse event.
    event->accept();
    const PenSample sample = input_.sampleOf(*event, toView(event->position()), now());
    const bool placed = isPlace(event->position(), event->globalPosition());
    const bool tip = event->button() == Qt::LeftButton;
    if (event->type() == QEvent::TabletMove && !event->buttons().testFlag(Qt::LeftButton))
        penLifted(); // its release went to a window or a wait that took the input
    // Each event tells the end of the pen; proximity events exist only with some drivers.
    if (!input_.isPenDown()) penEndChanged(isEraser(*event));
    if (input_.comesDown(*event)) input_.setPenDown(true);
    if (placed && input_.takePress()) {
        press(sample);
    } else if (event->type() == QEvent::TabletPress && placed && event->button() == Qt::RightButton) {
        pressRightButton(sample);
    } else if (event->type() == QEvent::TabletMove && placed) {
        input_.isPenDown() ? drag(sample) : hover(sample);
    }
    if (event->type() == QEvent::TabletRelease && tip && input_.isPenDown()) {
        input_.setPenDown(false);
        placed ? release(sample) : endGesture();
    }
    input_.penHandled(now());
}

void CanvasView::mousePressed(QMouseEvent* event) {
    const auto sample = input_.sampleOf(*event, toView(event->position()), now());
    if (!sample) return;
    if (event->button() == Qt::LeftButton) press(*sample);
    if (event->button() == Qt::RightButton) pressRightButton(*sample);
    if (event->button() != Qt::MiddleButton) return;
    if (!event->buttons().testFlag(Qt::LeftButton)) endGesture();
    if (phase_.isIdle()) beginGesture(Tool::hand, true, *sample);
}

void CanvasView::mouseDoubleClicked(QMouseEvent* event) {
    auto sample = input_.sampleOf(*event, toView(event->position()), now());
    if (!sample) return;
    if (event->button() == Qt::RightButton) return pressRightButton(*sample);
    if (event->button() != Qt::LeftButton) return;
    sample->clicks = 2;
    press(*sample);
}

void CanvasView::mouseMoved(QMouseEvent* event) {
    const auto sample = input_.sampleOf(*event, toView(event->position()), now());
    if (!sample) return;
    if (event->buttons() != Qt::NoButton) return drag(*sample);
    endGesture(); // its release was lost
    hover(*sample);
}

void CanvasView::mouseReleased(QMouseEvent* event) {
    const auto sample = input_.sampleOf(*event, toView(event->position()), now());
    const bool ends = event->button() == Qt::LeftButton ||
                      (event->button() == Qt::MiddleButton && phase_.isGestureOf(Tool::hand));
    if (sample && ends) release(*sample);
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

// --- Gestures

void CanvasView::press(const PenSample& sample) {
    restFingers();
    setFocus(Qt::MouseFocusReason);
    if (!session_) return;
    endGesture(); // of a press whose release was lost
    if (sample.modifiers.testFlag(Qt::AltModifier)) {
        // The menu bar waits for Alt to come up, and forgets it at a mouse event or at this one, but not for a pen.
        QEvent forget(QEvent::ActivationChange);
        QCoreApplication::sendEvent(this, &forget);
    }
    model_.opacity().commit();
    session_->needsFit = false; // a picture that somebody works on stays where it is
    lastMouseView_ = sample.view;
    const std::optional<Tool> lent = lentTool(sample);
    beginGesture(lent.value_or(model_.tool()), lent.has_value(), sample);
}

/// The second way to the color that Option picks: desktops keep presses with Alt for themselves.
void CanvasView::pressRightButton(const PenSample& sample) {
    if (!phase_.isIdle() || !rowOf(model_.tool()).picksWithOption) return;
    setFocus(Qt::MouseFocusReason);
    lastMouseView_ = sample.view;
    beginGesture(Tool::eyedropper, true, sample);
}

std::optional<Tool> CanvasView::lentTool(const PenSample& sample) const {
    const ToolRow& own = rowOf(model_.tool());
    const bool command = sample.modifiers.testFlag(Qt::ControlModifier);
    const bool option = sample.modifiers.testFlag(Qt::AltModifier);
    if (sample.clicks == 2 && own.tool == Tool::hand) return std::nullopt; // its own double click
    if (spaceDown_) return command ? Tool::zoom : Tool::hand;
    if ((option || command) && own.picksWithOption) return Tool::eyedropper;
    return std::nullopt;
}

void CanvasView::beginGesture(Tool tool, bool isLent, const PenSample& sample) {
    if (!session_) return;
    const ToolPress press{*this, model_, *session_, tool, isLent, sample, canvasPoint(sample.view)};
    phase_.begin(tool, tools_[static_cast<std::size_t>(tool)].press(press), sample);
    updateAntsTimer();
    updateMouseCursor();
}

void CanvasView::drag(const PenSample& sample) {
    if (!session_) return;
    lastMouseView_ = sample.view;
    if (!phase_.isIdle()) phase_.drag(sample, canvasPoint(sample.view));
    if (phase_.isPainting()) return; // which shows the pen with its pressure
    updateCursor(sample.view);
    reportCursor(sample.view, 0);
}

void CanvasView::release(const PenSample& sample) {
    const std::unique_ptr<CanvasTool> gesture = phase_.end();
    if (!session_) return;
    if (gesture) gesture->release(sample, canvasPoint(sample.view));
    updateOverlay();
    updateMouseCursor();
    model_.safety().gestureEnded();
}

void CanvasView::hover(const PenSample& sample) {
    lastMouseView_ = sample.view;
    updateCursor(sample.view);
    reportCursor(sample.view, 0);
}

bool CanvasView::isBusy() const {
    return phase_.isPainting();
}

bool CanvasView::isInGesture() const {
    return !phase_.isIdle();
}

void CanvasView::endStroke() {
    if (phase_.isPainting()) endGesture();
}

void CanvasView::endGesture() {
    if (!phase_.isIdle()) release(phase_.latest());
}

void CanvasView::cancelGesture() {
    const bool painted = phase_.isPainting();
    phase_.drop();
    if (painted && session_) {
        session_->doc().revertToLastCommit();
        flush();
    }
    updateOverlay();
    updateMouseCursor();
    if (painted) model_.announce();
}

void CanvasView::dropUncommitted() {
    phase_.drop();
    presentation_.show(session_ ? &session_->doc() : nullptr);
    updateOverlay();
    updateMouseCursor();
    update();
}

void CanvasView::inputLost() {
    input_.setPenDown(false);
    restFingers();
    endGesture();
    setSpaceDown(false);
}

} // namespace qirn
