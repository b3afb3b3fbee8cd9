// Gradient: from the press to the release.
#include "app/canvas/CanvasView.h"
#include "app/model/Colors.h"
#include "app/model/PaintModel.h"
#include "app/tools/ToolTable.h"
#include "core/PaintDocument.h"
#include "operations/Gradient.h"

#include <cmath>

#include <QPainterPath>

namespace qirn {

namespace {

constexpr double kStartRadius = 4; // logical points: of the circle that marks the start
constexpr double kLeastLength = 1; // canvas pixels

class GradientTool final : public CanvasTool {
public:
    using CanvasTool::CanvasTool;

    void drag(const PenSample&, QPointF point) override {
        QPainterPath path(press_.point);
        path.lineTo(point);
        const double radius = kStartRadius * press_.logicalPoint();
        path.addEllipse(press_.point, radius, radius);
        press_.canvas.showPreview(path);
    }

    void release(const PenSample&, QPointF point) override {
        const QPointF line = point - press_.point;
        if (std::hypot(line.x(), line.y()) < kLeastLength) return;
        const Colors& colors = press_.model.colors();
        const ToolOptions& options = press_.model.options();
        PaintColor end = colors.secondary();
        if (options.gradientToTransparent) {
            end = colors.primary();
            end.a = 0;
        }
        gradientFill(press_.doc(), press_.point, point, options.gradientKind, colors.primary(), end,
                     options.gradientOpacity);
        press_.commit();
    }
};

} // namespace

std::unique_ptr<CanvasTool> pressGradient(const ToolPress& press) {
    return press.refusesLockedLayer() ? nullptr : std::make_unique<GradientTool>(press);
}

} // namespace qirn
