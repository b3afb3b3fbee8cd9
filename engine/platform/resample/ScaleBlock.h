#pragma once
#include "platform/resample/ScaleWeights.h"

#include <cstdint>
#include <functional>

namespace qirn {

/// Premultiplied RGBA pixels that are only read; they are borrowed.
struct PixelView {
    const uint8_t* pixels;
    int64_t width;
    int64_t height;
    int64_t rowBytes;
};

/// Where `count` pixels of a source row lie, from (x, y) on; `scratch` has room for them and may be filled and
/// returned. Null when all are transparent.
using SourceRows = std::function<const uint8_t*(int64_t x, int64_t y, int64_t count, uint8_t* scratch)>;

/// A rectangle of target pixels that is to be written, all of them.
struct TargetBlock {
    int64_t x;
    int64_t y;
    int64_t width;
    int64_t height;
    uint8_t* pixels;
    int64_t rowBytes;
};

/// Scales one block of target pixels, first across and then down. A pixel's bytes do not depend on the block that
/// it is made in. All pixels are premultiplied. Any thread.
void scaleBlock(const SourceRows& rows, const ScaleWeights& across, const ScaleWeights& down,
                const TargetBlock& block);

/// Writes filtered pixels, on a scale of 0 to 255, as bytes; `sums` is overwritten. The filter overshoots at edges:
/// where alpha exceeds 255 the color is reduced in proportion, so that an opaque edge gets neither lighter nor darker
/// than its inside, and no color exceeds its alpha.
void storeFiltered(float* sums, int64_t count, uint8_t* out);

} // namespace qirn
