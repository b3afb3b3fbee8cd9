// One pixel laid over another: the coverage arithmetic that all blend modes share. Written once over the number type V,
// so that `float` gives the reference and lanes of floats the fast rows; like platform/lanes/Lanes.h, included once for each
// instruction set.
#include "compositing/BlendFormulas.h"
#include "compositing/Compositor.h"

#if defined(QIRN_COMPOSITING_BLENDPIXEL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef QIRN_COMPOSITING_BLENDPIXEL_H
#undef QIRN_COMPOSITING_BLENDPIXEL_H
#else
#define QIRN_COMPOSITING_BLENDPIXEL_H
#endif

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

using Compositor::Atop;

/// One premultiplied pixel, 0 to 1, or several side by side.
template <class V> struct Pixel { V r, g, b, a; };

template <class C, class V> HWY_INLINE Pixel<V> select(C condition, const Pixel<V>& yes, const Pixel<V>& no) {
    return {select(condition, yes.r, no.r), select(condition, yes.g, no.g), select(condition, yes.b, no.b),
            select(condition, yes.a, no.a)};
}

/// The color without its coverage. An opaque pixel is left as it is, which spares the divisions.
template <class V> HWY_INLINE blend::Rgb<V> straight(const Pixel<V>& p) {
    if (allOf(p.a == V(1))) return {p.r, p.g, p.b};
    return {p.r / p.a, p.g / p.a, p.b / p.a};
}

/// Source s over backdrop p, for pixels where neither alpha is 0.
template <BlendMode kMode, Atop kAtop, class V>
HWY_INLINE Pixel<V> coveredBlend(const Pixel<V>& p, const Pixel<V>& s) {
    const V rest = V(1) - s.a;
    if constexpr (kMode == BlendMode::normal) {
        if constexpr (kAtop == Atop::yes) {
            return {s.r * p.a + p.r * rest, s.g * p.a + p.g * rest, s.b * p.a + p.b * rest, p.a};
        } else {
            return {s.r + p.r * rest, s.g + p.g * rest, s.b + p.b * rest, s.a + p.a * rest};
        }
    } else {
        const blend::Rgb<V> B = blend::blendedColor<kMode>(straight(p), straight(s));
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

/// The same over an opaque backdrop, which stays opaque: 1 - a + a is exactly 1 for every a from 0 to 1. The
/// multiplications of `coveredBlend` by an alpha of 1, and by 1 - 1, are left out.
template <BlendMode kMode, class V>
HWY_INLINE blend::Rgb<V> blendOnOpaque(const blend::Rgb<V>& p, const Pixel<V>& s) {
    const V rest = V(1) - s.a;
    if constexpr (kMode == BlendMode::normal) {
        return {s.r + p.r * rest, s.g + p.g * rest, s.b + p.b * rest};
    } else {
        const blend::Rgb<V> B = blend::blendedColor<kMode>(p, straight(s));
        return {rest * p.r + s.a * B.r, rest * p.g + s.a * B.g, rest * p.b + s.a * B.b};
    }
}

/// Source s over backdrop p, whatever their alphas. Branch-free, so that lanes stay together: the results that do not
/// apply are computed and dropped.
template <BlendMode kMode, Atop kAtop, class V>
HWY_INLINE Pixel<V> blended(const Pixel<V>& p, const Pixel<V>& s) {
    Pixel<V> result = coveredBlend<kMode, kAtop>(p, s);
    if constexpr (kMode != BlendMode::normal)
        result = select(p.a <= V(0), kAtop == Atop::yes ? p : s, result);
    return select(s.a <= V(0), p, result);
}

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // once for each instruction set
