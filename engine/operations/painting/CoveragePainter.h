#pragma once
#include "core/IRect.h"
#include "core/PaintDocument.h"
#include "operations/painting/TileMask.h"

namespace qirn {

// One color laid on a rectangle of a layer, within the selection where there is one and keeping the alpha lock.
// Returns the rectangle's part of the canvas, marked dirty; the zero rectangle when there is none. A tile on which
// nothing lands is not made, nor copied. Commits nothing.

/// At full coverage.
IRect paintCoverage(PaintDocument& doc, const IRect& rect, Layer& layer, const PaintColor& color,
                    double opacity);
/// As far as the mask, of the document's grid, covers each pixel.
IRect paintCoverage(PaintDocument& doc, const IRect& rect, Layer& layer, const PaintColor& color,
                    double opacity, const TileMask& coverage);

} // namespace qirn
