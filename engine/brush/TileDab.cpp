#include "brush/TileDab.h"

#include "brush/DabColumns.h"

#include <array>
#include <optional>

// Compiled once for each instruction set; the best one is chosen when the program runs.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "brush/TileDab.cpp"
#include <hwy/foreach_target.h>

#include "brush/TipCoverage.h"

#ifndef QIRN_BRUSH_TILEDAB_ONCE
#define QIRN_BRUSH_TILEDAB_ONCE

namespace qirn {

namespace {

constexpr std::array<uint8_t, kTileRowBytes> kTransparentRow{};

// Below this number of columns, finding the ends of a row takes longer than painting all of it.
constexpr int kNarrow = 40;

/// One row of a tile while a dab is painted; pointers to its first column.
struct DabRow {
    float* mask;
    const uint8_t* before;
    uint8_t* pixels;
    Columns reached;         // no coverage beside them
    Columns solid;           // full coverage by the tip alone
    const float* grain;      // or null
    const uint8_t* selected; // or null
};

} // namespace

} // namespace qirn

#endif

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

/// Extends a range of columns to whole vectors, which never reach beyond the tile: its width is a multiple of theirs.
HWY_INLINE Columns wholeVectors(Columns row) {
    return {row.first / kLanes * kLanes, (row.last + kLanes - 1) / kLanes * kLanes};
}

/// Rounded to the nearest byte; for values from -0.5 to 255.5.
HWY_INLINE Words roundedByte(Floats v) {
    return truncated(v + Floats(0.5f));
}

HWY_INLINE Words wordOf(Floats r, Floats g, Floats b, Floats a) {
    return roundedByte(r) | shiftedUp<8>(roundedByte(g)) | shiftedUp<16>(roundedByte(b)) |
           shiftedUp<24>(roundedByte(a));
}

// New pixels from the bytes before the stroke and a coverage of 0 to 1. Alpha lock does not affect an eraser.

struct Erase {
    HWY_INLINE explicit Erase(const DabInk&) {}
    HWY_INLINE Words operator()(Words before, Floats coverage, Words) const {
        const Floats rest = Floats(1) - coverage;
        return wordOf(rest * byteOf<0>(before), rest * byteOf<8>(before), rest * byteOf<16>(before),
                      rest * byteOf<24>(before));
    }
};

struct PaintUnderAlphaLock {
    Floats r, g, b;

    HWY_INLINE explicit PaintUnderAlphaLock(const DabInk& ink) : r(ink.r), g(ink.g), b(ink.b) {}
    HWY_INLINE Words operator()(Words before, Floats coverage, Words now) const {
        const Floats wasR = byteOf<0>(before), wasG = byteOf<8>(before), wasB = byteOf<16>(before);
        const Floats alpha = byteOf<24>(before);
        const Words painted = wordOf(smaller(wasR + coverage * (r * alpha - wasR), alpha),
                                     smaller(wasG + coverage * (g * alpha - wasG), alpha),
                                     smaller(wasB + coverage * (b * alpha - wasB), alpha), alpha);
        return select(alpha == Floats(0), now, painted);
    }
};

struct Paint {
    Floats r, g, b, full{255};

    HWY_INLINE explicit Paint(const DabInk& ink) : r(ink.r * 255), g(ink.g * 255), b(ink.b * 255) {}
    HWY_INLINE Words operator()(Words before, Floats coverage, Words) const {
        const Floats rest = Floats(1) - coverage;
        const Floats alpha = rest * byteOf<24>(before) + coverage * full;
        return wordOf(smaller(rest * byteOf<0>(before) + coverage * r, alpha),
                      smaller(rest * byteOf<8>(before) + coverage * g, alpha),
                      smaller(rest * byteOf<16>(before) + coverage * b, alpha), alpha);
    }
};

/// The tip's coverage at consecutive columns, row by row of a tile.
template <bool kHard, bool kRound> class TipRows {
public:
    HWY_INLINE TipRows(const TipShape& tip, int64_t tileX)
        : tip_(tip),
          firstColumn_(static_cast<double>(tileX) + 0.5),
          left_(static_cast<float>(firstColumn_ - tip.cx)),
          inner_(static_cast<float>(tip.edge.inner)),
          perBand_(static_cast<float>(1 / tip.edge.band)),
          // Coordinates in 32 bits are off by less than 1e-6 of the tile's extent.
          margin_(static_cast<float>(1e-5 + 1e-6 * tip.inverse * (tip.edge.r + kTileSize) / tip.edge.band)) {}

    HWY_INLINE void enterRow(double dy) { dy_ = dy; }

    HWY_INLINE Doubles coverage(int column) const {
        const Doubles dx =
            Doubles(firstColumn_ + static_cast<double>(column)) + laneNumbers() - Doubles(tip_.cx);
        const Doubles dist = distance(dx, dy_);
        return kHard ? hardCoverage(tip_.edge, dist) : softCoverage(tip_.edge, dist);
    }

    /// A cheap upper bound of `coverage`: computed in 32 bits, plus their largest error. 0 outside of a soft tip, so that
    /// pixels around it need no exact computation.
    HWY_INLINE Floats coverageBound(int column) const {
        if constexpr (kHard) return Floats(1);
        const Floats dx = Floats(left_ + static_cast<float>(column)) + floatLaneNumbers();
        const Floats t = (distance(dx, static_cast<float>(dy_)) - Floats(inner_)) * Floats(perBand_);
        const Floats inside = smaller(Floats(1), larger(Floats(0), t));
        const Floats coverage =
            Floats(1) + Floats(margin_) - inside * inside * (Floats(3) - Floats(2) * inside);
        return select(t < Floats(1 + margin_), coverage, Floats(0));
    }

private:
    /// Distance from the tip's center, in the tip's metric.
    template <class V, class Number> HWY_INLINE V distance(V dx, Number dy) const {
        if constexpr (kRound) return squareRoot(dx * dx + V(dy * dy));
        const auto sine = static_cast<Number>(tip_.sine), cosine = static_cast<Number>(tip_.cosine);
        const V u = V(cosine) * dx + V(sine * dy);
        const V v = V(static_cast<Number>(tip_.inverse)) * (V(cosine * dy) - V(sine) * dx);
        return squareRoot(u * u + v * v);
    }

    const TipShape tip_; // a copy: nothing that is stored in the loops can change it
    const double firstColumn_;
    const float left_, inner_, perBand_, margin_;
    double dy_ = 0;
};

/// Paints one vector of columns of one row.
template <class Tip, class Ink> class DabVector {
public:
    HWY_INLINE DabVector(const DabInk& ink)
        : blend_(ink),
          flow_(ink.flow),
          most_(static_cast<float>(ink.ceiling)),
          ceiling_(ink.ceiling) {}

    HWY_INLINE void stamp(const Tip& tip, const DabRow& row, int column) const {
        const Floats old = loadFloats(row.mask + column);
        // Most pixels need no work: behind a moving tip, and at the ceiling, the mask is already above what the dab
        // can reach.
        if (!anyOf(both(old < most_, old < tip.coverageBound(column) * most_))) return;
        const bool isSolid = column >= row.solid.first && column + kLanes <= row.solid.last;
        // Coverage is computed in 64 bits, the mask in 32.
        const Floats target = narrowedFrom([&](int i) HWY_ATTR {
            Doubles c = isSolid ? Doubles(1) : tip.coverage(column + i);
            if (row.grain) c = c * widened(row.grain + column + i);
            if (row.selected) c = c * (widened(row.selected + column + i) / Doubles(255));
            return c * ceiling_;
        });
        auto rises = old < target;
        // Columns behind the last are excluded: the tip has coverage there only where the canvas edge cuts it off.
        if (column + kLanes > row.reached.last)
            rises = both(rises, floatLaneNumbers() < Floats(static_cast<float>(row.reached.last - column)));
        if (!anyOf(rises)) return;
        const Floats raised = old + (target - old) * flow_;
        storeFloats(select(rises, raised, old), row.mask + column);
        const Words now = loadWords(row.pixels + column * 4);
        const Words painted = blend_(loadWords(row.before + column * 4), raised, now);
        storeWords(select(rises, painted, now), row.pixels + column * 4);
    }

private:
    const Ink blend_;
    const Floats flow_, most_;
    const Doubles ceiling_;
};

/// The tile's row at canvas row `y`, which the dab reaches in these columns.
HWY_INLINE DabRow rowOf(const TileDab& tile, int64_t y, Columns reached) {
    const int64_t place = (y - tile.tileY) * kTileSize;
    return {.mask = tile.mask + place,
            .before = tile.before ? tile.before + place * 4 : kTransparentRow.data(),
            .pixels = tile.pixels + place * 4,
            .reached = reached,
            .solid = {0, 0},
            .grain = nullptr,
            .selected = tile.selection ? tile.selection + place : nullptr};
}

/// Goes down each vector of columns in turn: values that depend only on the column are computed once, and rows need
/// no bounds.
template <class Tip, class Ink>
HWY_ATTR void stampColumns(const TipShape& tip, const DabInk& ink, const TileDab& tile, Columns columns) {
    const DabVector<Tip, Ink> dab(ink);
    Tip rows(tip, tile.tileX);
    const Columns vectors = wholeVectors(columns);
    const int64_t bottom = tile.part.maxY();
    for (int column = vectors.first; column < vectors.last; column += kLanes) {
        for (int64_t y = tile.part.y; y < bottom; ++y) {
            rows.enterRow(static_cast<double>(y) + 0.5 - tip.cy);
            dab.stamp(rows, rowOf(tile, y, columns), column);
        }
    }
}

template <bool kHard, bool kRound, class Ink>
HWY_ATTR void stampRows(const TipShape& tip, const DabInk& ink, const TileDab& tile) {
    using Tip = TipRows<kHard, kRound>;
    const Columns columns{static_cast<int>(tile.part.x - tile.tileX),
                          static_cast<int>(tile.part.maxX() - tile.tileX)};
    // Going by rows is faster where much can be skipped: a wide core of full coverage, or the corners around a
    // rotated ellipse.
    const bool rowsPay = kHard || !kRound || tip.edge.inner > tip.edge.band;
    if (!ink.textured && (!rowsPay || columns.last - columns.first <= kNarrow))
        return stampColumns<Tip, Ink>(tip, ink, tile, columns);
    const DabVector<Tip, Ink> dab(ink);
    // The tip has no coverage beyond this distance; half a pixel of it is the margin for rounding.
    const DabColumns outer(tip, tip.edge.r + (kHard ? 1 : 0.5), tile.tileX);
    // Within this distance coverage is exactly 1.
    const DabColumns full(tip, (kHard ? tip.edge.r - 0.5 : tip.edge.inner) - 0.01, tile.tileX);
    std::optional<GrainShares> grain;
    if (ink.textured) grain.emplace(ink, tile.tileX, wholeVectors(columns));
    Tip rows(tip, tile.tileX);
    const int64_t bottom = tile.part.maxY();
    for (int64_t y = tile.part.y; y < bottom; ++y) {
        const double dy = static_cast<double>(y) + 0.5 - tip.cy;
        const Columns reached = outer.columnsAt(dy, columns);
        if (reached.isEmpty()) continue;
        DabRow row = rowOf(tile, y, reached);
        row.solid = full.columnsAt(dy, reached);
        if (grain) row.grain = grain->row(y);
        rows.enterRow(dy);
        const Columns vectors = wholeVectors(reached);
        for (int column = vectors.first; column < vectors.last; column += kLanes)
            dab.stamp(rows, row, column);
    }
}

template <bool kHard, bool kRound>
HWY_ATTR void stampByKind(const TipShape& tip, const DabInk& ink, const TileDab& tile) {
    switch (ink.kind) {
    case DabKind::paint:
        return stampRows<kHard, kRound, Paint>(tip, ink, tile);
    case DabKind::paintUnderAlphaLock:
        return stampRows<kHard, kRound, PaintUnderAlphaLock>(tip, ink, tile);
    case DabKind::erase:
        return stampRows<kHard, kRound, Erase>(tip, ink, tile);
    }
}

HWY_ATTR void StampTile(const TipShape& tip, const DabInk& ink, const TileDab& tile) {
    if (tip.edge.isHard)
        tip.isRound ? stampByKind<true, true>(tip, ink, tile) : stampByKind<true, false>(tip, ink, tile);
    else
        tip.isRound ? stampByKind<false, true>(tip, ink, tile) : stampByKind<false, false>(tip, ink, tile);
}

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qirn {

HWY_EXPORT(StampTile);

void stampTile(const TipShape& tip, const DabInk& ink, const TileDab& tile) {
    HWY_DYNAMIC_DISPATCH(StampTile)(tip, ink, tile);
}

} // namespace qirn
#endif
