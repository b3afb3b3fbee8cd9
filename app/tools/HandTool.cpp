// Hand: drags the picture about in the view.
#include "app/canvas/CanvasView.h"
#include "app/tools/ToolTable.h"

namespace qirn {

namespace {

class HandTool final : public CanvasTool {
public:
    explicit HandTool(const ToolPress& press) : CanvasTool(press), pan_(press.session.view.pan) {}

    void drag(const PenSample& sample, QPointF) override {
        press_.canvas.setPan(pan_ + sample.view - press_.sample.view);
    }

private:
    const QPointF pan_; // at the press
};

} // namespace

std::unique_ptr<CanvasTool> pressHand(const ToolPress& press) {
    if (press.sample.clicks == 2 && !press.isLent) {
        press.canvas.fit();
        return nullptr;
    }
    return std::make_unique<HandTool>(press);
}

} // namespace qirn
