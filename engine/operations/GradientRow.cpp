#include "operations/GradientRow.h"

#include <cstring>

// Compiled once for each instruction set; the best one is chosen when the program runs.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "operations/GradientRow.cpp"
#include <hwy/foreach_target.h>

#include "operations/painting/PaintFormulas.h"

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

/// Positions along the drag, for the centers of a row's pixels: 0 at its start and before, 1 at its end and beyond.
template <GradientKind kKind> class Positions {
public:
    HWY_INLINE Positions(const GradientDrag& drag, int64_t x, int64_t y)
        : drag_(drag),
          x_(x),
          v_(static_cast<double>(y) + 0.5 - drag.y),
          across_(drag.dy * v_),
          v2_(v_ * v_) {}

    HWY_INLINE Doubles at(int column) const {
        const Doubles u =
            Doubles(static_cast<double>(x_ + column)) + laneNumbers() + Doubles(0.5) - Doubles(drag_.x);
        if constexpr (kKind == GradientKind::radial) {
            return clamped(squareRoot(u * u + Doubles(v2_)) / Doubles(drag_.len));
        } else {
            const Doubles t = (Doubles(drag_.dx) * u + Doubles(across_)) / Doubles(drag_.len2);
            if constexpr (kKind == GradientKind::linear) return clamped(t);
            return clamped(absolute(t));
        }
    }

private:
    HWY_INLINE static Doubles clamped(Doubles t) { return smaller(larger(Doubles(0), t), Doubles(1)); }

    const GradientDrag& drag_;
    const int64_t x_;
    const double v_, across_, v2_;
};

/// Straight colors of a block of pixels, and their opacity; a color of opacity 0 may have any value.
struct Mixed {
    alignas(64) float r[kPaintBlock];
    alignas(64) float g[kPaintBlock];
    alignas(64) float b[kPaintBlock];
    alignas(64) float arriving[kPaintBlock];
};

template <int kChannel> HWY_INLINE Doubles premultiplied(const GradientRamp& ramp, Doubles t) {
    return Doubles(ramp.first[kChannel]) + Doubles(ramp.step[kChannel]) * t;
}

template <bool kOpaque, class Along>
HWY_INLINE void mixBlock(const GradientRamp& ramp, const Along& along, int block, Mixed& out) {
    for (int i = 0; i < kPaintBlock; i += kDoubleLanes) {
        const Doubles t = along.at(block + i);
        if constexpr (kOpaque) {
            storeNarrowed(premultiplied<0>(ramp, t), out.r + i);
            storeNarrowed(premultiplied<1>(ramp, t), out.g + i);
            storeNarrowed(premultiplied<2>(ramp, t), out.b + i);
        } else {
            const Doubles alpha = premultiplied<3>(ramp, t);
            storeNarrowed(premultiplied<0>(ramp, t) / alpha, out.r + i);
            storeNarrowed(premultiplied<1>(ramp, t) / alpha, out.g + i);
            storeNarrowed(premultiplied<2>(ramp, t) / alpha, out.b + i);
            storeNarrowed(alpha * Doubles(ramp.opacity), out.arriving + i);
        }
    }
}

/// With `kOpaque` alpha is 1 everywhere, and the division by it is left out.
template <bool kOpaque, class Along, class Lay>
HWY_ATTR void paintBlocks(const GradientRamp& ramp, const Along& along, const Lay& lay,
                          const CoverageRow& coverage, uint8_t* row) {
    const auto opacity = static_cast<float>(ramp.opacity);
    const bool hides = ramp.hides();
    Mixed mixed;
    for (int block = 0; block < kTileSize; block += kPaintBlock) {
        uint64_t covered[kPaintBlock / 8];
        std::memcpy(covered, coverage.data() + block, sizeof covered);
        if ((covered[0] | covered[1]) == 0) continue;
        const bool isFull = (covered[0] & covered[1]) == ~uint64_t{0};
        mixBlock<kOpaque>(ramp, along, block, mixed);
        for (int i = 0; i < kPaintBlock; i += kLanes) {
            uint8_t* pixels = row + (block + i) * 4;
            const StraightColor color{loadFloats(mixed.r + i), loadFloats(mixed.g + i),
                                      loadFloats(mixed.b + i)};
            if (hides && isFull) {
                storeWords(opaquePixels(color), pixels);
                continue;
            }
            Floats arriving = kOpaque ? Floats(opacity) : loadFloats(mixed.arriving + i);
            if (!isFull) arriving = arriving * byteOver255(floatsOf(coverage.data() + block + i));
            const Words before = loadWords(pixels);
            storeWords(select(arriving > Floats(0), lay(before, arriving, color), before), pixels);
        }
    }
}

template <GradientKind kKind>
HWY_ATTR void paintKind(const GradientDrag& drag, const GradientRamp& ramp, int64_t x, int64_t y,
                        const CoverageRow& coverage, uint8_t* row) {
    const Positions<kKind> along(drag, x, y);
    if (ramp.lock == AlphaLock::yes)
        ramp.isOpaque() ? paintBlocks<true>(ramp, along, PaintWithinAlpha(), coverage, row)
                        : paintBlocks<false>(ramp, along, PaintWithinAlpha(), coverage, row);
    else
        ramp.isOpaque() ? paintBlocks<true>(ramp, along, PaintOver(), coverage, row)
                        : paintBlocks<false>(ramp, along, PaintOver(), coverage, row);
}

HWY_ATTR void PaintGradientRow(const GradientDrag& drag, const GradientRamp& ramp, int64_t x, int64_t y,
                               const CoverageRow& coverage, uint8_t* row) {
    switch (drag.kind) {
    case GradientKind::linear:
        return paintKind<GradientKind::linear>(drag, ramp, x, y, coverage, row);
    case GradientKind::radial:
        return paintKind<GradientKind::radial>(drag, ramp, x, y, coverage, row);
    case GradientKind::reflected:
        return paintKind<GradientKind::reflected>(drag, ramp, x, y, coverage, row);
    }
}

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qirn {

HWY_EXPORT(PaintGradientRow);

void paintRow(const GradientDrag& drag, const GradientRamp& ramp, int64_t x, int64_t y,
              const CoverageRow& coverage, uint8_t* row) {
    HWY_DYNAMIC_DISPATCH(PaintGradientRow)(drag, ramp, x, y, coverage, row);
}

} // namespace qirn
#endif
