#include "compositing/BlendRows.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

// Compiled once for each instruction set; the best one is chosen when the program runs.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "compositing/BlendRows.cpp"
#include <hwy/foreach_target.h>

#include "compositing/BlendPixel.h"
#include "compositing/RunLanes.h"

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

template <BlendMode kMode, Atop kAtop>
HWY_ATTR void blendRun(PixelRun& acc, const PixelRun& source, int count) {
    for (int i = 0; i < count; i += kLanes) {
        const Pixel<Floats> pixels = loadPixels(source, i);
        // Most of a layer is transparent, in large areas.
        if (!anyOf(pixels.a > Floats(0))) continue;
        storePixels(blended<kMode, kAtop>(loadPixels(acc, i), pixels), acc, i);
    }
}

template <BlendMode kMode, bool kOpaque>
HWY_ATTR void blendBytes(PixelRun& acc, const ByteLayer& layer, RunShape shape) {
    const Floats k(layer.strength);
    int i = 0;
    for (int y = 0; y < shape.rows; ++y) {
        const TileBytes row = layer.bytes + y * kTileRowBytes;
        for (int x = 0; x < shape.width; x += kLanes, i += kLanes) {
            const Words words = loadWords(row + x * 4);
            if (allOf(isZero(byteWord<24>(words)))) continue;
            const Pixel<Floats> s = pixelsOf(words, k);
            if constexpr (kOpaque) {
                const Colors p = loadColors(acc, i), result = blendOnOpaque<kMode>(p, s);
                const auto uncovered = s.a <= Floats(0);
                storeColors({select(uncovered, p.r, result.r), select(uncovered, p.g, result.g),
                             select(uncovered, p.b, result.b)},
                            acc, i);
            } else {
                storePixels(blended<kMode, Atop::no>(loadPixels(acc, i), s), acc, i);
            }
        }
    }
}

struct ModeLoops {
    void (*over)(PixelRun&, const PixelRun&, int count);
    void (*atop)(PixelRun&, const PixelRun&, int count);
    void (*bytes)(PixelRun&, const ByteLayer&, RunShape);
    void (*bytesOnOpaque)(PixelRun&, const ByteLayer&, RunShape);
};

template <std::size_t... kModes>
constexpr std::array<ModeLoops, sizeof...(kModes)> loopsOfModes(std::index_sequence<kModes...>) {
    return {ModeLoops{blendRun<BlendMode(kModes), Atop::no>, blendRun<BlendMode(kModes), Atop::yes>,
                      blendBytes<BlendMode(kModes), false>, blendBytes<BlendMode(kModes), true>}...};
}
constexpr auto kLoops = loopsOfModes(std::make_index_sequence<kBlendModes.size()>());

HWY_ATTR void Scale(PixelRun& run, const PixelRun& source, RunShape shape, float opacity) {
    const Floats k(opacity);
    for (int i = 0; i < shape.count(); i += kLanes) {
        const Pixel<Floats> p = loadPixels(source, i);
        storePixels({p.r * k, p.g * k, p.b * k, p.a * k}, run, i);
    }
}

HWY_ATTR void TintRun(PixelRun& run, RunShape shape, const Tint& tint) {
    const Floats r(tint.r), g(tint.g), b(tint.b), amount(tint.amount);
    for (int i = 0; i < shape.count(); i += kLanes) {
        const Pixel<Floats> p = loadPixels(run, i);
        storePixels({p.r + (r * p.a - p.r) * amount, p.g + (g * p.a - p.g) * amount,
                     p.b + (b * p.a - p.b) * amount, p.a},
                    run, i);
    }
}

HWY_ATTR void LayOn(PixelRun& acc, const PixelRun& source, RunShape shape, BlendMode mode, Atop atop) {
    const ModeLoops& loops = kLoops[static_cast<std::size_t>(mode)];
    (atop == Atop::yes ? loops.atop : loops.over)(acc, source, shape.count());
}

HWY_ATTR void LayBytesIn(PixelRun& acc, const ByteLayer& layer, RunShape shape, BlendMode mode) {
    const ModeLoops& loops = kLoops[static_cast<std::size_t>(mode)];
    (acc.opaque ? loops.bytesOnOpaque : loops.bytes)(acc, layer, shape);
}

template <bool kOpaque>
HWY_INLINE void layChain(PixelRun& acc, std::span<const ByteLayer> layers, RunShape shape, Over what) {
    const std::size_t onNothing = what == Over::nothing ? 1 : 0;
    int i = 0;
    for (int y = 0; y < shape.rows; ++y) {
        for (int x = 0; x < shape.width; x += kLanes, i += kLanes) {
            const int offset = y * kTileRowBytes + x * 4;
            Pixel<Floats> p{0, 0, 0, 1};
            if (what == Over::nothing) {
                p = pixelsOf(loadWords(layers[0].bytes + offset), layers[0].strength);
            } else {
                const Colors c = loadColors(acc, i);
                p = {c.r, c.g, c.b, kOpaque ? Floats(1) : loadFloats(acc.a + i)};
            }
            for (const ByteLayer& layer : layers.subspan(onNothing)) {
                const Words words = loadWords(layer.bytes + offset), alpha = byteWord<24>(words);
                const auto uncovered = isZero(alpha);
                if (allOf(uncovered)) continue;
                // Color without coverage must not show: cleared, a transparent pixel changes nothing.
                const Words color = zeroWhere(uncovered, words);
                const Floats k(layer.strength);
                p = coveredBlend<BlendMode::normal, Atop::no>(
                    p,
                    {byteOf<0>(color) * k, byteOf<8>(color) * k, byteOf<16>(color) * k, numberOf(alpha) * k});
            }
            storeColors({p.r, p.g, p.b}, acc, i);
            if constexpr (!kOpaque) storeFloats(p.a, acc.a + i);
        }
    }
}

HWY_ATTR void LayBytes(PixelRun& acc, std::span<const ByteLayer> layers, RunShape shape, Over what) {
    acc.opaque ? layChain<true>(acc, layers, shape, what) : layChain<false>(acc, layers, shape, what);
}

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qirn {

using Compositor::Atop;

HWY_EXPORT(Scale);
HWY_EXPORT(TintRun);
HWY_EXPORT(LayOn);
HWY_EXPORT(LayBytes);
HWY_EXPORT(LayBytesIn);

void clear(PixelRun& run) {
    std::memset(&run, 0, sizeof run);
}

void scale(PixelRun& run, const PixelRun& source, RunShape shape, float opacity) {
    run.opaque = false;
    HWY_DYNAMIC_DISPATCH(Scale)(run, source, shape, opacity);
}

void tint(PixelRun& run, RunShape shape, const Tint& tint) {
    HWY_DYNAMIC_DISPATCH(TintRun)(run, shape, tint);
}

void layOn(PixelRun& acc, const PixelRun& source, RunShape shape, BlendMode mode, Atop atop) {
    if (std::exchange(acc.opaque, false)) std::fill_n(acc.a, shape.count(), 1.0f);
    HWY_DYNAMIC_DISPATCH(LayOn)(acc, source, shape, mode, atop);
}

void layBytes(PixelRun& acc, std::span<const ByteLayer> layers, RunShape shape, Over what) {
    HWY_DYNAMIC_DISPATCH(LayBytes)(acc, layers, shape, what);
}

void layBytes(PixelRun& acc, const ByteLayer& layer, RunShape shape, BlendMode mode) {
    HWY_DYNAMIC_DISPATCH(LayBytesIn)(acc, layer, shape, mode);
}

} // namespace qirn
#endif
