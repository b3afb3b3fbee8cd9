#pragma once
#include "app/canvas/CanvasOverlay.h"
#include "app/canvas/CanvasPhase.h"
#include "app/canvas/CanvasPresentation.h"
#include "app/canvas/CanvasTool.h"
#include "app/canvas/FingerGrip.h"
#include "app/canvas/PenInput.h"
#include "app/files/DocSession.h"
#include "app/files/ViewTransform.h"
#include "app/model/CanvasPort.h"
#include "app/model/Guarded.h"

#include <functional>
#include <optional>
#include <vector>

#include <QPointer>
#include <QTimer>
#include <QWidget>

class QNativeGestureEvent;
class QTabletEvent;

namespace qirn {

class PaintModel;

/// The picture's view: hands pen and mouse events to the gesture of a tool, each painted and on screen before the next
/// event is read, turns scroll, touchpad and key events into changes of the view and model calls, and shows the finished
/// tiles with what is drawn over them.
///
/// View points are device pixels with y up; canvas points are pixels with y down.
class CanvasView : public QWidget, public CanvasPort {
    Q_OBJECT
public:
    /// The model's canvas from now on, for its life. Model and tools are borrowed.
    CanvasView(PaintModel& model, const ToolTable& tools, QWidget* parent = nullptr);
    ~CanvasView() override;

    void showSession(DocSession& session) override;
    void forgetSession(const DocSession& session) override;
    void refresh(AllTiles all) override;
    void choicesChanged() override;
    bool isBusy() const override;
    bool isInGesture() const override;
    void endStroke() override;
    void endGesture() override;
    void dropUncommitted() override;
    void flush();         ///< Recomposites and shows the dirty tiles at once.
    void scheduleFlush(); ///< The same after the current event, once however often it was asked.

    // The view.
    DocSession* session() const { return session_; }
    QPointF canvasPoint(QPointF viewPoint) const;
    QPointF viewPoint(QPointF canvasPoint) const;
    void fit();
    void actualPixels();
    QPointF viewMiddle() const { return transform_.viewMiddle(); }
    void setPan(QPointF pan); ///< From the view's middle to the picture's, in view points.
    void setZoom(double zoom, std::optional<QPointF> around = {});
    void zoomStep(bool in, std::optional<QPointF> around = {});
    void rotateView(double degrees);
    void setRotation(double degrees);
    void toggleFlipView();
    /// Runs `relayout`, which may change the canvas's place in the window and its size, and leaves the picture where it is
    /// on screen.
    void holdingThePicture(const std::function<void()>& relayout);

    /// Keys without Command, Option or Control; true when the key meant something here. The window hands on keys
    /// that no other control took.
    bool handleKeyPress(QKeyEvent* event);
    bool handleKeyRelease(QKeyEvent* event);

    // For the gestures of the tools.
    void showPreview(const QPainterPath& canvasPath); ///< Until the gesture ends; empty for none.
    /// Shows what a pen at this view point has painted, with the ring round it and its pressure in the status bar.
    void showPainted(QPointF viewPoint, double pressure);
    std::optional<QPointF> lastStrokeEnd() const { return lastStrokeEnd_; } ///< Canvas; of the picture shown.
    void setLastStrokeEnd(QPointF canvasPoint) { lastStrokeEnd_ = canvasPoint; }

    /// Where a stroke's seed comes from, and the seconds of a clock that never goes back; tests hand in their own.
    std::function<uint64_t()> strokeSeed;
    std::function<double()> clock;
    const CanvasPresentation& presentation() const { return presentation_; }

protected:
    // Qt's event handlers. Each calls the member below that may throw, inside `guarded`.
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent*) override { enter(&CanvasView::viewResized); }
    void showEvent(QShowEvent*) override { enter(&CanvasView::viewShown); }
    void mousePressEvent(QMouseEvent* event) override { enter(&CanvasView::mousePressed, event); }
    void mouseMoveEvent(QMouseEvent* event) override { enter(&CanvasView::mouseMoved, event); }
    void mouseReleaseEvent(QMouseEvent* event) override { enter(&CanvasView::mouseReleased, event); }
    void mouseDoubleClickEvent(QMouseEvent* event) override { enter(&CanvasView::mouseDoubleClicked, event); }
    void tabletEvent(QTabletEvent* event) override { enter(&CanvasView::penMoved, event); }
    void leaveEvent(QEvent*) override { enter(&CanvasView::pointerLeft); }
    void wheelEvent(QWheelEvent* event) override { enter(&CanvasView::wheelTurned, event); }
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override { enter(&CanvasView::dragged, event); }
    void dropEvent(QDropEvent* event) override { enter(&CanvasView::dropped, event); }

private:
    template <class Handler, class... Event> void enter(Handler handler, Event*... event) {
        guarded(model_, [&] { (this->*handler)(event...); });
    }
    bool handleTouchOrWindow(QEvent* event);  ///< True when the event is taken.
    bool handleKeyOfWindow(QKeyEvent* event); ///< The same, of keys that the window would take first.
    void handleProximity(QEvent* event);
    void viewResized();
    void viewShown();
    void mousePressed(QMouseEvent* event);
    void mouseMoved(QMouseEvent* event);
    void mouseReleased(QMouseEvent* event);
    void mouseDoubleClicked(QMouseEvent* event);
    void penMoved(QTabletEvent* event);
    void pointerLeft();
    bool keyPressed(QKeyEvent* event);
    bool keyReleased(QKeyEvent* event);
    void dragged(QDragMoveEvent* event);
    void dropped(QDropEvent* event);

    // Gestures (CanvasGestures.cpp).
    void press(const PenSample& sample);
    void pressRightButton(const PenSample& sample);
    bool isPressed() const; ///< A pen is down, or a gesture is in progress.
    bool isPlace(QPointF widgetPoint, QPointF onScreen) const;
    void penLifted(); ///< Also where its release was lost.
    std::optional<Tool>
    lentTool(const PenSample& sample) const; ///< What held keys give in place of the model's tool.
    void beginGesture(Tool tool, bool isLent, const PenSample& sample);
    void drag(const PenSample& sample);
    void release(const PenSample& sample);
    void hover(const PenSample& sample);
    void cancelGesture(); ///< As if it had not been begun, but for the view.
    void inputLost();     ///< What comes from now on of pen and fingers goes elsewhere.
    void penEndChanged(bool eraser);
    double now() const { return clock(); }

    // Wheel, touchpad and fingers (CanvasTouch.cpp).
    void wheelTurned(QWheelEvent* event);
    bool turnedOnTouchpad(const QNativeGestureEvent& gesture);
    bool touched(const QTouchEvent& event);
    void endGrip(bool lifted);
    void penIsNear();
    void restFingers(); ///< Until all have been lifted.

    // Keys (CanvasKeys.cpp).
    bool handleNamedKey(QKeyEvent* event);
    bool handleCharacter(QKeyEvent* event);
    bool nudge(int key, int step); ///< Moves lifted pixels by whole canvas pixels.
    void setSpaceDown(bool down);

    // How the picture lies in the view (CanvasNavigation.cpp).
    void applyView(const ViewState& state);
    void applyViewTransform();
    void noteMotion();
    void fitIfNeeded();
    void followCanvas(); ///< It has another size or shape: what was fitted is fitted again.
    /// Applies the view's size in device pixels when it has changed: by a resize, or by a screen of another scale. Of the
    /// latter Qt tells before or after the resize, but always before the next paint.
    void followSize();
    double pixelRatio() const { return devicePixelRatioF(); }
    QPointF toView(QPointF widgetPoint) const;  // logical widget point to view point
    QRect toWidget(const QRectF& device) const; // device pixels, y down, to logical, outward
    QRegion toWidget(const QRegion& device) const;
    QPointF deviceOffset() const; // device pixels from the widget's corner to a whole one
    QSizeF deviceSize() const;
    QPointF middleInWindow() const; // of the view, device pixels, y down

    // The screen (CanvasView.cpp).
    void updateOverlay(); // ants and previews as the model now has them
    void repaintCanvas(const std::vector<IRect>& canvasRects);
    void updateCursor(std::optional<QPointF> viewPoint);
    void updateMouseCursor();
    void reportCursor(QPointF viewPoint, double pressure);
    void updateAntsTimer();

    PaintModel& model_;
    const ToolTable& tools_;
    QPointer<DocSession> session_;
    ViewTransform transform_;
    CanvasPresentation presentation_;
    CanvasOverlay overlay_;
    bool flushScheduled_ = false;
    bool shownWhole_ = true; // there was memory for the latest paint
    QTimer antsTimer_;
    QTimer reportTimer_; // single shot: the pointer has moved since it was last reported
    QTimer restTimer_;   // runs from one turn or zoom of the view until it has come to rest

    CanvasPhase phase_;
    PenInput input_;
    std::optional<FingerGrip> grip_;
    bool fingersRest_ = false;
    bool spaceDown_ = false;
    std::optional<QPointF> lastMouseView_;
    std::optional<QPointF> lastStrokeEnd_; // canvas
    std::optional<Tool> toolBeforeEraserTip_;
    double lastReport_ = -1; // seconds
};

} // namespace qirn
