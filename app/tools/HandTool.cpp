// Hand: drags the picture about in the view; with Shift it turns it, where the hand is lent.
#include "app/canvas/CanvasView.h"
#include "app/tools/ToolTable.h"

#include <cmath>
#include <numbers>

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

/// Turns the picture round the view's middle.
class TurnTool final : public CanvasTool {
public:
    explicit TurnTool(const ToolPress& press)
        : CanvasTool(press),
          rotation_(press.session.view.rotation),
          angle_(angleOf(press.sample)) {}

    void drag(const PenSample& sample, QPointF) override {
        // Clockwise on screen, where angles count the other way.
        press_.canvas.setRotation(std::fmod(rotation_ + angle_ - angleOf(sample), 360));
    }

private:
    /// Degrees, seen from the view's middle.
    double angleOf(const PenSample& sample) const {
        const QPointF from = sample.view - press_.canvas.viewMiddle();
        return std::atan2(from.y(), from.x()) * 180 / std::numbers::pi;
    }

    const double rotation_; // at the press
    const double angle_;
};

} // namespace

std::unique_ptr<CanvasTool> pressHand(const ToolPress& press) {
    if (press.sample.clicks == 2 && !press.isLent) {
        press.canvas.fit();
        return nullptr;
    }
    const bool turns = press.isLent && press.sample.modifiers.testFlag(Qt::ShiftModifier);
    if (turns) return std::make_unique<TurnTool>(press);
    return std::make_unique<HandTool>(press);
}

} // namespace qirn
