#pragma once
#include <cstdint>

namespace qirn {

/// The part of a byte that a coverage of 0 to 255 takes, rounded to nearest. The parts for c and 255 - c add up to it.
constexpr uint8_t selectedPart(uint32_t value, uint32_t coverage) {
    return static_cast<uint8_t>((value * coverage + 127) * 32897 >> 23); // / 255, exact for so small numbers
}

/// What a selection takes of a row of premultiplied pixels; `selected` has a byte a pixel.
inline void takeSelected(const uint8_t* pixels, const uint8_t* selected, int64_t count, uint8_t* taken) {
    for (int64_t x = 0; x < count; ++x, pixels += 4, taken += 4) {
        const uint32_t share = selected[x];
        for (int c = 0; c < 4; ++c) taken[c] = selectedPart(pixels[c], share);
    }
}

/// Leaves of the row what the selection does not take.
inline void removeSelected(uint8_t* pixels, const uint8_t* selected, int64_t count) {
    for (int64_t x = 0; x < count; ++x, pixels += 4) {
        const uint32_t share = 255u - selected[x];
        for (int c = 0; c < 4; ++c) pixels[c] = selectedPart(pixels[c], share);
    }
}

} // namespace qirn
