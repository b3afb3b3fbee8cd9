#pragma once
#include "core/selection/Selection.h"
#include "operations/Fill.h"
#include "operations/Gradient.h"
#include "operations/ShapePath.h"

namespace qirn {

/// The options of the tools that have no brush.
struct ToolOptions {
    FillOptions fill;
    GradientKind gradientKind = GradientKind::linear;
    bool gradientToTransparent = false; ///< From the paint color to nothing, otherwise to the second color.
    double gradientOpacity = 1;
    ShapeKind shapeKind = ShapeKind::rectangle;
    bool shapeFill = true;
    bool shapeOutline = false;
    double shapeLineWidth = 6; ///< Canvas pixels.
    SelectionOp selectionMode = SelectionOp::replace;
    bool selectionAntialias = true;

    bool operator==(const ToolOptions&) const = default;
};

} // namespace qirn
