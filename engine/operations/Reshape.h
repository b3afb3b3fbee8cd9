#pragma once
#include "core/PaintDocument.h"
#include "platform/Progress.h"

#include <cstdint>

namespace qirn {

// Changes of the canvas: every layer is redrawn into a new grid and keeps its identity and settings. The selection
// is dropped, `onGridChange` is told and everything counts as dirty. None commits; one that is cancelled has changed
// nothing. Sizes below 1 count as 1.

enum class FlipAxis { horizontal, vertical };

/// Scales the picture to another size, smoothly, each layer for itself.
void resizeImage(PaintDocument& doc, int64_t width, int64_t height, const Progress& progress = {});
/// Gives the canvas another size without scaling. The anchors say where what is there stays: 0 at the left or top
/// edge, 1 at the right or bottom, 0.5 in the middle; halves of pixels round away from zero.
void resizeCanvas(PaintDocument& doc, int64_t width, int64_t height, double anchorX, double anchorY,
                  const Progress& progress = {});
/// Keeps a rectangle, or what of it lies on the canvas; does nothing at all for one outside.
void cropTo(PaintDocument& doc, const IRect& rect, const Progress& progress = {});
/// Clockwise, or the other way for a negative count; exact. Full circles do nothing at all.
void rotate(PaintDocument& doc, int64_t quarterTurns, const Progress& progress = {});
/// Exact; horizontal swaps left and right.
void flipCanvas(PaintDocument& doc, FlipAxis axis, const Progress& progress = {});

} // namespace qirn
