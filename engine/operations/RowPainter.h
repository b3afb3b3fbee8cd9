#pragma once
#include <cstdint>

namespace qirn {

enum class AlphaLock {
    no,
    yes
}; ///< With `yes` a pixel keeps its alpha, and one without alpha stays as it is.

/// Lays a straight colour (r, g, b and a 1, each from 0 to 1) on each of `count` premultiplied pixels of a tile's
/// row, to the extent of its coverage from 0 to 1. A coverage of 0 leaves the pixel's bytes as they are.
void paintRow(AlphaLock lock, const float* colors, const float* coverage, uint8_t* pixels, int64_t count);

} // namespace qirn
