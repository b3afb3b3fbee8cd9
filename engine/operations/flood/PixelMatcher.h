#pragma once
#include "core/PaintColor.h"
#include "operations/painting/TileBits.h"

#include <cstdint>

namespace qirn {

/// Finds the pixels like the clicked one: each of their four bytes differs by at most the tolerance.
class PixelMatcher {
public:
    PixelMatcher(const PixelBytes& clicked, int64_t tolerance); ///< The tolerance counts from 0 to 255.

    bool matchesTransparent() const { return lowest_ == PixelBytes{}; }
    /// All pixels of a tile.
    void match(const uint8_t* pixels, TileBits& out) const;

private:
    PixelBytes lowest_, highest_;
};

} // namespace qirn
