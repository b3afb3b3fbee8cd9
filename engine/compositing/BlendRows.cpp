#include "compositing/BlendRows.h"

#include "compositing/BlendFormulas.h"

#include <algorithm>

namespace qirn {

using Compositor::Atop;

namespace {

/// One premultiplied source colour onto one accumulator pixel.
template <class Mode, Atop kAtop> inline void blendOne(float* p, float sr, float sg, float sb, float sa) {
    if (sa <= 0) return;
    const float ba = p[3];
    const float rest = 1 - sa;
    if constexpr (Mode::isNormal) {
        if constexpr (kAtop == Atop::yes) {
            p[0] = sr * ba + p[0] * rest;
            p[1] = sg * ba + p[1] * rest;
            p[2] = sb * ba + p[2] * rest;
        } else {
            p[0] = sr + p[0] * rest;
            p[1] = sg + p[1] * rest;
            p[2] = sb + p[2] * rest;
            p[3] = sa + ba * rest;
        }
    } else {
        if (ba <= 0) {
            if constexpr (kAtop == Atop::no) {
                p[0] = sr;
                p[1] = sg;
                p[2] = sb;
                p[3] = sa;
            }
            return;
        }
        const blend::Rgb<float> Cs{sr / sa, sg / sa, sb / sa};
        const blend::Rgb<float> Cb{p[0] / ba, p[1] / ba, p[2] / ba};
        const blend::Rgb<float> B = blend::blendColour<Mode>(Cb, Cs);
        const float m = ba * sa;
        if constexpr (kAtop == Atop::yes) {
            p[0] = m * B.r + rest * p[0];
            p[1] = m * B.g + rest * p[1];
            p[2] = m * B.b + rest * p[2];
        } else {
            const float clear = 1 - ba;
            p[0] = clear * sr + rest * p[0] + m * B.r;
            p[1] = clear * sg + rest * p[1] + m * B.g;
            p[2] = clear * sb + rest * p[2] + m * B.b;
            p[3] = rest * ba + sa;
        }
    }
}

template <class Mode, Atop kAtop>
void byteRow(float* acc, const uint8_t* source, int count, float k, const Tint* tint) {
    for (int i = 0; i < count; ++i, acc += 4, source += 4) {
        if (source[3] == 0) continue;
        float sr = source[0] * k, sg = source[1] * k, sb = source[2] * k;
        const float sa = source[3] * k;
        if (tint) {
            sr = sr + (tint->r * sa - sr) * tint->amount;
            sg = sg + (tint->g * sa - sg) * tint->amount;
            sb = sb + (tint->b * sa - sb) * tint->amount;
        }
        blendOne<Mode, kAtop>(acc, sr, sg, sb, sa);
    }
}

template <class Mode> void floatRow(float* acc, const float* source, int count, float opacity) {
    for (int i = 0; i < count; ++i, acc += 4, source += 4) {
        const float a = opacity * source[3];
        if (a > 0)
            blendOne<Mode, Atop::no>(acc, source[0] * opacity, source[1] * opacity, source[2] * opacity, a);
    }
}

template <class Mode> void onePixel(float* pixel, const float* s, Atop atop) {
    if (atop == Atop::yes)
        blendOne<Mode, Atop::yes>(pixel, s[0], s[1], s[2], s[3]);
    else
        blendOne<Mode, Atop::no>(pixel, s[0], s[1], s[2], s[3]);
}

struct ModeLoops {
    void (*bytes)(float*, const uint8_t*, int, float, const Tint*);
    void (*bytesAtop)(float*, const uint8_t*, int, float, const Tint*);
    void (*floats)(float*, const float*, int, float);
    void (*pixel)(float*, const float*, Atop);
};

template <class Mode> constexpr ModeLoops loopsOf() {
    return {byteRow<Mode, Atop::no>, byteRow<Mode, Atop::yes>, floatRow<Mode>, onePixel<Mode>};
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

uint8_t roundedByte(float f) {
    const float v = f * 255 + 0.5f;
    if (!(v > 0)) return 0; // and for not-a-number, into which malformed pixels can grow
    if (v >= 255) return 255;
    return static_cast<uint8_t>(v);
}

} // namespace

void blendByteRow(float* acc, const uint8_t* source, int count, float opacity, BlendMode mode, Atop atop,
                  const std::optional<Tint>& tint) {
    const auto loop = atop == Atop::yes ? loops(mode).bytesAtop : loops(mode).bytes;
    loop(acc, source, count, opacity / 255, tint ? &*tint : nullptr);
}

void blendFloatRow(float* acc, const float* source, int count, float opacity, BlendMode mode) {
    loops(mode).floats(acc, source, count, opacity);
}

void copyByteRow(float* acc, const uint8_t* source, int count, float opacity) {
    const float k = opacity / 255;
    for (int i = 0; i < count * 4; ++i) acc[i] = source[i] * k;
}

void storeByteRow(uint8_t* out, const float* acc, int count) {
    for (int i = 0; i < count; ++i, out += 4, acc += 4) {
        const uint8_t a = roundedByte(acc[3]);
        out[0] = std::min(roundedByte(acc[0]), a);
        out[1] = std::min(roundedByte(acc[1]), a);
        out[2] = std::min(roundedByte(acc[2]), a);
        out[3] = a;
    }
}

void Compositor::blendPixel(float* pixel, const float source[4], BlendMode mode, Atop atop) {
    loops(mode).pixel(pixel, source, atop);
}

PixelBytes Compositor::blendBytes(const PixelBytes& backdrop, const PixelBytes& source, BlendMode mode,
                                  float opacity) {
    float pixel[4], s[4];
    const float k = opacity / 255;
    for (std::size_t c = 0; c < 4; ++c) {
        pixel[c] = static_cast<float>(backdrop[c]) / 255;
        s[c] = source[c] * k;
    }
    blendPixel(pixel, s, mode, Atop::no);
    return {roundedByte(pixel[0]), roundedByte(pixel[1]), roundedByte(pixel[2]), roundedByte(pixel[3])};
}

} // namespace qirn
