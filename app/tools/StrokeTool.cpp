// Brush, Eraser, Smudge and Blur: one stroke of the tool's brush, from press to release.
#include "app/canvas/CanvasView.h"
#include "app/files/LongTask.h"
#include "app/model/Brushes.h"
#include "app/model/CanvasStatus.h"
#include "app/model/Colors.h"
#include "app/model/Guarded.h"
#include "app/model/Messages.h"
#include "app/model/PaintModel.h"
#include "app/tools/ToolTable.h"
#include "brush/BrushStroke.h"
#include "core/PaintDocument.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <utility>

#include <QCoreApplication>
#include <QTimer>

namespace qirn {

namespace {

constexpr int kHoldMilliseconds = 1000 / 60;

/// Milliseconds that points took from the brush to the screen.
struct PointTimes {
    int64_t count = 0;
    double sum = 0, most = 0;

    void add(double milliseconds) {
        ++count;
        sum += milliseconds;
        most = std::max(most, milliseconds);
    }
};

class StrokeTool final : public CanvasTool {
    Q_DECLARE_TR_FUNCTIONS(qirn::StrokeTool)
public:
    StrokeTool(const ToolPress& press, const BrushSettings& brush);
    void begin();
    void drag(const PenSample& sample, QPointF point) override;
    void release(const PenSample& sample, QPointF point) override;
    void drop() override;

private:
    double pressureOf(const PenSample& sample); ///< Shaped.
    void beginLine(const PenSample& sample, double pressure);
    void beginWaitingLine();
    void holdTick();
    void tellTimes(int64_t dabs) const;
    double now() const { return press_.canvas.clock(); }

    std::optional<BrushStroke> stroke_; // nothing once it is over
    SpeedPressure speedPressure_;
    std::optional<PenSample> waiting_; // the press, until the pointer's speed tells its pressure
    QPointF lastView_;                 // of press or drag
    QTimer holdTimer_;
    double lastHold_ = 0;
    PointTimes times_;
};

StrokeTool::StrokeTool(const ToolPress& press, const BrushSettings& brush)
    : CanvasTool(press),
      stroke_(std::in_place, press.doc(), press.doc().layers()[checkedSize(press.doc().activeIndex())], brush,
              press.model.colors().primary(), press.canvas.strokeSeed()),
      lastView_(press.sample.view) {
    holdTimer_.setTimerType(Qt::PreciseTimer);
    holdTimer_.setInterval(kHoldMilliseconds);
    QObject::connect(&holdTimer_, &QTimer::timeout, guarding(press.model, [this] { holdTick(); }));
}

void StrokeTool::begin() {
    const PenSample& sample = press_.sample;
    if (sample.fromPen || !press_.model.prefs().mouseSpeedPressure) {
        beginLine(sample, pressureOf(sample));
    } else {
        // The speed is not known yet. Taken as that of a mouse at rest, it would begin each line with a full blob.
        speedPressure_.follow(sample.time, sample.view / press_.canvas.devicePixelRatioF());
        waiting_ = sample;
    }
    if (stroke_ && (stroke_->brush().airbrush || stroke_->brush().spray)) {
        lastHold_ = now();
        holdTimer_.start();
    }
}

double StrokeTool::pressureOf(const PenSample& sample) {
    const PaintPrefs& prefs = press_.model.prefs();
    double raw = 1;
    if (sample.fromPen)
        raw = sample.pressure;
    else if (prefs.mouseSpeedPressure)
        raw = speedPressure_.next(sample.time, sample.view / press_.canvas.devicePixelRatioF());
    return shapedPressure(raw, prefs.pressureCurve);
}

void StrokeTool::beginLine(const PenSample& sample, double pressure) {
    const QPointF point = press_.canvas.canvasPoint(sample.view);
    const double start = now();
    const auto from = press_.canvas.lastStrokeEnd();
    if (sample.modifiers.testFlag(Qt::ShiftModifier) && from)
        stroke_->add(StrokePoint(from->x(), from->y(), pressure, 0, 0, sample.time));
    stroke_->add(StrokePoint(point.x(), point.y(), pressure, sample.tiltX, sample.tiltY, sample.time));
    press_.canvas.showPainted(sample.view, pressure);
    times_.add((now() - start) * 1000);
}

void StrokeTool::drag(const PenSample& sample, QPointF point) {
    const double pressure = pressureOf(sample);
    if (waiting_) beginLine(*std::exchange(waiting_, std::nullopt), pressure);
    if (!stroke_) return;
    lastView_ = sample.view;
    const double start = now();
    stroke_->add(StrokePoint(point.x(), point.y(), pressure, sample.tiltX, sample.tiltY, sample.time));
    press_.canvas.showPainted(sample.view, pressure);
    times_.add((now() - start) * 1000);
}

void StrokeTool::beginWaitingLine() {
    if (!waiting_) return;
    const double pressure = shapedPressure(SpeedPressure::kAtRest, press_.model.prefs().pressureCurve);
    beginLine(*std::exchange(waiting_, std::nullopt), pressure);
}

void StrokeTool::holdTick() {
    if (press_.model.longTask().isRunning()) return;
    beginWaitingLine();
    if (!stroke_) return;
    const double time = now();
    stroke_->hold(time - std::exchange(lastHold_, time));
    press_.canvas.scheduleFlush();
}

void StrokeTool::release(const PenSample& sample, QPointF) {
    holdTimer_.stop();
    if (waiting_) beginLine(*std::exchange(waiting_, std::nullopt), pressureOf(sample));
    const double start = now();
    stroke_->end();
    press_.canvas.flush();
    times_.add((now() - start) * 1000);
    const int64_t dabs = stroke_->dabCount();
    stroke_.reset();
    press_.canvas.setLastStrokeEnd(press_.canvas.canvasPoint(lastView_));
    CanvasStatus::Cursor lifted = press_.model.status().cursor();
    lifted.pressure = 0;
    press_.model.status().setCursor(lifted);
    if (dabs >= 1) press_.doc().commit(undoNameOf(press_.tool));
    press_.model.afterChange(press_.session);
    tellTimes(dabs);
}

void StrokeTool::tellTimes(int64_t dabs) const {
    press_.model.status().setLastStrokeStats(
        tr("Last stroke: %1, avg %L2 ms, max %L3 ms per point, %4")
            .arg(tr("%Ln points", nullptr, static_cast<int>(times_.count)))
            .arg(times_.sum / static_cast<double>(times_.count), 0, 'f', 1)
            .arg(times_.most, 0, 'f', 1)
            .arg(tr("%Ln dabs", nullptr, static_cast<int>(dabs))));
}

void StrokeTool::drop() {
    holdTimer_.stop();
    waiting_.reset();
    stroke_.reset();
}

} // namespace

std::unique_ptr<CanvasTool> pressStroke(const ToolPress& press) {
    PaintModel& model = press.model;
    const Layer& layer = press.doc().activeLayer();
    if (layer.isLocked) {
        model.messages().flash(
            StrokeTool::tr("The layer \"%1\" is locked — unlock it in the Layers panel").arg(layer.name));
        return nullptr;
    }
    if (!layer.isVisible) {
        model.messages().flash(
            StrokeTool::tr("The layer \"%1\" is hidden — show it to paint on it").arg(layer.name));
        return nullptr;
    }
    if (rowOf(press.tool).brushKind == BrushKind::paint) model.colors().pushRecent(model.colors().primary());
    BrushSettings brush = model.brushes().activeBrush();
    if (model.penIsEraser && brush.kind == BrushKind::paint) brush.kind = BrushKind::erase;
    auto stroke = std::make_unique<StrokeTool>(press, brush);
    stroke->begin();
    return stroke;
}

} // namespace qirn
