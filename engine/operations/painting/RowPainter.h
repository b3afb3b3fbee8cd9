#pragma once
#include "core/Tile.h"

#include <array>
#include <cstdint>

namespace qirn {

/// With `yes` a pixel keeps its alpha, and one without alpha stays as it is.
enum class AlphaLock { no, yes };

/// How far each pixel of a tile's row is covered, 0 to 255.
using CoverageRow = std::array<uint8_t, kTileSize>;

/// One color, straight, from 0 to 1, as are the opacities.
struct FlatPaint {
    float r, g, b;
    float strength; ///< Opacity where the coverage is full.
    AlphaLock lock = AlphaLock::no;

    /// Whether full coverage hides what was there before.
    bool hides() const;
};

/// Lays the color on the premultiplied pixels of a tile's row. Those without coverage keep their bytes. The same
/// bytes on every instruction set.
void paintRow(const FlatPaint& paint, const CoverageRow& coverage, uint8_t* row);

} // namespace qirn
