// Rectangle, Ellipse and Lasso Select: the outline of a drag, combined with the selection that is there.
#include "app/canvas/CanvasView.h"
#include "app/edits/CanvasEdits.h"
#include "app/model/PaintModel.h"
#include "app/tools/ToolTable.h"
#include "core/PaintDocument.h"
#include "core/selection/Selection.h"
#include "operations/ShapePath.h"

#include <vector>

#include <QPainterPath>

namespace qirn {

namespace {

constexpr double kLeastDrag = 3; // logical points; a shorter drag is a click
constexpr double kLassoStep = 2; // logical points between two points of a lasso
constexpr int kLeastPoints = 3;  // of a lasso; with fewer it is a click

void select(const ToolPress& press, const QPainterPath& path, Qt::KeyboardModifiers modifiers) {
    const ToolOptions& options = press.model.options();
    SelectionOp op = options.selectionMode;
    const bool option = modifiers.testFlag(Qt::AltModifier);
    const bool shiftAdds = press.tool == Tool::lasso && modifiers.testFlag(Qt::ShiftModifier);
    if (modifiers.testFlag(Qt::ControlModifier))
        op = option ? SelectionOp::intersect : SelectionOp::add;
    else if (shiftAdds)
        op = SelectionOp::add;
    else if (option)
        op = SelectionOp::subtract;
    PaintDocument& doc = press.doc();
    doc.selection = Selection::make(path, op, doc.selection, doc.grid().width, doc.grid().height,
                                    options.selectionAntialias ? Antialias::yes : Antialias::no);
    press.commit();
}

class SelectBoxTool final : public CanvasTool {
public:
    using CanvasTool::CanvasTool;

    void drag(const PenSample& sample, QPointF point) override {
        press_.canvas.showPreview(outline(point, sample.modifiers));
    }

    void release(const PenSample& sample, QPointF point) override {
        if (press_.logicalLength(point - press_.point) < kLeastDrag)
            return CanvasEdits::deselect(press_.model);
        select(press_, outline(point, sample.modifiers), sample.modifiers);
    }

private:
    /// With Shift a square, away from the press.
    QPainterPath outline(QPointF to, Qt::KeyboardModifiers modifiers) const {
        const bool isSquare = modifiers.testFlag(Qt::ShiftModifier);
        const QPointF corner = isSquare ? squareCorner(press_.point, to) : to;
        const QRectF box = QRectF(press_.point, corner).normalized();
        QPainterPath path;
        if (press_.tool == Tool::selectEllipse)
            path.addEllipse(box);
        else
            path.addRect(IRect::covering(box).rectF()); // outward to whole pixels
        return path;
    }
};

class LassoTool final : public CanvasTool {
public:
    explicit LassoTool(const ToolPress& press) : CanvasTool(press), points_{press.point} {}

    void drag(const PenSample&, QPointF point) override {
        if (press_.logicalLength(point - points_.back()) < kLassoStep) return;
        points_.push_back(point);
        press_.canvas.showPreview(outline());
    }

    void release(const PenSample& sample, QPointF) override {
        if (points_.size() < kLeastPoints) return CanvasEdits::deselect(press_.model);
        QPainterPath path = outline();
        path.closeSubpath();
        select(press_, path, sample.modifiers);
    }

private:
    QPainterPath outline() const {
        QPainterPath path(points_.front());
        for (const QPointF& point : points_) path.lineTo(point);
        return path;
    }

    std::vector<QPointF> points_; // canvas
};

} // namespace

std::unique_ptr<CanvasTool> pressSelectBox(const ToolPress& press) {
    return std::make_unique<SelectBoxTool>(press);
}

std::unique_ptr<CanvasTool> pressLasso(const ToolPress& press) {
    return std::make_unique<LassoTool>(press);
}

} // namespace qirn
