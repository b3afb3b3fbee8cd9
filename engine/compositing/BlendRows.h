#pragma once
#include "compositing/Compositor.h"
#include "core/BlendMode.h"

#include <cstdint>

namespace qirn {

/// The loops over runs of pixels, with the mode chosen once a run. An accumulator holds four 32-bit floats a
/// pixel: r, g, b, a, premultiplied.

/// Lays `count` pixels of premultiplied bytes on an accumulator at an opacity of 0 to 1.
void blendByteRow(float* acc, const uint8_t* source, int count, float opacity, BlendMode mode,
                  Compositor::Atop atop, const std::optional<Tint>& tint);
/// Lays another accumulator on `acc`, all its channels first multiplied by the opacity.
void blendFloatRow(float* acc, const float* source, int count, float opacity, BlendMode mode);
/// Sets the accumulator to bytes x opacity / 255: what any mode gives over nothing.
void copyByteRow(float* acc, const uint8_t* source, int count, float opacity);
/// Rounds to bytes and keeps each colour byte at most the alpha byte, so that rounding never breaks the format.
void storeByteRow(uint8_t* out, const float* acc, int count);

} // namespace qirn
