#pragma once
#include <cstdint>
#include <span>

#include <QImage>

namespace qirn {

/// Constants of the whole engine. There is one pixel format: 8-bit R, G, B, A in memory order, premultiplied, sRGB
/// without linearization, rows from the top without padding.
namespace PaintEngine {

extern const char* const version; ///< As the first lines of CMakeLists.txt say it.
inline constexpr QImage::Format imageFormat = QImage::Format_RGBA8888_Premultiplied;
inline constexpr int maxCanvasSide = 30000; ///< Pixels; larger files are refused.

inline constexpr uint64_t fnvStart = 0xCBF29CE484222325u;
inline constexpr uint64_t fnvPrime = 0x100000001B3u;

/// FNV-1a of 64 bits, by which pictures are compared across runs and machines.
uint64_t fnv(std::span<const uint8_t> bytes);

/// One FNV-1a step with a whole number in place of a byte, as picture fingerprints mix in their fields.
constexpr uint64_t fnvStep(uint64_t h, uint64_t value) {
    return (h ^ value) * fnvPrime;
}

} // namespace PaintEngine

} // namespace qirn
