// Painting a straight color on premultiplied pixels, over lanes; like platform/lanes/Lanes.h, included once for each
// instruction set.
#include "platform/lanes/ByteLanes.h"

#if defined(QIRN_OPERATIONS_PAINTFORMULAS_H) == defined(HWY_TARGET_TOGGLE)
#ifdef QIRN_OPERATIONS_PAINTFORMULAS_H
#undef QIRN_OPERATIONS_PAINTFORMULAS_H
#else
#define QIRN_OPERATIONS_PAINTFORMULAS_H
#endif

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

/// Pixels of a row are processed in blocks of this many, which every vector divides.
inline constexpr int kPaintBlock = 16;

/// Straight, each from 0 to 1.
struct StraightColor {
    Floats r, g, b;
};

/// The byte of a value from 0 to 1, to the nearest.
HWY_INLINE Words unitByte(Floats v) {
    return nearestByte(v * Floats(255));
}

template <int kShift> HWY_INLINE Floats unitOf(Words pixels) {
    return byteOver255(byteOf<kShift>(pixels));
}

/// The pixels at full coverage, whatever was there before: the same bytes as `PaintOver` at a coverage of 1.
HWY_INLINE Words opaquePixels(const StraightColor& color) {
    return unitByte(color.r) | shiftedUp<8>(unitByte(color.g)) | shiftedUp<16>(unitByte(color.b)) |
           allWords(0xFF000000u);
}

// New pixels from old ones, a coverage of 0 to 1 and a color.

struct PaintOver {
    HWY_INLINE Words operator()(Words before, Floats coverage, const StraightColor& color) const {
        const Floats rest = Floats(1) - coverage;
        return unitByte(coverage * color.r + rest * unitOf<0>(before)) |
               shiftedUp<8>(unitByte(coverage * color.g + rest * unitOf<8>(before))) |
               shiftedUp<16>(unitByte(coverage * color.b + rest * unitOf<16>(before))) |
               shiftedUp<24>(unitByte(coverage + rest * unitOf<24>(before)));
    }
};

/// Alpha stays, and so do all bytes of a pixel without alpha.
struct PaintWithinAlpha {
    HWY_INLINE Words operator()(Words before, Floats coverage, const StraightColor& color) const {
        const Floats r = unitOf<0>(before), g = unitOf<8>(before), b = unitOf<16>(before);
        const Floats alpha = unitOf<24>(before);
        const Words painted = unitByte(r + coverage * (alpha * color.r - r)) |
                              shiftedUp<8>(unitByte(g + coverage * (alpha * color.g - g))) |
                              shiftedUp<16>(unitByte(b + coverage * (alpha * color.b - b))) |
                              shiftedUp<24>(shiftedDown<24>(before));
        return select(alpha > Floats(0), painted, before);
    }
};

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // once for each instruction set
