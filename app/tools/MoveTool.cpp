// Move & Transform: lifts pixels and drags them, or a handle of their box. They float until they are put down.
#include "app/canvas/CanvasOverlay.h"
#include "app/model/PaintModel.h"
#include "app/model/PendingTransform.h"
#include "app/tools/ToolTable.h"

#include <cmath>

namespace qirn {

namespace {

class MoveTool final : public CanvasTool {
public:
    MoveTool(const ToolPress& press, const TransformState& base)
        : CanvasTool(press),
          base_(base),
          handle_(handleAt(press.point)) {}

    void drag(const PenSample& sample, QPointF point) override {
        PendingTransform& transform = press_.model.transform();
        if (!transform.isPending()) return;
        const TransformState next = dragged(point, sample.modifiers.testFlag(Qt::ShiftModifier));
        transform.updateTransform([&](TransformState& state) { state = next; });
    }

private:
    enum class Handle { box, corner, rotate };

    Handle handleAt(QPointF point) const {
        const double logicalPoint = press_.logicalPoint(); // handles have a constant size on screen
        const double reach = CanvasOverlay::kHandleReach * logicalPoint;
        const auto isNear = [&](QPointF handle, double distance) {
            return std::hypot(point.x() - handle.x(), point.y() - handle.y()) < distance;
        };
        if (isNear(base_.rotateHandle(CanvasOverlay::kRotateHandleDistance * logicalPoint), 1.4 * reach))
            return Handle::rotate;
        for (const QPointF& corner : base_.corners()) {
            if (isNear(corner, reach)) return Handle::corner;
        }
        return Handle::box;
    }

    TransformState dragged(QPointF to, bool shift) const {
        switch (handle_) {
        case Handle::corner:
            return scaledBy(base_, press_.point, to, shift);
        case Handle::rotate:
            return turnedBy(base_, press_.point, to, shift);
        case Handle::box:
            break;
        }
        TransformState next = base_;
        next.center = base_.center + to - press_.point;
        return next;
    }

    const TransformState base_; // at the press
    const Handle handle_;
};

} // namespace

std::unique_ptr<CanvasTool> pressMove(const ToolPress& press) {
    PendingTransform& transform = press.model.transform();
    if (!transform.isPending()) transform.beginTransform();
    if (!transform.isPending()) return nullptr;
    return std::make_unique<MoveTool>(press, *transform.state());
}

} // namespace qirn
