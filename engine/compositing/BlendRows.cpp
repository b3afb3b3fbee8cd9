#include "compositing/BlendRows.h"

#include "compositing/BlendFormulas.h"

#include <algorithm>
#include <cstring>

namespace qirn {

using Compositor::Atop;

namespace {

/// One premultiplied pixel, 0 to 1.
struct Pixel {
    float r, g, b, a;
};

Pixel select(bool condition, const Pixel& yes, const Pixel& no) {
    return {condition ? yes.r : no.r, condition ? yes.g : no.g, condition ? yes.b : no.b,
            condition ? yes.a : no.a};
}

/// The source over the backdrop where both have coverage.
template <class Mode, Atop kAtop> Pixel mixed(const Pixel& p, const Pixel& s) {
    const float rest = 1 - s.a;
    if constexpr (Mode::isNormal) {
        if constexpr (kAtop == Atop::yes) {
            return {s.r * p.a + p.r * rest, s.g * p.a + p.g * rest, s.b * p.a + p.b * rest, p.a};
        } else {
            return {s.r + p.r * rest, s.g + p.g * rest, s.b + p.b * rest, s.a + p.a * rest};
        }
    } else {
        const blend::Rgb<float> Cs{s.r / s.a, s.g / s.a, s.b / s.a};
        const blend::Rgb<float> Cb{p.r / p.a, p.g / p.a, p.b / p.a};
        const blend::Rgb<float> B = blend::blendColour<Mode>(Cb, Cs);
        const float m = p.a * s.a;
        if constexpr (kAtop == Atop::yes) {
            return {m * B.r + rest * p.r, m * B.g + rest * p.g, m * B.b + rest * p.b, p.a};
        } else {
            const float clear = 1 - p.a;
            return {clear * s.r + rest * p.r + m * B.r, clear * s.g + rest * p.g + m * B.g,
                    clear * s.b + rest * p.b + m * B.b, rest * p.a + s.a};
        }
    }
}

/// Without branches, so that a compiler can do several pixels at once: what is not wanted is computed and dropped.
template <class Mode, Atop kAtop> Pixel blended(const Pixel& p, const Pixel& s) {
    Pixel result = mixed<Mode, kAtop>(p, s);
    if constexpr (!Mode::isNormal) result = select(p.a <= 0, kAtop == Atop::yes ? p : s, result);
    return select(s.a <= 0, p, result);
}

template <class Mode, Atop kAtop> void blendRun(PixelRun& acc, const PixelRun& source) {
    for (int i = 0; i < kRunPixels; ++i) {
        const Pixel p{acc.r[i], acc.g[i], acc.b[i], acc.a[i]};
        const Pixel s{source.r[i], source.g[i], source.b[i], source.a[i]};
        const Pixel result = blended<Mode, kAtop>(p, s);
        acc.r[i] = result.r;
        acc.g[i] = result.g;
        acc.b[i] = result.b;
        acc.a[i] = result.a;
    }
}

template <class Mode> Pixel onePixel(const Pixel& p, const Pixel& s, Atop atop) {
    return atop == Atop::yes ? blended<Mode, Atop::yes>(p, s) : blended<Mode, Atop::no>(p, s);
}

struct ModeLoops {
    void (*over)(PixelRun&, const PixelRun&);
    void (*atop)(PixelRun&, const PixelRun&);
    Pixel (*pixel)(const Pixel&, const Pixel&, Atop);
};

template <class Mode> constexpr ModeLoops loopsOf() {
    return {blendRun<Mode, Atop::no>, blendRun<Mode, Atop::yes>, onePixel<Mode>};
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

const ModeLoops& loops(BlendMode mode) {
    return kLoops[static_cast<std::size_t>(mode)];
}

/// 0 to 255; also 0 for not-a-number, into which malformed pixels can grow.
uint32_t roundedByte(float f) {
    float v = f * 255 + 0.5f;
    v = v > 0 ? v : 0;
    v = v < 255 ? v : 255;
    return static_cast<uint32_t>(static_cast<int32_t>(v));
}

float byteAt(uint32_t word, int shift) {
    return static_cast<float>(static_cast<int32_t>((word >> shift) & 0xFF));
}

} // namespace

void clear(PixelRun& run) {
    std::memset(&run, 0, sizeof run);
}

void loadBytes(PixelRun& run, const uint8_t* bytes, float opacity) {
    const float k = opacity / 255;
    for (int i = 0; i < kRunPixels; ++i) {
        uint32_t word; // red lies in the lowest byte
        std::memcpy(&word, bytes + i * 4, 4);
        run.r[i] = byteAt(word, 0) * k;
        run.g[i] = byteAt(word, 8) * k;
        run.b[i] = byteAt(word, 16) * k;
        run.a[i] = byteAt(word, 24) * k;
    }
}

void scale(PixelRun& run, const PixelRun& source, float opacity) {
    for (int i = 0; i < kRunPixels; ++i) {
        run.r[i] = source.r[i] * opacity;
        run.g[i] = source.g[i] * opacity;
        run.b[i] = source.b[i] * opacity;
        run.a[i] = source.a[i] * opacity;
    }
}

void tint(PixelRun& run, const Tint& tint) {
    for (int i = 0; i < kRunPixels; ++i) {
        const float a = run.a[i];
        run.r[i] = run.r[i] + (tint.r * a - run.r[i]) * tint.amount;
        run.g[i] = run.g[i] + (tint.g * a - run.g[i]) * tint.amount;
        run.b[i] = run.b[i] + (tint.b * a - run.b[i]) * tint.amount;
    }
}

void layOn(PixelRun& acc, const PixelRun& source, BlendMode mode, Atop atop) {
    (atop == Atop::yes ? loops(mode).atop : loops(mode).over)(acc, source);
}

void storeBytes(uint8_t* bytes, const PixelRun& run) {
    for (int i = 0; i < kRunPixels; ++i) {
        const uint32_t a = roundedByte(run.a[i]);
        const uint32_t r = std::min(roundedByte(run.r[i]), a);
        const uint32_t g = std::min(roundedByte(run.g[i]), a);
        const uint32_t b = std::min(roundedByte(run.b[i]), a);
        const uint32_t word = r | g << 8 | b << 16 | a << 24;
        std::memcpy(bytes + i * 4, &word, 4);
    }
}

void Compositor::blendPixel(float* pixel, const float source[4], BlendMode mode, Atop atop) {
    const Pixel result = loops(mode).pixel({pixel[0], pixel[1], pixel[2], pixel[3]},
                                           {source[0], source[1], source[2], source[3]}, atop);
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
    for (std::size_t c = 0; c < 4; ++c) out[c] = static_cast<uint8_t>(roundedByte(pixel[c]));
    return out;
}

} // namespace qirn
