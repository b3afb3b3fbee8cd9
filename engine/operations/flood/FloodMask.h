#pragma once
#include "core/IRect.h"
#include "core/PaintDocument.h"
#include "operations/flood/FillOptions.h"
#include "operations/painting/TileMask.h"

#include <cstdint>
#include <optional>

namespace qirn {

/// What a click of the bucket covers.
struct FloodMask {
    TileMask mask;
    IRect bounds; ///< Tight.
};

/// The pixels like the one at (x, y), seen on the active layer or in the finished picture, grown as the options
/// say. Nothing for a pixel outside the canvas. The selection plays no part.
std::optional<FloodMask> fillMask(const PaintDocument& doc, int64_t x, int64_t y, const FillOptions& options);

} // namespace qirn
