#pragma once
#include "app/canvas/CanvasTool.h"

namespace qirn {

// What a press of each tool begins; each stands in the file of its tool.
std::unique_ptr<CanvasTool> pressStroke(const ToolPress& press);
std::unique_ptr<CanvasTool> pressBucket(const ToolPress& press);
std::unique_ptr<CanvasTool> pressGradient(const ToolPress& press);
std::unique_ptr<CanvasTool> pressPick(const ToolPress& press);
std::unique_ptr<CanvasTool> pressSelectBox(const ToolPress& press);
std::unique_ptr<CanvasTool> pressLasso(const ToolPress& press);
std::unique_ptr<CanvasTool> pressMove(const ToolPress& press);
std::unique_ptr<CanvasTool> pressShape(const ToolPress& press);
std::unique_ptr<CanvasTool> pressText(const ToolPress& press);
std::unique_ptr<CanvasTool> pressHand(const ToolPress& press);
std::unique_ptr<CanvasTool> pressZoom(const ToolPress& press);

inline constexpr ToolTable kToolTable{{
    {Tool::brush, pressStroke},
    {Tool::eraser, pressStroke},
    {Tool::smudge, pressStroke},
    {Tool::blur, pressStroke},
    {Tool::bucket, pressBucket},
    {Tool::gradient, pressGradient},
    {Tool::eyedropper, pressPick},
    {Tool::selectRect, pressSelectBox},
    {Tool::selectEllipse, pressSelectBox},
    {Tool::lasso, pressLasso},
    {Tool::move, pressMove},
    {Tool::shape, pressShape},
    {Tool::text, pressText},
    {Tool::hand, pressHand},
    {Tool::zoom, pressZoom},
}};
static_assert([] {
    for (std::size_t i = 0; i < kToolTable.size(); ++i) {
        if (kToolTable[i].tool != static_cast<Tool>(i) || !kToolTable[i].press) return false;
    }
    return true;
}());

} // namespace qirn
