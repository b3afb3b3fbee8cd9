#pragma once
#include "app/canvas/CanvasTool.h"
#include "app/desktop/BackgroundQueue.h"
#include "platform/BackgroundThread.h"

#include <memory>
#include <optional>

namespace qirn {

/// What the canvas is doing: nothing, or one gesture of a tool, from its press to its release.
class CanvasPhase {
public:
    bool isIdle() const { return !gesture_; }
    bool isGestureOf(Tool tool) const { return gesture_ && tool_ == tool; }
    /// A stroke, whose pixels are in no undo step yet.
    bool isPainting() const { return gesture_ && rowOf(tool_).usesBrush(); }
    const PenSample& latest() const { return latest_; } ///< Of the gesture.

    void begin(Tool tool, std::unique_ptr<CanvasTool> gesture, const PenSample& press); ///< Null: stays idle.
    void drag(const PenSample& sample, QPointF canvasPoint);                            ///< Not while idle.
    std::unique_ptr<CanvasTool> end(); ///< The gesture, which the caller releases. Null when idle.
    void drop();                       ///< The gesture goes without a release.

private:
    std::unique_ptr<CanvasTool> gesture_; // null: idle
    std::unique_ptr<CanvasTool> dropped_; // kept until the next one begins: its drag may be on the stack
    Tool tool_ = Tool::brush;
    PenSample latest_;
    /// Previews wait for a stroke, and what is written in the background rests meanwhile.
    struct Quiet {
        Quiet() : previews(BackgroundQueue::previews()) {}
        BackgroundQueue::Pause previews;
        HandInMotion hand;
    };
    std::optional<Quiet> quiet_; // during a stroke
};

} // namespace qirn
