#include "brush/TipDistances.h"

#include <cmath>

// Compiled once for each instruction set; the best one is chosen when the program runs.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "brush/TipDistances.cpp"
#include <hwy/foreach_target.h>

#include "brush/TipCoverage.h"

#ifndef QIRN_BRUSH_TIPDISTANCES_ONCE
#define QIRN_BRUSH_TIPDISTANCES_ONCE

namespace qirn {

namespace {

/// A row of pixels at x = `first`, `first` + 1 and so on, `dy` below a center at x = `cx`.
struct RowFromCenter {
    double first, cx, dy;
};

// Pixels are processed in blocks of this many, which every vector divides; rows are padded to whole blocks.
constexpr int kBlock = 16;
static_assert(kTileSize % kBlock == 0);

// The square root of the sum of squares differs from `std::hypot` by a few units in the last place, and the coverage
// by less than this, at any hardness and size. If both bounds round to the same float, that is the result of
// `std::hypot` too.
constexpr double kDoubt = 1e-12;

} // namespace

} // namespace qirn

#endif

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

HWY_INLINE Doubles rootDistance(const RowFromCenter& row, int offset) {
    const Doubles across = Doubles(row.first + offset) + laneNumbers() - Doubles(row.cx);
    return squareRoot(across * across + Doubles(row.dy * row.dy));
}

template <bool kHard> HWY_INLINE Doubles coverageAt(const TipEdge& edge, Doubles dist) {
    return kHard ? hardCoverage(edge, dist) : softCoverage(edge, dist);
}

template <bool kHard>
HWY_ATTR void coverByRoot(const TipEdge& edge, const RowFromCenter& row, int count, TipCoverage& out) {
    for (int i = 0; i < count; i += kDoubleLanes)
        storeNarrowed(coverageAt<kHard>(edge, rootDistance(row, i)), out.share.data() + i);
}

template <bool kHard>
HWY_ATTR void coverByHypot(const TipEdge& edge, const RowFromCenter& row, int count, TipCoverage& out) {
    alignas(64) float least[kBlock];
    alignas(64) float most[kBlock];
    for (int block = 0; block < count; block += kBlock) {
        float* share = out.share.data() + block;
        for (int i = 0; i < kBlock; i += kDoubleLanes) {
            const Doubles dist = rootDistance(row, block + i);
            const Doubles coverage = coverageAt<kHard>(edge, dist);
            // Well outside the tip coverage is 0 in any case.
            const Doubles doubt = select(dist > Doubles(edge.r + 0.51), Doubles(0), Doubles(kDoubt));
            storeNarrowed(coverage, share + i);
            storeNarrowed(coverage - doubt, least + i);
            storeNarrowed(coverage + doubt, most + i);
        }
        bool isInDoubt = false;
        for (int i = 0; i < kBlock; i += kLanes)
            isInDoubt = isInDoubt || anyOf(loadFloats(least + i) != loadFloats(most + i));
        if (!isInDoubt) continue;
        for (int i = 0; i < kBlock; ++i) {
            if (least[i] == most[i]) continue;
            const double dist = std::hypot(row.first + (block + i) - row.cx, row.dy);
            share[i] = static_cast<float>(edge.coverage(dist));
        }
    }
}

HWY_ATTR void CoverByRoot(const TipEdge& edge, const RowFromCenter& row, int count, TipCoverage& out) {
    edge.isHard ? coverByRoot<true>(edge, row, count, out) : coverByRoot<false>(edge, row, count, out);
}

HWY_ATTR void CoverByHypot(const TipEdge& edge, const RowFromCenter& row, int count, TipCoverage& out) {
    edge.isHard ? coverByHypot<true>(edge, row, count, out) : coverByHypot<false>(edge, row, count, out);
}

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qirn {

HWY_EXPORT(CoverByRoot);
HWY_EXPORT(CoverByHypot);

void coverAround(const TipEdge& edge, int64_t dx, int64_t dy, int64_t count, TipCoverage& out) {
    // The sum of the squares is exact, so that the root is the correctly rounded distance.
    HWY_DYNAMIC_DISPATCH(CoverByRoot)
    (edge, {static_cast<double>(dx), 0, static_cast<double>(dy)}, static_cast<int>(count), out);
}

void coverAround(const TipEdge& edge, double cx, double cy, int64_t x, int64_t y, int64_t count,
                 TipCoverage& out) {
    HWY_DYNAMIC_DISPATCH(CoverByHypot)
    (edge, {static_cast<double>(x) + 0.5, cx, static_cast<double>(y) + 0.5 - cy}, static_cast<int>(count),
     out);
}

} // namespace qirn
#endif
