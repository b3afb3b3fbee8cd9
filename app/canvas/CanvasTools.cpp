// Press, drag and release of the tools that do not paint with a brush. Adding a tool is adding a row.
#include "app/canvas/CanvasView.h"

#include "app/edits/CanvasEdits.h"
#include "app/files/DocSession.h"
#include "app/model/Colors.h"
#include "app/model/Messages.h"
#include "app/model/PaintModel.h"
#include "app/model/PendingTransform.h"
#include "operations/Fill.h"
#include "operations/Gradient.h"
#include "core/selection/Selection.h"
#include "operations/ShapePath.h"
#include "operations/Stamp.h"

#include <algorithm>
#include <cmath>

#include <QCoreApplication>

namespace qirn {

namespace {

constexpr double kClickDistance = 3; // logical points; a shorter selection drag is a click
constexpr double kLassoStep = 2;     // logical points between two points of a lasso
constexpr double kGradientDot = 4;   // logical points: radius of the circle at its start

Constrain constrainFrom(Qt::KeyboardModifiers modifiers) {
    return modifiers.testFlag(Qt::ShiftModifier) ? Constrain::yes : Constrain::no;
}

double length(QPointF v) {
    return std::hypot(v.x(), v.y());
}

} // namespace

struct CanvasView::ToolGesture {
    Tool tool;
    bool (CanvasView::*press)(const PenSample&); ///< True when a drag begins.
    void (CanvasView::*drag)(const PenSample&) = nullptr;
    void (CanvasView::*release)(const PenSample&) = nullptr;
};

const CanvasView::ToolGesture* CanvasView::gestureOf(Tool tool) {
    using V = CanvasView;
    static constexpr ToolGesture kGestures[] = {
        {Tool::bucket, &V::pressBucket},
        {Tool::gradient, &V::pressOnUnlockedLayer, &V::dragGradient, &V::releaseGradient},
        {Tool::selectRect, &V::pressSelect, &V::dragSelectBox, &V::releaseSelectBox},
        {Tool::selectEllipse, &V::pressSelect, &V::dragSelectBox, &V::releaseSelectBox},
        {Tool::lasso, &V::pressLasso, &V::dragLasso, &V::releaseLasso},
        {Tool::move, &V::pressMove, &V::dragMove},
        {Tool::shape, &V::pressOnUnlockedLayer, &V::dragShape, &V::releaseShape},
        {Tool::text, &V::pressText},
    };
    for (const ToolGesture& gesture : kGestures) {
        if (gesture.tool == tool) return &gesture;
    }
    return nullptr;
}

void CanvasView::pressTool(const PenSample& sample) {
    gesture_ = gestureOf(model_.tool());
    if (gesture_ && (this->*gesture_->press)(sample)) drag_ = Drag::tool;
}

void CanvasView::dragTool(const PenSample& sample) {
    if (gesture_->drag) (this->*gesture_->drag)(sample);
}

void CanvasView::releaseTool(const PenSample& sample) {
    if (gesture_->release) (this->*gesture_->release)(sample);
    dragBase_.reset();
}

bool CanvasView::refusesLockedLayer() {
    if (!session_->doc().activeLayer().isLocked) return false;
    model_.messages().flash(tr("The layer is locked"));
    return true;
}

void CanvasView::commitGesture(const QString& name) {
    session_->doc().commit(name);
    flush();
    session_->announceChange();
    model_.announce();
}

void CanvasView::showPreview(const QPainterPath& canvasPath) {
    const QRegion before = overlay_.previewRegion();
    overlay_.setPreview(canvasPath);
    update(toWidget(before + overlay_.previewRegion()));
}

// --- Bucket and gradient

bool CanvasView::pressBucket(const PenSample&) {
    if (refusesLockedLayer()) return false;
    const IRect filled = bucketFill(session_->doc(), static_cast<int64_t>(std::floor(dragStart_.x())),
                                    static_cast<int64_t>(std::floor(dragStart_.y())),
                                    model_.colors().primary(), model_.options().fill, 1.0);
    if (filled.isEmpty()) {
        model_.messages().flash(tr("Click inside the picture to fill"));
    } else {
        model_.colors().pushRecent(model_.colors().primary());
        commitGesture(tr("Bucket Fill"));
    }
    return false;
}

bool CanvasView::pressOnUnlockedLayer(const PenSample&) {
    return !refusesLockedLayer();
}

void CanvasView::dragGradient(const PenSample&) {
    QPainterPath path(dragStart_);
    path.lineTo(dragCurrent_);
    const double radius = kGradientDot * pixelRatio() / std::max(session_->view.zoom, kMinZoom);
    path.addEllipse(dragStart_, radius, radius);
    showPreview(path);
}

void CanvasView::releaseGradient(const PenSample&) {
    if (length(dragCurrent_ - dragStart_) < 1) return;
    PaintColor end = model_.colors().secondary();
    if (model_.options().gradientToTransparent) {
        end = model_.colors().primary();
        end.a = 0;
    }
    gradientFill(session_->doc(), dragStart_, dragCurrent_, model_.options().gradientKind,
                 model_.colors().primary(), end, model_.options().gradientOpacity);
    commitGesture(tr("Gradient"));
}

// --- Selections

bool CanvasView::pressSelect(const PenSample&) {
    return true;
}

QPainterPath CanvasView::selectionBox(Qt::KeyboardModifiers modifiers) const {
    const bool isSquare = modifiers.testFlag(Qt::ShiftModifier);
    const QPointF corner = isSquare ? squareCorner(dragStart_, dragCurrent_) : dragCurrent_;
    const QRectF box = QRectF(dragStart_, corner).normalized();
    QPainterPath path;
    if (gesture_->tool == Tool::selectEllipse) // the model's tool may be another by now
        path.addEllipse(box);
    else
        path.addRect(IRect::covering(box).rectF()); // outward to whole pixels
    return path;
}

void CanvasView::dragSelectBox(const PenSample& sample) {
    showPreview(selectionBox(sample.modifiers));
}

void CanvasView::releaseSelectBox(const PenSample& sample) {
    const double distance = length(dragCurrent_ - dragStart_) * session_->view.zoom;
    if (distance >= kClickDistance * pixelRatio())
        commitSelection(selectionBox(sample.modifiers), sample.modifiers);
    else
        CanvasEdits::deselect(model_);
}

bool CanvasView::pressLasso(const PenSample&) {
    lassoPoints_ = {dragStart_};
    return true;
}

void CanvasView::dragLasso(const PenSample&) {
    if (length(dragCurrent_ - lassoPoints_.back()) * session_->view.zoom < kLassoStep * pixelRatio()) return;
    lassoPoints_.push_back(dragCurrent_);
    QPainterPath path(lassoPoints_.front());
    for (const QPointF& point : lassoPoints_) path.lineTo(point);
    showPreview(path);
}

void CanvasView::releaseLasso(const PenSample& sample) {
    const std::vector<QPointF> points = std::exchange(lassoPoints_, {});
    if (points.size() < 3) return CanvasEdits::deselect(model_);
    QPainterPath path(points.front());
    for (const QPointF& point : points) path.lineTo(point);
    path.closeSubpath();
    commitSelection(path, sample.modifiers);
}

void CanvasView::commitSelection(const QPainterPath& path, Qt::KeyboardModifiers modifiers) {
    SelectionOp op = model_.options().selectionMode;
    const bool option = modifiers.testFlag(Qt::AltModifier);
    const bool shiftAdds = gesture_->tool == Tool::lasso && modifiers.testFlag(Qt::ShiftModifier);
    if (modifiers.testFlag(Qt::ControlModifier))
        op = option ? SelectionOp::intersect : SelectionOp::add;
    else if (shiftAdds)
        op = SelectionOp::add;
    else if (option)
        op = SelectionOp::subtract;
    PaintDocument& doc = session_->doc();
    doc.selection = Selection::make(path, op, doc.selection, doc.grid().width, doc.grid().height,
                                    model_.options().selectionAntialias ? Antialias::yes : Antialias::no);
    commitGesture(tr("Select"));
}

// --- Move and transform

bool CanvasView::pressMove(const PenSample&) {
    if (!model_.transform().state()) model_.transform().beginTransform();
    if (!model_.transform().state()) return false;
    dragBase_ = *model_.transform().state();
    transformDrag_ = TransformDrag::move;
    // Handles have a constant size on screen.
    const double point = pixelRatio() / std::max(session_->view.zoom, kMinZoom);
    const double reach = CanvasOverlay::kHandleReach * point;
    if (length(dragStart_ - dragBase_->rotateHandle(CanvasOverlay::kRotateHandleDistance * point)) <
        1.4 * reach) {
        transformDrag_ = TransformDrag::rotate;
    } else {
        for (const QPointF& corner : dragBase_->corners()) {
            if (length(dragStart_ - corner) < reach) transformDrag_ = TransformDrag::scale;
        }
    }
    return true;
}

void CanvasView::dragMove(const PenSample& sample) {
    if (!dragBase_ || !model_.transform().state()) return;
    const bool shift = sample.modifiers.testFlag(Qt::ShiftModifier);
    TransformState next = *dragBase_;
    switch (transformDrag_) {
    case TransformDrag::move:
        next.center = dragBase_->center + dragCurrent_ - dragStart_;
        break;
    case TransformDrag::scale:
        next = scaledBy(*dragBase_, dragStart_, dragCurrent_, shift);
        break;
    case TransformDrag::rotate:
        next = turnedBy(*dragBase_, dragStart_, dragCurrent_, shift);
        break;
    }
    model_.transform().updateTransform([&](TransformState& state) { state = next; });
}

// --- Shapes and text

void CanvasView::dragShape(const PenSample& sample) {
    const Constrain constrain = constrainFrom(sample.modifiers);
    const auto path = shapePath(model_.options().shapeKind, dragStart_, dragCurrent_, constrain,
                                model_.options().shapeLineWidth);
    showPreview(path.value_or(QPainterPath()));
}

void CanvasView::releaseShape(const PenSample& sample) {
    const ShapeKind kind = model_.options().shapeKind;
    const Constrain constrain = constrainFrom(sample.modifiers);
    const auto path = shapePath(kind, dragStart_, dragCurrent_, constrain, model_.options().shapeLineWidth);
    if (!path) return;
    // A line has no inside: it is always drawn, in the paint colour.
    std::optional<PaintColor> fill, outline;
    if (model_.options().shapeFill && !isOpen(kind)) fill = model_.colors().primary();
    if (model_.options().shapeOutline || isOpen(kind))
        outline = fill ? model_.colors().secondary() : model_.colors().primary();
    if (!fill && !outline) return model_.messages().flash(tr("Turn on Fill or Outline for shapes"));
    const auto shape = renderShape(*path, fill, outline, model_.options().shapeLineWidth, Antialias::yes);
    if (!shape) return;
    PaintDocument& doc = session_->doc();
    stamp(doc, *shape->buffer, shape->rect.x, shape->rect.y, doc.activeLayer(), 1.0, UseSelection::yes);
    commitGesture(QCoreApplication::translate("ShapeKind", rowOf(kind).title));
}

bool CanvasView::pressText(const PenSample&) {
    // Queued: a dialog inside a pen's press would have the press come again.
    const QPointF at = dragStart_;
    QMetaObject::invokeMethod(
        this, [this, at] { Q_EMIT textRequested(at); }, Qt::QueuedConnection);
    return false;
}

} // namespace qirn
