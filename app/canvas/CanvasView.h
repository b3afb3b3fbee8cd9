#pragma once
#include "app/canvas/CanvasOverlay.h"
#include "app/canvas/CanvasPresentation.h"
#include "app/canvas/PenInput.h"
#include "app/files/ViewTransform.h"
#include "app/files/DocSession.h"
#include "app/model/CanvasPort.h"
#include "app/model/Guarded.h"
#include "app/model/Tool.h"
#include "app/model/TransformState.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <QPointer>
#include <QTimer>
#include <QWidget>

class QTabletEvent;

namespace qirn {

class BrushStroke;
class DocSession;
class PaintModel;
struct StrokePoint;

/// The picture's view: turns pen, mouse, scroll and key events into strokes and model calls, each painted and on
/// screen before the next event is read, and shows the finished tiles with what is drawn over them.
///
/// View points are device pixels with y up; canvas points are pixels with y down.
class CanvasView : public QWidget, public CanvasPort {
    Q_OBJECT
public:
    /// The model's canvas from now on, for its life.
    explicit CanvasView(PaintModel& model, QWidget* parent = nullptr);
    ~CanvasView() override;

    void showSession(DocSession& session) override;
    void forgetSession(const DocSession& session) override;
    void refresh(AllTiles all) override;
    void choicesChanged() override;
    bool isBusy() const override;
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
    void setZoom(double zoom, std::optional<QPointF> around = {});
    void zoomStep(bool in, std::optional<QPointF> around = {});
    void rotateView(double degrees);
    void setRotation(double degrees);
    void toggleFlipView();

    /// Keys without Command, Option or Control; true when the key meant something here. The window hands on keys
    /// that no other control took.
    bool handleKeyPress(QKeyEvent* event);
    bool handleKeyRelease(QKeyEvent* event);

    /// Where a stroke's seed comes from, and the seconds of a clock that never goes back; tests hand in their own.
    std::function<uint64_t()> strokeSeed;
    std::function<double()> clock;
    const CanvasPresentation& presentation() const { return presentation_; }

Q_SIGNALS:
    void textRequested(QPointF canvasPoint); ///< A press of the Text tool; the window asks for the words.

protected:
    // The doors from Qt: each hands its event on to the member of that name below, where a failure may throw.
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
    enum class Drag { none, paint, pan, zoomDrag, tool };

    template <class Handler, class... Event> void enter(Handler handler, Event*... event) {
        guarded(model_, [&] { (this->*handler)(event...); });
    }
    bool gestureMade(QEvent* event); ///< True when the event meant something here.
    void applicationTold(QEvent* event);
    void viewResized();
    void viewShown();
    void mousePressed(QMouseEvent* event);
    void mouseMoved(QMouseEvent* event);
    void mouseReleased(QMouseEvent* event);
    void mouseDoubleClicked(QMouseEvent* event);
    void penMoved(QTabletEvent* event);
    void pointerLeft();
    void wheelTurned(QWheelEvent* event);
    bool keyPressed(QKeyEvent* event);
    bool keyReleased(QKeyEvent* event);
    void dragged(QDragMoveEvent* event);
    void dropped(QDropEvent* event);

    // Gestures (CanvasGestures.cpp).
    std::optional<PenSample> mouseSample(const QMouseEvent& event); ///< Nothing for a pen's echo.
    void press(const PenSample& sample);
    void beginPan(const PenSample& sample);
    void drag(const PenSample& sample);
    void release(const PenSample& sample);
    void hover(const PenSample& sample);
    void dropGesture();
    void inputLost(); ///< What is let go from now on is not told here.
    bool beginStroke(const PenSample& sample);
    void beginLine(const PenSample& sample, double pressure); ///< The stroke's first dab, shaped pressure.
    void beginWaitingLine(); ///< With the pressure of a hand at rest, if the line still waits for one.
    void addToStroke(const PenSample& sample);
    void showStroke(QPointF viewPoint, double pressure);
    void holdTick();
    void cancelStroke(); ///< As if it had not been begun.
    void sampleColor(QPointF canvasPoint);
    void penEndChanged(bool eraser);
    double shapedPressureOf(const PenSample& sample);
    StrokePoint strokePoint(const PenSample& sample, double pressure) const; ///< Shaped pressure.
    double now() const { return clock(); }

    // The tools that do not paint with a brush (CanvasTools.cpp).
    struct ToolGesture;
    static const ToolGesture* gestureOf(Tool tool);
    void pressTool(const PenSample& sample);
    void dragTool(const PenSample& sample);
    void releaseTool(const PenSample& sample);
    bool pressBucket(const PenSample& sample);
    bool pressOnUnlockedLayer(const PenSample& sample);
    bool pressSelect(const PenSample& sample);
    bool pressLasso(const PenSample& sample);
    bool pressMove(const PenSample& sample);
    bool pressText(const PenSample& sample);
    void dragGradient(const PenSample& sample);
    void dragSelectBox(const PenSample& sample);
    void dragLasso(const PenSample& sample);
    void dragMove(const PenSample& sample);
    void dragShape(const PenSample& sample);
    void releaseGradient(const PenSample& sample);
    void releaseSelectBox(const PenSample& sample);
    void releaseLasso(const PenSample& sample);
    void releaseShape(const PenSample& sample);
    QPainterPath selectionBox(Qt::KeyboardModifiers modifiers) const;
    void commitSelection(const QPainterPath& path, Qt::KeyboardModifiers modifiers);
    void commitGesture(const QString& name);
    void showPreview(const QPainterPath& canvasPath);
    bool refusesLockedLayer();

    // Keys (CanvasKeys.cpp).
    bool handleNamedKey(QKeyEvent* event);
    bool handleCharacter(QKeyEvent* event);
    bool nudge(int key, int step); ///< Moves lifted pixels by whole canvas pixels.
    void setSpaceDown(bool down);

    // The view (CanvasView.cpp).
    void applyView(const ViewState& state);
    void updateOverlay(); // ants and previews as the model now has them
    void applyViewTransform();
    void noteMotion();
    void fitIfNeeded();
    /// Renews the view when its size in device pixels is another one. A resize is one way to that; a screen of
    /// another scale is told of in no certain order with it, but always paints.
    void followSize();
    double pixelRatio() const { return devicePixelRatioF(); }
    QPointF toView(QPointF widgetPoint) const;  // logical widget point to view point
    QRect toWidget(const QRectF& device) const; // device pixels, y down, to logical, outward
    QRegion toWidget(const QRegion& device) const;
    QPointF deviceOffset() const; // device pixels from the widget's corner to a whole one
    QSizeF deviceSize() const;
    void repaintCanvas(const std::vector<IRect>& canvasRects);
    void updateCursor(std::optional<QPointF> viewPoint);
    void updateMouseCursor();
    void reportCursor(QPointF viewPoint, double pressure);
    void updateAntsTimer();

    PaintModel& model_;
    QPointer<DocSession> session_;
    ViewTransform transform_;
    CanvasPresentation presentation_;
    CanvasOverlay overlay_;
    bool flushScheduled_ = false;
    bool shownWhole_ = true; // there was memory for the latest paint
    QTimer antsTimer_;
    QTimer restTimer_; // runs from one turn or zoom of the view until it has come to rest

    std::unique_ptr<BrushStroke> stroke_;
    Tool strokeTool_ = Tool::brush;
    QTimer holdTimer_;
    std::optional<PenSample>
        waiting_; // a stroke's press, whose pressure the way to what comes next will tell
    double lastHold_ = 0;
    std::optional<QPointF> lastStrokeEnd_; // canvas
    PenSample lastSample_;                 // of the drag in progress
    QPointF dragStart_;                    // canvas
    QPointF dragStartView_;
    QPointF dragCurrent_; // canvas
    QPointF panStart_;
    double zoomStart_ = 1;
    Drag drag_ = Drag::none;
    const ToolGesture* gesture_ = nullptr; // of the drag in progress
    std::vector<QPointF> lassoPoints_;     // canvas
    enum class TransformDrag { move, scale, rotate };
    TransformDrag transformDrag_ = TransformDrag::move;
    std::optional<TransformState> dragBase_; // the transform at the press
    bool spaceDown_ = false;
    bool penDown_ = false;
    double lastPenTime_ = -1;        // of the latest pen event, by our own clock
    Qt::KeyboardModifiers keysHeld_; // pen events bring none on some desktops
    std::optional<QPointF> lastMouseView_;
    SpeedPressure speedPressure_;
    QPointF lastEventPoint_; // view
    std::optional<Tool> toolBeforeEraserTip_;
    std::vector<double> perfSamples_; // milliseconds a point
    double lastReport_ = -1;
};

} // namespace qirn
