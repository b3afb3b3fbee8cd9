#pragma once
#include <array>
#include <cstdint>

namespace qirn {

// Rows between the one pixel format and separate planes of straight color, as Photoshop has it. Going out and coming
// back gives every pixel whose color does not exceed its alpha again, bit for bit.

/// Where a row's red, green, blue and alpha begin.
using PlaneRows = std::array<uint8_t*, 4>;
using ConstPlaneRows = std::array<const uint8_t*, 4>;

/// A premultiplied byte as straight color: to the nearest, halves up, 255 at most; 0 where alpha is 0.
constexpr uint8_t straight(int c, int a) {
    if (a == 0) return 0;
    const int value = (255 * c + a / 2) / a;
    return static_cast<uint8_t>(value < 255 ? value : 255);
}

/// A straight byte multiplied by alpha: to the nearest.
constexpr uint8_t premultiplied(int c, int a) {
    return static_cast<uint8_t>((a * c + 127) / 255);
}

/// `count` pixels as four planes: `straight` for each, several at once.
void straightRow(const uint8_t* pixels, int64_t count, const PlaneRows& rows);
/// Four planes as `count` pixels: `premultiplied` for each, several at once.
void premultiplyRow(const ConstPlaneRows& rows, int64_t count, uint8_t* pixels);

} // namespace qirn
