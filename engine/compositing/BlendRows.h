#pragma once
#include "compositing/Compositor.h"
#include "core/BlendMode.h"
#include "core/Tile.h"

#include <cstdint>
#include <span>

namespace qirn {

/// Four rows of a tile: an accumulator of this size fits the L1 cache together with its source.
inline constexpr int kRunPixels = 1024;
/// Widths of runs are multiples of this, which the widest vector divides.
inline constexpr int kRunStep = 16;

/// A run of pixels as four planes of premultiplied 32-bit floats, 0 to 1.
struct PixelRun {
    alignas(64) float r[kRunPixels];
    alignas(64) float g[kRunPixels];
    alignas(64) float b[kRunPixels];
    alignas(64) float a[kRunPixels];
    /// Every alpha is 1 and plane `a` is not filled: the usual case, as most pictures have paper at the bottom.
    bool opaque;
};

/// The pixels of a run: a block of a tile, row by row. Width is a multiple of kRunStep.
struct RunShape {
    int width;
    int rows;

    int count() const { return width * rows; }
};

/// Bytes of a block of pixels, premultiplied RGBA; a row of a tile lies `kTileRowBytes` behind the one above.
using TileBytes = const uint8_t*;

/// A layer's bytes in a run.
struct ByteLayer {
    TileBytes bytes;
    float strength; ///< Opacity / 255.
};

// The loops over a run. Each pixel gets the bits that Compositor::blendPixel gives it, on every instruction set.

void clear(PixelRun& run);
void loadBytes(PixelRun& run, TileBytes bytes, RunShape shape, float opacity);    ///< Bytes x opacity / 255.
void scale(PixelRun& run, const PixelRun& source, RunShape shape, float opacity); ///< All four channels.
void tint(PixelRun& run, RunShape shape, const Tint& tint);
/// Lays a source on an accumulator; the mode is chosen once a run.
void layOn(PixelRun& acc, const PixelRun& source, RunShape shape, BlendMode mode, Compositor::Atop atop);
enum class Over { nothing, accumulator };
/// Blends several layers of mode `normal`, the usual one, in a single pass. Over nothing the lowest is copied.
/// `acc.opaque` is true of the accumulator before and after.
void layBytes(PixelRun& acc, std::span<const ByteLayer> layers, RunShape shape, Over what);
/// Lays one layer on an accumulator in any mode.
void layBytes(PixelRun& acc, const ByteLayer& layer, RunShape shape, BlendMode mode);
/// Rounds to bytes and clamps each color byte to the alpha byte, so that rounding never breaks the format. Rows of
/// the result lie `rowBytes` apart.
void storeBytes(uint8_t* out, int64_t rowBytes, const PixelRun& run, RunShape shape);
/// Ordinary stores, for pixels that are read soon; or non-temporal ones, which spare reading the memory that is
/// overwritten.
enum class Through { caches, memory };
/// The same rounded pixels over opaque gray, as words 0xFFRRGGBB; `grays` points to a word a pixel for each row. With
/// Through::memory `out` and `rowBytes` are multiples of 64, and the thread calls endStreaming() after the last
/// store.
void storeOnBoard(uint8_t* out, int64_t rowBytes, const PixelRun& run, RunShape shape,
                  const uint32_t* const* grays, Through through);
void endStreaming();

bool isBlank(TileBytes bytes, RunShape shape);  ///< Every byte is 0.
bool isOpaque(TileBytes bytes, RunShape shape); ///< Every alpha byte is 255.

} // namespace qirn
