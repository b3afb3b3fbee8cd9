// Shapes: one shape in the box, or along the line, from press to release.
#include "app/canvas/CanvasView.h"
#include "app/model/Colors.h"
#include "app/model/Messages.h"
#include "app/model/PaintModel.h"
#include "app/tools/ToolTable.h"
#include "core/PaintDocument.h"
#include "operations/ShapePath.h"
#include "operations/Stamp.h"

#include <QCoreApplication>
#include <QPainterPath>

namespace qirn {

namespace {

class ShapeTool final : public CanvasTool {
    Q_DECLARE_TR_FUNCTIONS(qirn::ShapeTool)
public:
    using CanvasTool::CanvasTool;

    void drag(const PenSample& sample, QPointF point) override {
        press_.canvas.showPreview(shapeTo(sample, point).value_or(QPainterPath()));
    }

    void release(const PenSample& sample, QPointF point) override {
        const auto path = shapeTo(sample, point);
        if (!path) return;
        const Colors& colors = press_.model.colors();
        const ToolOptions& options = press_.model.options();
        // A line has no inside: it is always drawn, in the paint color.
        std::optional<PaintColor> fill, outline;
        if (options.shapeFill && !isOpen(options.shapeKind)) fill = colors.primary();
        if (options.shapeOutline || isOpen(options.shapeKind))
            outline = fill ? colors.secondary() : colors.primary();
        if (!fill && !outline) return press_.model.messages().flash(tr("Turn on Fill or Outline for shapes"));
        const auto shape = renderShape(*path, fill, outline, options.shapeLineWidth, Antialias::yes);
        if (!shape) return;
        PaintDocument& doc = press_.doc();
        stamp(doc, *shape->buffer, shape->rect.x, shape->rect.y, doc.activeLayer(), 1.0, UseSelection::yes);
        press_.commit(QCoreApplication::translate("ShapeKind", rowOf(options.shapeKind).title));
    }

private:
    std::optional<QPainterPath> shapeTo(const PenSample& sample, QPointF to) const {
        const ToolOptions& options = press_.model.options();
        const bool shift = sample.modifiers.testFlag(Qt::ShiftModifier);
        return shapePath(options.shapeKind, press_.point, to, shift ? Constrain::yes : Constrain::no,
                         options.shapeLineWidth);
    }
};

} // namespace

std::unique_ptr<CanvasTool> pressShape(const ToolPress& press) {
    return press.refusesLockedLayer() ? nullptr : std::make_unique<ShapeTool>(press);
}

} // namespace qirn
