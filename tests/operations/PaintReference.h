#pragma once
#include "core/PaintColor.h"
#include "support/Pictures.h"

#include <algorithm>
#include <array>

namespace qirn::test {

/// One straight color (r, g, b) painted on one premultiplied pixel with coverage `cov`, 0 to 1: the definition,
/// channel by channel.
inline void layOnPixel(uint8_t* pixel, const std::array<float, 3>& color, float cov, bool alphaLocked) {
    const float oldAlpha = pixel[3] / 255.0f;
    if (alphaLocked && pixel[3] == 0) return;
    for (int c = 0; c < 3; ++c) {
        const float old = pixel[c] / 255.0f;
        const float straight = color[static_cast<std::size_t>(c)];
        const float v =
            alphaLocked ? old + cov * (oldAlpha * straight - old) : cov * straight + (1.0f - cov) * old;
        pixel[c] = static_cast<uint8_t>(std::clamp(v * 255.0f + 0.5f, 0.0f, 255.0f));
    }
    if (alphaLocked) return;
    pixel[3] = static_cast<uint8_t>(std::min((cov + (1.0f - cov) * oldAlpha) * 255.0f + 0.5f, 255.0f));
}

inline std::array<float, 3> straightFloats(const PaintColor& color) {
    return {static_cast<float>(color.r), static_cast<float>(color.g), static_cast<float>(color.b)};
}

/// A selection in which every byte may occur; a third is 0 and a third 255, in blocks of 32 x 32 pixels, which leaves
/// whole tiles empty, full and mixed.
inline SelectionRef patchySelection(int64_t width, int64_t height, uint64_t seed) {
    return selectionOf(width, height, [seed](int64_t x, int64_t y) -> int {
        const uint64_t block =
            (static_cast<uint64_t>(x / 32 * 7919 + y / 32 * 104729) + seed) * 2654435761u >> 7;
        return block % 3 == 0 ? 0 : block % 3 == 1 ? 255 : static_cast<uint8_t>(x * 5 + y * 3);
    });
}

} // namespace qirn::test
