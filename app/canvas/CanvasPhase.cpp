#include "app/canvas/CanvasPhase.h"

#include <utility>

namespace qirn {

void CanvasPhase::begin(Tool tool, std::unique_ptr<CanvasTool> gesture, const PenSample& press) {
    dropped_.reset();
    gesture_ = std::move(gesture);
    tool_ = tool;
    latest_ = press;
    if (isPainting()) quiet_.emplace();
}

void CanvasPhase::drag(const PenSample& sample, QPointF canvasPoint) {
    latest_ = sample;
    gesture_->drag(sample, canvasPoint);
}

std::unique_ptr<CanvasTool> CanvasPhase::end() {
    quiet_.reset();
    return std::exchange(gesture_, nullptr);
}

void CanvasPhase::drop() {
    quiet_.reset();
    if (!gesture_) return;
    dropped_ = std::exchange(gesture_, nullptr);
    dropped_->drop();
}

} // namespace qirn
