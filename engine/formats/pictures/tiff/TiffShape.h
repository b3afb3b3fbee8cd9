#pragma once
#include "formats/common/ColorProfile.h"

#include <cstdint>

struct tiff;

namespace qirn {

/// How the first picture of a TIFF lies in its file.
struct TiffShape {
    enum class Alpha { none, straight, premultiplied };

    int64_t width = 0;
    int64_t height = 0;
    int64_t bitsAPixel = 0; ///< Before compression.
    uint16_t compression = 0;
    uint16_t photometric = 0;
    int bits = 0;    ///< A sample.
    int samples = 0; ///< A pixel, those that are neither color nor alpha included.
    bool isPlanar = false;
    bool isIndexed =
        false; ///< One sample a pixel, that stands for a gray of few bits or for a color of a map.
    bool isAsStored =
        false; ///< The samples are given as they lie; otherwise the library makes 8-bit RGBA of them.
    Alpha alpha = Alpha::none;
    int alphaSample = 0;
    PixelLayout layout; ///< Of the rows that are given.
};

/// Sides of 0 when the file does not say them.
TiffShape shapeOf(tiff* file);

} // namespace qirn
