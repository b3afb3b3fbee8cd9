#pragma once
#include "operations/Gradient.h"
#include "operations/painting/RowPainter.h"

#include <cstdint>

namespace qirn {

/// Where a gradient runs, in canvas pixels.
struct GradientDrag {
    GradientKind kind;
    double x, y;      ///< Start.
    double dx, dy;    ///< From there to the end.
    double len2, len; ///< Squared length, above 0, and its root.
};

/// Its colors, mixed premultiplied: red, green, blue and alpha, from 0 to 1.
struct GradientRamp {
    double first[4];
    double step[4]; ///< From first to last.
    double opacity;
    AlphaLock lock;

    bool isOpaque() const { return first[3] == 1 && step[3] == 0; }
    /// Whether the gradient hides what was there before.
    bool hides() const { return isOpaque() && static_cast<float>(opacity) == 1 && lock == AlphaLock::no; }
};

/// Lays the gradient on the premultiplied pixels of a tile's row that begins at (x, y) of the canvas. Pixels without
/// coverage keep their bytes, as do those where the gradient is transparent. The same bytes on every instruction set.
void paintRow(const GradientDrag& drag, const GradientRamp& ramp, int64_t x, int64_t y,
              const CoverageRow& coverage, uint8_t* row);

} // namespace qirn
