#pragma once
#include "compositing/Compositor.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <vector>

// A second, plain implementation of the compositor: pixel by pixel, with accumulators of whole tiles and a switch
// over the modes. It shares no arithmetic with the engine.
namespace qirn::test {

using Floats3 = std::array<float, 3>;

inline float lum(const Floats3& c) {
    return 0.3f * c[0] + 0.59f * c[1] + 0.11f * c[2];
}

inline Floats3 setLum(Floats3 c, float l) {
    const float d = l - lum(c);
    for (float& v : c) v = v + d;
    const float gray = lum(c), n = *std::min_element(c.begin(), c.end()),
                x = *std::max_element(c.begin(), c.end());
    if (n < 0 && gray - n != 0) {
        const float k = gray / (gray - n);
        for (float& v : c) v = gray + (v - gray) * k;
    }
    if (x > 1 && x - gray != 0) {
        const float k = (1 - gray) / (x - gray);
        for (float& v : c) v = gray + k * (v - gray);
    }
    return c;
}

inline float sat(const Floats3& c) {
    return *std::max_element(c.begin(), c.end()) - *std::min_element(c.begin(), c.end());
}

inline Floats3 setSat(Floats3 c, float s) {
    std::array<std::size_t, 3> order{0, 1, 2};
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return c[a] < c[b]; });
    float &low = c[order[0]], &mid = c[order[1]], &high = c[order[2]];
    if (high > low) {
        mid = (mid - low) * s / (high - low);
        high = s;
    } else {
        mid = 0;
        high = 0;
    }
    low = 0;
    return c;
}

inline float referenceChannel(BlendMode mode, float Cb, float Cs) {
    switch (mode) {
    case BlendMode::multiply:
        return Cs * Cb;
    case BlendMode::screen:
        return Cs + Cb - Cs * Cb;
    case BlendMode::overlay: {
        if (!(Cb > 0.5f)) return 2 * Cs * Cb;
        const float t = 2 * Cb - 1;
        return Cs + t - Cs * t;
    }
    case BlendMode::darken:
        return Cs < Cb ? Cs : Cb;
    case BlendMode::lighten:
        return Cs > Cb ? Cs : Cb;
    case BlendMode::colorDodge:
        if (Cb <= 0) return 0;
        if (Cs >= 1) return 1;
        return std::min(1.0f, Cb / (1 - Cs));
    case BlendMode::colorBurn:
        if (Cb >= 1) return 1;
        if (Cs <= 0) return 0;
        return 1 - std::min(1.0f, (1 - Cb) / Cs);
    case BlendMode::hardLight: {
        if (!(Cs > 0.5f)) return Cs * 2 * Cb;
        const float t = 2 * Cs - 1;
        return t + Cb - t * Cb;
    }
    case BlendMode::softLight: {
        if (Cs <= 0.5f) return Cb - (1 - 2 * Cs) * Cb * (1 - Cb);
        const float D = Cb > 0.25f ? std::sqrt(Cb) : ((16 * Cb - 12) * Cb + 4) * Cb;
        return Cb + (2 * Cs - 1) * (D - Cb);
    }
    case BlendMode::difference:
        return std::fabs(Cb - Cs);
    case BlendMode::exclusion:
        return Cs + Cb - Cs * 2 * Cb;
    case BlendMode::add:
        return std::min(1.0f, Cs + Cb);
    case BlendMode::subtract:
        return std::max(0.0f, Cb - Cs);
    case BlendMode::linearBurn:
        return std::max(0.0f, Cs + Cb - 1);
    default:
        return NAN;
    }
}

inline Floats3 referenceColor(BlendMode mode, const Floats3& Cb, const Floats3& Cs) {
    switch (mode) {
    case BlendMode::hue:
        return setLum(setSat(Cs, sat(Cb)), lum(Cb));
    case BlendMode::saturation:
        return setLum(setSat(Cb, sat(Cs)), lum(Cb));
    case BlendMode::color:
        return setLum(Cs, lum(Cb));
    case BlendMode::luminosity:
        return setLum(Cb, lum(Cs));
    default:
        return {referenceChannel(mode, Cb[0], Cs[0]), referenceChannel(mode, Cb[1], Cs[1]),
                referenceChannel(mode, Cb[2], Cs[2])};
    }
}

inline void referencePixel(float* p, const Floats3& s, float sa, BlendMode mode, bool atop) {
    const float ba = p[3];
    if (sa <= 0) return;
    if (mode == BlendMode::normal) {
        for (std::size_t c = 0; c < 3; ++c)
            p[c] = atop ? s[c] * ba + p[c] * (1 - sa) : s[c] + p[c] * (1 - sa);
        if (!atop) p[3] = sa + ba * (1 - sa);
        return;
    }
    if (ba <= 0) {
        if (atop) return;
        std::copy(s.begin(), s.end(), p);
        p[3] = sa;
        return;
    }
    const Floats3 B =
        referenceColor(mode, {p[0] / ba, p[1] / ba, p[2] / ba}, {s[0] / sa, s[1] / sa, s[2] / sa});
    const float m = ba * sa;
    for (std::size_t c = 0; c < 3; ++c) {
        p[c] = atop ? m * B[c] + (1 - sa) * p[c] : (1 - ba) * s[c] + (1 - sa) * p[c] + m * B[c];
    }
    if (!atop) p[3] = (1 - sa) * ba + sa;
}

using Accumulator = std::vector<float>;

inline void referenceBlendTile(Accumulator& acc, const CompositeInput& input, int64_t index, float opacity,
                               BlendMode mode, bool atop, bool accEmpty) {
    const uint8_t* bytes = input.tiles.at(index)->pixels();
    const float k = opacity / 255;
    if (accEmpty && !atop && !input.tint) {
        for (std::size_t i = 0; i < acc.size(); ++i) acc[i] = static_cast<float>(bytes[i]) * k;
        return;
    }
    for (std::size_t i = 0; i < acc.size(); i += 4) {
        if (bytes[i + 3] == 0) continue;
        Floats3 s{static_cast<float>(bytes[i]) * k, static_cast<float>(bytes[i + 1]) * k,
                  static_cast<float>(bytes[i + 2]) * k};
        const float sa = static_cast<float>(bytes[i + 3]) * k;
        if (input.tint) {
            const Floats3 tint{input.tint->r, input.tint->g, input.tint->b};
            for (std::size_t c = 0; c < 3; ++c) s[c] = s[c] + (tint[c] * sa - s[c]) * input.tint->amount;
        }
        referencePixel(&acc[i], s, sa, mode, atop);
    }
}

inline uint8_t referenceByte(float f) {
    const float v = f * 255 + 0.5f;
    return !(v > 0) ? uint8_t{0} : v >= 255 ? uint8_t{255} : static_cast<uint8_t>(v);
}

inline std::vector<uint8_t> referenceTile(int64_t index, std::span<const CompositeInput> layers) {
    Accumulator acc(kTileBytes), group(kTileBytes);
    std::vector<uint8_t> out(kTileBytes);
    bool first = true;
    for (std::size_t i = 0; i < layers.size();) {
        const CompositeInput& base = layers[i++];
        std::vector<const CompositeInput*> clips;
        while (i < layers.size() && layers[i].clipping) clips.push_back(&layers[i++]);
        if (!base.visible || base.opacity <= 0 || !base.tiles.at(index)) continue;
        std::erase_if(clips, [&](const CompositeInput* c) {
            return !c->visible || c->opacity <= 0 || !c->tiles.at(index);
        });
        if (clips.empty()) {
            referenceBlendTile(acc, base, index, base.opacity, base.mode, false, first);
        } else {
            std::fill(group.begin(), group.end(), 0.0f);
            referenceBlendTile(group, base, index, 1, BlendMode::normal, false, true);
            for (const CompositeInput* c : clips)
                referenceBlendTile(group, *c, index, c->opacity, c->mode, true, false);
            for (std::size_t p = 0; p < acc.size(); p += 4) {
                const float a = base.opacity * group[p + 3];
                const Floats3 s{group[p] * base.opacity, group[p + 1] * base.opacity,
                                group[p + 2] * base.opacity};
                if (first) {
                    std::copy(s.begin(), s.end(), &acc[p]);
                    acc[p + 3] = a;
                } else if (a > 0) {
                    referencePixel(&acc[p], s, a, base.mode, false);
                }
            }
        }
        first = false;
    }
    if (first) return out;
    for (std::size_t i = 0; i < out.size(); i += 4) {
        for (std::size_t c = 0; c < 4; ++c) out[i + c] = referenceByte(acc[i + c]);
        for (std::size_t c = 0; c < 3; ++c) out[i + c] = std::min(out[i + c], out[i + 3]);
    }
    return out;
}

} // namespace qirn::test
