// Zoom: a drag to the right magnifies, round the press; with Option or Command a press is a step out.
#include "app/canvas/CanvasView.h"
#include "app/tools/ToolTable.h"

#include <cmath>

namespace qirn {

namespace {

constexpr double kFactor = 1.01; // for each view point to the right

class ZoomTool final : public CanvasTool {
public:
    explicit ZoomTool(const ToolPress& press) : CanvasTool(press), zoom_(press.session.view.zoom) {}

    void drag(const PenSample& sample, QPointF) override {
        const QPointF start = press_.sample.view;
        press_.canvas.setZoom(zoom_ * std::pow(kFactor, sample.view.x() - start.x()), start);
    }

private:
    const double zoom_; // at the press
};

} // namespace

std::unique_ptr<CanvasTool> pressZoom(const ToolPress& press) {
    if (press.sample.modifiers & (Qt::AltModifier | Qt::ControlModifier) && !press.isLent) {
        press.canvas.zoomStep(false, press.sample.view);
        return nullptr;
    }
    return std::make_unique<ZoomTool>(press);
}

} // namespace qirn
