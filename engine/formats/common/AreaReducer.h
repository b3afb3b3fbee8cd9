#pragma once
#include "core/IRect.h"
#include "core/PaintColor.h"
#include "core/RGBABuffer.h"

#include <cstdint>
#include <memory>
#include <vector>

#include <QSize>

namespace qirn {

/// Reduces a picture to a smaller one by the exact average of the area that each target pixel covers, without
/// ever holding the picture: it is handed over in rectangles, in any order. All sums are whole numbers, so the
/// result does not depend on how the picture was cut, in what order the parts came, or on how many threads. What
/// is never handed over counts as transparent. Pixels are premultiplied throughout.
///
/// Lengths are in units of which the whole picture is `source width * target width` wide: a source pixel is `target
/// width` wide and a target pixel `source width`, so every overlap is a whole number. The same goes for the heights.
class AreaReducer {
public:
    /// A target side is at least 1 and at most the source's. Only target pixels inside `window` are
    /// made, all of them where none is given.
    AreaReducer(int64_t sourceWidth, int64_t sourceHeight, int64_t targetWidth, int64_t targetHeight);
    AreaReducer(int64_t sourceWidth, int64_t sourceHeight, int64_t targetWidth, int64_t targetHeight,
                const IRect& window);

    /// The part of the picture that reaches into the window.
    IRect sourceOfWindow() const;

    /// What a part of the picture adds to the target pixels of `place`: four weighted sums for each.
    struct Patch {
        IRect place;
        std::vector<uint64_t> sums;
    };
    /// May be called from several threads at once. `rowBytes` is the distance between rows of `pixels`.
    Patch reduce(const IRect& source, const uint8_t* pixels, int64_t rowBytes) const;
    Patch reduceUniform(const IRect& source, const PixelBytes& pixel) const;

    void add(const Patch& patch);

    /// The window's part of the target.
    std::shared_ptr<RGBABuffer> result() const;

private:
    /// One direction: lengths in pixels.
    struct Axis {
        int64_t source;
        int64_t target;

        int64_t firstTarget(int64_t sourcePixel) const { return sourcePixel * target / source; }
        int64_t endTarget(int64_t sourceEnd) const { return (sourceEnd * target + source - 1) / source; }
        int64_t firstSource(int64_t targetPixel) const { return targetPixel * source / target; }
        int64_t endSource(int64_t targetPixel) const {
            return ((targetPixel + 1) * source + target - 1) / target;
        }
        /// Overlap of the source pixels [from, to) with a target pixel.
        int64_t overlap(int64_t from, int64_t to, int64_t targetPixel) const;
    };
    IRect targetOf(const IRect& source) const;
    void sumRow(const IRect& source, const uint8_t* row, const IRect& place, uint32_t* sums) const;

    Axis across_;
    Axis down_;
    IRect window_;
    std::vector<uint64_t> sums_;
};

/// The sides of a picture reduced so that the larger one is at most `maxSide`: cut to whole pixels, at least 1, never
/// enlarged.
QSize reducedSize(int64_t width, int64_t height, int64_t maxSide);

} // namespace qirn
