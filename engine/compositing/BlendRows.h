#pragma once
#include "compositing/Compositor.h"
#include "core/BlendMode.h"
#include "core/Tile.h"

#include <cstdint>
#include <span>

namespace qirn {

/// Four rows of a tile: an accumulator of this many pixels stays in the nearest cache beside what it is made of.
inline constexpr int kRunPixels = 1024;
/// Runs are as wide as a multiple of this, so that the widest vectors come out even.
inline constexpr int kRunStep = 16;

/// A run of pixels as four planes of premultiplied 32-bit floats, 0 to 1, so that a loop does several at once.
struct PixelRun {
    alignas(64) float r[kRunPixels];
    alignas(64) float g[kRunPixels];
    alignas(64) float b[kRunPixels];
    alignas(64) float a[kRunPixels];
    bool
        opaque; ///< Each pixel's `a` is 1, and does not stand in its plane: most pictures have paper below all else.
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
/// Lays several layers in `normal`, which most have, one on the other in a single pass: over nothing the lowest is
/// copied. What the accumulator says of its being opaque holds before and after.
void layBytes(PixelRun& acc, std::span<const ByteLayer> layers, RunShape shape, Over what);
/// Lays one layer on an accumulator in any mode.
void layBytes(PixelRun& acc, const ByteLayer& layer, RunShape shape, BlendMode mode);
/// Rounds to bytes and keeps each colour byte at most the alpha byte, so that rounding never breaks the format.
/// Rows of the result lie `rowBytes` apart.
void storeBytes(uint8_t* out, int64_t rowBytes, const PixelRun& run, RunShape shape);
/// Where stored pixels go: into the caches, for who reads them at once, or past them, which spares the memory a
/// reading of what is replaced.
enum class Through { caches, memory };
/// The same rounded pixels over opaque grey, as words 0xFFRRGGBB; `greys` points to a word a pixel for each row. What
/// goes through memory is aligned to 64 bytes in `out` and `rowBytes`, and the thread ends it with endStreaming().
void storeOnBoard(uint8_t* out, int64_t rowBytes, const PixelRun& run, RunShape shape,
                  const uint32_t* const* greys, Through through);
void endStreaming();

bool isBlank(TileBytes bytes, RunShape shape);  ///< Every byte is 0.
bool isOpaque(TileBytes bytes, RunShape shape); ///< Every alpha byte is 255.

} // namespace qirn
