#pragma once
#include <cstdint>
#include <span>

namespace qirn {

/// The space of every picture, sRGB, as an ICC profile of version 4: primaries, white and the exact curve. Always the same
/// bytes, so that files repeat; for formats that name the space in no other way.
std::span<const uint8_t> srgbIccProfile();

} // namespace qirn
