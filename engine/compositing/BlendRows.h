#pragma once
#include "compositing/Compositor.h"
#include "core/BlendMode.h"

#include <cstdint>

namespace qirn {

/// Two rows of a tile: an accumulator and a source of this many pixels stay in the nearest cache together.
inline constexpr int kRunPixels = 512;

/// A run of pixels as four planes of premultiplied 32-bit floats, 0 to 1, so that a loop does several at once.
struct PixelRun {
    alignas(64) float r[kRunPixels];
    alignas(64) float g[kRunPixels];
    alignas(64) float b[kRunPixels];
    alignas(64) float a[kRunPixels];
};

// The loops over a run. Each pixel gets the bits that Compositor::blendPixel gives it.

void clear(PixelRun& run);
void loadBytes(PixelRun& run, const uint8_t* bytes, float opacity); ///< Premultiplied bytes x opacity / 255.
void scale(PixelRun& run, const PixelRun& source, float opacity);   ///< All four channels.
void tint(PixelRun& run, const Tint& tint);
/// Lays a source on an accumulator; the mode is chosen once a run.
void layOn(PixelRun& acc, const PixelRun& source, BlendMode mode, Compositor::Atop atop);
/// Rounds to bytes and keeps each colour byte at most the alpha byte, so that rounding never breaks the format.
void storeBytes(uint8_t* bytes, const PixelRun& run);

} // namespace qirn
