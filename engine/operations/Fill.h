#pragma once
#include "core/IRect.h"
#include "core/PaintDocument.h"
#include "operations/flood/FillOptions.h"

#include <cstdint>

namespace qirn {

// Flat color on the active layer, within the selection and keeping the alpha lock. Each returns the rectangle that
// it painted; the zero rectangle when the layer is locked or there is nothing to fill. None commits.

/// Fills what is like the pixel at (x, y) of the canvas. The selection limits the paint and not the search, which
/// may leave it and come back.
IRect bucketFill(PaintDocument& doc, int64_t x, int64_t y, const PaintColor& color,
                 const FillOptions& options, double opacity);
/// Without a selection the whole canvas.
IRect fillSelection(PaintDocument& doc, const PaintColor& color, double opacity);

} // namespace qirn
