#pragma once
#include "platform/ScaleWeights.h"

#include <algorithm>
#include <cstdint>
#include <functional>

namespace qirn {

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

/// A filtered pixel, on a scale of 0 to 255, as bytes. The filter overshoots at edges: where alpha passes 255 the
/// colour is taken back with it, so that an opaque edge becomes neither lighter nor darker than its inside.
inline void storeFiltered(const float* sum, uint8_t* out) {
    const float alpha = sum[3];
    const float back = alpha > 255 ? 255 / alpha : 1;
    const float top = std::clamp(alpha, 0.0f, 255.0f);
    for (int c = 0; c < 3; ++c) {
        out[c] = static_cast<uint8_t>(static_cast<int>(std::clamp(sum[c] * back, 0.0f, top) + 0.5f));
    }
    out[3] = static_cast<uint8_t>(static_cast<int>(top + 0.5f));
}

} // namespace qirn
