#pragma once
#include <cstdint>

namespace qirn {

/// Linear light, 0 to 1, as the nearest byte of sRGB: the number of bytes' borders that it reaches, each half way
/// between two. What is outside is clamped; not-a-number is 0. Exact for every float.
uint8_t srgbByte(float light);

} // namespace qirn
