#include "compositing/BlendRows.h"

#include <algorithm>
#include <cstring>
#include <utility>

// This file once more for each instruction set; the best that the machine has is chosen at run time.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "compositing/BlendRows.cpp"
#include <hwy/foreach_target.h>

#include "compositing/BlendFormulas.h"
#include "compositing/RunLanes.h"

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

using Compositor::Atop;

template <class C, class V> HWY_INLINE Pixel<V> select(C condition, const Pixel<V>& yes, const Pixel<V>& no) {
    return {select(condition, yes.r, no.r), select(condition, yes.g, no.g), select(condition, yes.b, no.b),
            select(condition, yes.a, no.a)};
}

/// The colour without its coverage; that of an opaque pixel stands there already.
template <class V> HWY_INLINE blend::Rgb<V> straight(const Pixel<V>& p) {
    if (allOf(p.a == V(1))) return {p.r, p.g, p.b};
    return {p.r / p.a, p.g / p.a, p.b / p.a};
}

/// The source over the backdrop where both have coverage.
template <class Mode, Atop kAtop, class V> HWY_INLINE Pixel<V> mixed(const Pixel<V>& p, const Pixel<V>& s) {
    const V rest = V(1) - s.a;
    if constexpr (Mode::isNormal) {
        if constexpr (kAtop == Atop::yes) {
            return {s.r * p.a + p.r * rest, s.g * p.a + p.g * rest, s.b * p.a + p.b * rest, p.a};
        } else {
            return {s.r + p.r * rest, s.g + p.g * rest, s.b + p.b * rest, s.a + p.a * rest};
        }
    } else {
        const blend::Rgb<V> B = blend::blendColour<Mode>(straight(p), straight(s));
        const V m = p.a * s.a;
        if constexpr (kAtop == Atop::yes) {
            return {m * B.r + rest * p.r, m * B.g + rest * p.g, m * B.b + rest * p.b, p.a};
        } else {
            const V clear = V(1) - p.a;
            return {clear * s.r + rest * p.r + m * B.r, clear * s.g + rest * p.g + m * B.g,
                    clear * s.b + rest * p.b + m * B.b, rest * p.a + s.a};
        }
    }
}

/// The same over an opaque backdrop, which stays so: 1 - a + a is exactly 1 for every a from 0 to 1. What `mixed`
/// multiplies by 0 and 1 there is left out.
template <class Mode, class V>
HWY_INLINE blend::Rgb<V> mixedOnOpaque(const blend::Rgb<V>& p, const Pixel<V>& s) {
    const V rest = V(1) - s.a;
    if constexpr (Mode::isNormal) {
        return {s.r + p.r * rest, s.g + p.g * rest, s.b + p.b * rest};
    } else {
        const blend::Rgb<V> B = blend::blendColour<Mode>(p, straight(s));
        return {rest * p.r + s.a * B.r, rest * p.g + s.a * B.g, rest * p.b + s.a * B.b};
    }
}

/// Without branches, so that several pixels go side by side: what is not wanted is computed and dropped.
template <class Mode, Atop kAtop, class V> HWY_INLINE Pixel<V> blended(const Pixel<V>& p, const Pixel<V>& s) {
    Pixel<V> result = mixed<Mode, kAtop>(p, s);
    if constexpr (!Mode::isNormal) result = select(p.a <= V(0), kAtop == Atop::yes ? p : s, result);
    return select(s.a <= V(0), p, result);
}

template <class Mode, Atop kAtop> HWY_ATTR void blendRun(PixelRun& acc, const PixelRun& source, int count) {
    for (int i = 0; i < count; i += kLanes) {
        const Pixel<Floats> pixels = loadPixels(source, i);
        // Strokes leave most of a layer uncovered, and neighbours alike.
        if (!anyOf(pixels.a > Floats(0))) continue;
        storePixels(blended<Mode, kAtop>(loadPixels(acc, i), pixels), acc, i);
    }
}

template <class Mode, bool kOpaque>
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
                const Colours p = loadColours(acc, i), result = mixedOnOpaque<Mode>(p, s);
                const auto uncovered = s.a <= Floats(0);
                storeColours({select(uncovered, p.r, result.r), select(uncovered, p.g, result.g),
                              select(uncovered, p.b, result.b)},
                             acc, i);
            } else {
                storePixels(blended<Mode, Atop::no>(loadPixels(acc, i), s), acc, i);
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
template <class Mode> constexpr ModeLoops loopsOf() {
    return {blendRun<Mode, Atop::no>, blendRun<Mode, Atop::yes>, blendBytes<Mode, false>,
            blendBytes<Mode, true>};
}

// In the order of BlendMode.
constexpr ModeLoops kLoops[kBlendModeCount] = {
    loopsOf<blend::Normal>(),     loopsOf<blend::Multiply>(),   loopsOf<blend::Screen>(),
    loopsOf<blend::Overlay>(),    loopsOf<blend::Darken>(),     loopsOf<blend::Lighten>(),
    loopsOf<blend::ColorDodge>(), loopsOf<blend::ColorBurn>(),  loopsOf<blend::HardLight>(),
    loopsOf<blend::SoftLight>(),  loopsOf<blend::Difference>(), loopsOf<blend::Exclusion>(),
    loopsOf<blend::Add>(),        loopsOf<blend::Subtract>(),   loopsOf<blend::LinearBurn>(),
    loopsOf<blend::Hue>(),        loopsOf<blend::Saturation>(), loopsOf<blend::Color>(),
    loopsOf<blend::Luminosity>(),
};

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
            const int at = y * kTileRowBytes + x * 4;
            Pixel<Floats> p{0, 0, 0, 1};
            if (what == Over::nothing) {
                p = pixelsOf(loadWords(layers[0].bytes + at), layers[0].strength);
            } else {
                const Colours c = loadColours(acc, i);
                p = {c.r, c.g, c.b, kOpaque ? Floats(1) : loadFloats(acc.a + i)};
            }
            for (const ByteLayer& layer : layers.subspan(onNothing)) {
                const Words words = loadWords(layer.bytes + at), alpha = byteWord<24>(words);
                const auto uncovered = isZero(alpha);
                if (allOf(uncovered)) continue;
                // Without its colour a pixel that covers nothing leaves the others as they are.
                const Words colour = zeroWhere(uncovered, words);
                const Floats k(layer.strength);
                p = mixed<blend::Normal, Atop::no>(p, {byteOf<0>(colour) * k, byteOf<8>(colour) * k,
                                                       byteOf<16>(colour) * k, numberOf(alpha) * k});
            }
            storeColours({p.r, p.g, p.b}, acc, i);
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

namespace {

using PlainPixel = HWY_NAMESPACE::Pixel<float>;

template <class Mode> PlainPixel onePixel(const PlainPixel& p, const PlainPixel& s, Atop atop) {
    return atop == Atop::yes ? HWY_NAMESPACE::blended<Mode, Atop::yes>(p, s)
                             : HWY_NAMESPACE::blended<Mode, Atop::no>(p, s);
}

namespace modes = HWY_NAMESPACE::blend;
// In the order of BlendMode.
constexpr PlainPixel (*kOnePixel[kBlendModeCount])(const PlainPixel&, const PlainPixel&, Atop) = {
    onePixel<modes::Normal>,     onePixel<modes::Multiply>,   onePixel<modes::Screen>,
    onePixel<modes::Overlay>,    onePixel<modes::Darken>,     onePixel<modes::Lighten>,
    onePixel<modes::ColorDodge>, onePixel<modes::ColorBurn>,  onePixel<modes::HardLight>,
    onePixel<modes::SoftLight>,  onePixel<modes::Difference>, onePixel<modes::Exclusion>,
    onePixel<modes::Add>,        onePixel<modes::Subtract>,   onePixel<modes::LinearBurn>,
    onePixel<modes::Hue>,        onePixel<modes::Saturation>, onePixel<modes::Color>,
    onePixel<modes::Luminosity>,
};

/// 0 to 255; also 0 for not-a-number, into which malformed pixels can grow.
uint8_t roundedByte(float f) {
    const float v = f * 255 + 0.5f;
    return static_cast<uint8_t>(v > 0 ? (v < 255 ? v : 255) : 0);
}

} // namespace

void Compositor::blendPixel(float* pixel, const float source[4], BlendMode mode, Atop atop) {
    const PlainPixel result = kOnePixel[static_cast<std::size_t>(mode)](
        {pixel[0], pixel[1], pixel[2], pixel[3]}, {source[0], source[1], source[2], source[3]}, atop);
    std::memcpy(pixel, &result, sizeof result);
}

PixelBytes Compositor::blendBytes(const PixelBytes& backdrop, const PixelBytes& source, BlendMode mode,
                                  float opacity) {
    float pixel[4], s[4];
    const float k = opacity / 255;
    for (std::size_t c = 0; c < 4; ++c) {
        pixel[c] = static_cast<float>(backdrop[c]) / 255;
        s[c] = static_cast<float>(source[c]) * k;
    }
    blendPixel(pixel, s, mode, Atop::no);
    PixelBytes out;
    for (std::size_t c = 0; c < 4; ++c) out[c] = roundedByte(pixel[c]);
    return out;
}

} // namespace qirn
#endif
