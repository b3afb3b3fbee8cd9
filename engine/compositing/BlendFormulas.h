// The formula of each blend mode, on straight channels from 0 to 1: Cs is the source, Cb the backdrop. Written once
// over the number type V, so that `float` gives the reference and lanes of floats the fast rows; like
// platform/lanes/Lanes.h, included once for each instruction set. The formulas are those of the PDF blend modes (ISO
// 32000-1, 11.3.5) and the usual linear ones beside them.
#include "core/BlendMode.h"
#include "platform/lanes/Lanes.h"

#if defined(QIRN_COMPOSITING_BLENDFORMULAS_H) == defined(HWY_TARGET_TOGGLE)
#ifdef QIRN_COMPOSITING_BLENDFORMULAS_H
#undef QIRN_COMPOSITING_BLENDFORMULAS_H
#else
#define QIRN_COMPOSITING_BLENDFORMULAS_H
#endif

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {
namespace blend {

template <class V> struct Rgb { V r, g, b; };

/// What a mode makes of a color: `channel` for a mode that works on each channel by itself (isSeparable), `color` for
/// the others. `normal` has none: its source takes the backdrop's place.
template <BlendMode kMode> struct Formula;

template <> struct Formula<BlendMode::multiply> {
    template <class V> static HWY_INLINE V channel(V Cb, V Cs) { return Cs * Cb; }
};
template <> struct Formula<BlendMode::screen> {
    template <class V> static HWY_INLINE V channel(V Cb, V Cs) { return Cs + Cb - Cs * Cb; }
};
template <> struct Formula<BlendMode::overlay> {
    template <class V> static HWY_INLINE V channel(V Cb, V Cs) {
        const V t = V(2) * Cb - V(1);
        return select(Cb > V(0.5f), Cs + t - Cs * t, V(2) * Cs * Cb);
    }
};
template <> struct Formula<BlendMode::darken> {
    template <class V> static HWY_INLINE V channel(V Cb, V Cs) { return smaller(Cs, Cb); }
};
template <> struct Formula<BlendMode::lighten> {
    template <class V> static HWY_INLINE V channel(V Cb, V Cs) { return larger(Cs, Cb); }
};
template <> struct Formula<BlendMode::colorDodge> {
    template <class V> static HWY_INLINE V channel(V Cb, V Cs) {
        const V dodged = smaller(V(1), Cb / (V(1) - Cs));
        return select(Cb <= V(0), V(0), select(Cs >= V(1), V(1), dodged));
    }
};
template <> struct Formula<BlendMode::colorBurn> {
    template <class V> static HWY_INLINE V channel(V Cb, V Cs) {
        const V burned = V(1) - smaller(V(1), (V(1) - Cb) / Cs);
        return select(Cb >= V(1), V(1), select(Cs <= V(0), V(0), burned));
    }
};
template <> struct Formula<BlendMode::hardLight> {
    template <class V> static HWY_INLINE V channel(V Cb, V Cs) {
        const V t = V(2) * Cs - V(1);
        return select(Cs > V(0.5f), t + Cb - t * Cb, Cs * V(2) * Cb);
    }
};
template <> struct Formula<BlendMode::softLight> {
    template <class V> static HWY_INLINE V channel(V Cb, V Cs) {
        const V d = select(Cb > V(0.25f), squareRoot(Cb), ((V(16) * Cb - V(12)) * Cb + V(4)) * Cb);
        const V dark = Cb - (V(1) - V(2) * Cs) * Cb * (V(1) - Cb);
        const V light = Cb + (V(2) * Cs - V(1)) * (d - Cb);
        return select(Cs <= V(0.5f), dark, light);
    }
};
template <> struct Formula<BlendMode::difference> {
    template <class V> static HWY_INLINE V channel(V Cb, V Cs) { return absolute(Cb - Cs); }
};
template <> struct Formula<BlendMode::exclusion> {
    template <class V> static HWY_INLINE V channel(V Cb, V Cs) { return Cs + Cb - Cs * V(2) * Cb; }
};
template <> struct Formula<BlendMode::add> {
    template <class V> static HWY_INLINE V channel(V Cb, V Cs) { return smaller(V(1), Cs + Cb); }
};
template <> struct Formula<BlendMode::subtract> {
    template <class V> static HWY_INLINE V channel(V Cb, V Cs) { return larger(V(0), Cb - Cs); }
};
template <> struct Formula<BlendMode::linearBurn> {
    template <class V> static HWY_INLINE V channel(V Cb, V Cs) { return larger(V(0), Cs + Cb - V(1)); }
};

template <class V> HWY_INLINE V luminosityOf(const Rgb<V>& c) {
    return V(0.3f) * c.r + V(0.59f) * c.g + V(0.11f) * c.b;
}
template <class V> HWY_INLINE V largest(const Rgb<V>& c) {
    return larger(larger(c.r, c.g), c.b);
}
template <class V> HWY_INLINE V smallest(const Rgb<V>& c) {
    return smaller(smaller(c.r, c.g), c.b);
}
template <class V> HWY_INLINE V saturationOf(const Rgb<V>& c) {
    return largest(c) - smallest(c);
}

/// Moves channels below 0 or above 1 towards the color's gray until they are in range. A divisor of 0, which rounding
/// produces for ordinary grays, leaves the channels as they are: NaN would persist through every layer above.
template <class V> HWY_INLINE Rgb<V> clipColor(Rgb<V> c) {
    const V gray = luminosityOf(c), low = smallest(c), high = largest(c);
    const auto raise = both(low < V(0), gray - low != V(0));
    const V up = gray / (gray - low);
    c = {select(raise, gray + (c.r - gray) * up, c.r), select(raise, gray + (c.g - gray) * up, c.g),
         select(raise, gray + (c.b - gray) * up, c.b)};
    const auto lower = both(high > V(1), high - gray != V(0));
    const V down = (V(1) - gray) / (high - gray);
    return {select(lower, gray + down * (c.r - gray), c.r), select(lower, gray + down * (c.g - gray), c.g),
            select(lower, gray + down * (c.b - gray), c.b)};
}

template <class V> HWY_INLINE Rgb<V> setLuminosity(const Rgb<V>& c, V luminosity) {
    const V d = luminosity - luminosityOf(c);
    return clipColor(Rgb<V>{c.r + d, c.g + d, c.b + d});
}

/// The smallest channel becomes 0, the largest the saturation itself, the third keeps its proportion. Of equal
/// channels the last in r, g, b order counts as the largest.
template <class V> HWY_INLINE Rgb<V> setSaturation(const Rgb<V>& c, V saturation) {
    const V high = largest(c), low = smallest(c);
    const V range = high - low;
    const auto colored = high > low;
    const Rgb<V> scaled{select(colored, (c.r - low) * saturation / range, V(0)),
                        select(colored, (c.g - low) * saturation / range, V(0)),
                        select(colored, (c.b - low) * saturation / range, V(0))};
    const V full = select(colored, saturation, V(0));
    const auto bIsHigh = c.b == high, gIsHigh = c.g == high;
    return {select(either(bIsHigh, gIsHigh), scaled.r, full), select(both(gIsHigh, !bIsHigh), full, scaled.g),
            select(bIsHigh, full, scaled.b)};
}

template <> struct Formula<BlendMode::hue> {
    template <class V> static HWY_INLINE Rgb<V> color(const Rgb<V>& Cb, const Rgb<V>& Cs) {
        return setLuminosity(setSaturation(Cs, saturationOf(Cb)), luminosityOf(Cb));
    }
};
template <> struct Formula<BlendMode::saturation> {
    template <class V> static HWY_INLINE Rgb<V> color(const Rgb<V>& Cb, const Rgb<V>& Cs) {
        return setLuminosity(setSaturation(Cb, saturationOf(Cs)), luminosityOf(Cb));
    }
};
template <> struct Formula<BlendMode::color> {
    template <class V> static HWY_INLINE Rgb<V> color(const Rgb<V>& Cb, const Rgb<V>& Cs) {
        return setLuminosity(Cs, luminosityOf(Cb));
    }
};
template <> struct Formula<BlendMode::luminosity> {
    template <class V> static HWY_INLINE Rgb<V> color(const Rgb<V>& Cb, const Rgb<V>& Cs) {
        return setLuminosity(Cb, luminosityOf(Cs));
    }
};

/// The straight color that the mode makes of backdrop and source.
template <BlendMode kMode, class V> HWY_INLINE Rgb<V> blendedColor(const Rgb<V>& Cb, const Rgb<V>& Cs) {
    using F = Formula<kMode>;
    if constexpr (isSeparable(kMode)) {
        return {F::channel(Cb.r, Cs.r), F::channel(Cb.g, Cs.g), F::channel(Cb.b, Cs.b)};
    } else {
        return F::color(Cb, Cs);
    }
}

} // namespace blend
} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // once for each instruction set
