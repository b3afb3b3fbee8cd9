#pragma once
#include <cstdint>

namespace qirn {

/// Converts linear light, 0 to 1, to the nearest byte of sRGB, exactly for every float. Values out of range are
/// clamped; NaN becomes 0.
uint8_t srgbByte(float light);

} // namespace qirn
