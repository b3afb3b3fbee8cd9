#include "brush/TileDab.h"

#include "brush/PaperGrain.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

// This file once more for each instruction set; the best that the machine has is chosen at run time.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "brush/TileDab.cpp"
#include <hwy/foreach_target.h>

#include "brush/TipCoverage.h"

#ifndef QIRN_BRUSH_TILEDAB_ONCE
#define QIRN_BRUSH_TILEDAB_ONCE

namespace qirn {

namespace {

constexpr std::array<uint8_t, kTileRowBytes> kTransparentRow{};

// Rows of fewer columns than this take longer to begin and to end than to paint.
constexpr int kNarrow = 40;

/// Tile columns from `first` to before `last`.
struct Columns {
    int first;
    int last;

    bool isEmpty() const { return first >= last; }
};

/// Where the rows of a tile cross the ellipse of all pixel centres within a distance, as the tip measures it.
class Crossing {
public:
    Crossing(const TipShape& tip, double reach, int64_t tileX) : reach_(reach) {
        // The ellipse as a dx^2 + 2 b dx dy + c dy^2 = reach^2, solved for dx; a c - b^2 is i2.
        const double i2 = tip.inverse * tip.inverse;
        const double a = tip.cosine * tip.cosine + i2 * tip.sine * tip.sine;
        widest_ = reach * reach / a;
        narrowing_ = i2 / (a * a);
        slope_ = tip.sine * tip.cosine * (1 - i2) / a;
        middle_ = tip.cx - 0.5 - static_cast<double>(tileX);
    }

    /// The columns of `row` that lie within. Exact but for rounding: who asks leaves a margin.
    Columns at(double dy, Columns row) const {
        const double under = widest_ - narrowing_ * dy * dy;
        if (reach_ <= 0 || under < 0) return {row.first, row.first};
        const double half = std::sqrt(under), middle = middle_ - slope_ * dy;
        const auto within = [&](double v, int from) {
            return static_cast<int>(std::clamp(v, static_cast<double>(from), static_cast<double>(row.last)));
        };
        // No bound is negative once it is clamped, so that the cast rounds down.
        const int first = within(middle - half + 1, row.first);
        return {first, within(middle + half + 1, first)};
    }

private:
    double reach_, widest_, narrowing_, slope_, middle_;
};

/// The paper's grain as a dab meets it, row by row of a tile.
class GrainShares {
public:
    GrainShares(const DabInk& ink, int64_t tileX, Columns columns) : ink_(ink), columns_(columns) {
        for (int i = columns.first; i < columns.last; ++i)
            places_[i] = static_cast<uint8_t>(placeOf(tileX + i));
    }

    /// The part of the tip's coverage that each pixel of canvas row `y` keeps, by the tile's columns.
    const float* row(int64_t y) {
        const float* grain = PaperGrain::values().data() + placeOf(y) * PaperGrain::size;
        for (int i = columns_.first; i < columns_.last; ++i)
            shares_[i] = 1 - (1 - grain[places_[i]]) * ink_.texture;
        return shares_;
    }

private:
    int64_t placeOf(int64_t pixel) const {
        static_assert(PaperGrain::size == 256);
        return static_cast<int64_t>(static_cast<double>(pixel) / ink_.textureScale) & 0xFF;
    }

    const DabInk& ink_;
    const Columns columns_;
    uint8_t places_[kTileSize];
    alignas(64) float shares_[kTileSize];
};

/// One row of a tile in the hands of a dab; pointers to its first column.
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

/// Whole vectors of the tile's own columns: they come out even and never reach beyond the tile.
HWY_INLINE Columns wholeVectors(Columns row) {
    return {row.first / kLanes * kLanes, (row.last + kLanes - 1) / kLanes * kLanes};
}

/// Half a step up and cut off; for values from -0.5 to 255.5.
HWY_INLINE Words roundedByte(Floats v) {
    return truncated(v + Floats(0.5f));
}

HWY_INLINE Words wordOf(Floats r, Floats g, Floats b, Floats a) {
    return roundedByte(r) | shiftedUp<8>(roundedByte(g)) | shiftedUp<16>(roundedByte(b)) |
           shiftedUp<24>(roundedByte(a));
}

// What pixels become at a coverage from 0 to 1, from their bytes before the stroke. Alpha lock has no say over an
// eraser.

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
          // Places within the tip's tile are wrong by less than a millionth of their size.
          margin_(static_cast<float>(1e-5 + 1e-6 * tip.inverse * (tip.edge.r + kTileSize) / tip.edge.band)) {}

    HWY_INLINE void enterRow(double dy) { dy_ = dy; }

    HWY_INLINE Doubles at(int column) const {
        const Doubles dx =
            Doubles(firstColumn_ + static_cast<double>(column)) + laneNumbers() - Doubles(tip_.cx);
        const Doubles dist = distance(dx, dy_);
        return kHard ? hardCoverage(tip_.edge, dist) : softCoverage(tip_.edge, dist);
    }

    /// At least `at`, for a part of its work: in 32 bits, and then more than those can be wrong by. 0 beside a soft
    /// tip, so that the untouched pixels around it do not call for the whole work.
    HWY_INLINE Floats atMost(int column) const {
        if constexpr (kHard) return Floats(1);
        const Floats dx = Floats(left_ + static_cast<float>(column)) + floatLaneNumbers();
        const Floats t = (distance(dx, static_cast<float>(dy_)) - Floats(inner_)) * Floats(perBand_);
        const Floats inside = smaller(Floats(1), larger(Floats(0), t));
        const Floats coverage =
            Floats(1) + Floats(margin_) - inside * inside * (Floats(3) - Floats(2) * inside);
        return select(t < Floats(1 + margin_), coverage, Floats(0));
    }

private:
    /// From the centre, as the tip measures it.
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

/// What a dab does to neighbouring columns of one row, as many as a vector holds.
template <class Tip, class Ink> class DabVector {
public:
    HWY_INLINE DabVector(const DabInk& ink)
        : blend_(ink),
          flow_(ink.flow),
          most_(static_cast<float>(ink.ceiling)),
          ceiling_(ink.ceiling) {}

    HWY_INLINE void stamp(const Tip& tip, const DabRow& row, int at) const {
        const Floats old = loadFloats(row.mask + at);
        // Behind a moving tip, and where the ceiling is reached, most of the mask stands above what the dab could
        // raise it to.
        if (!anyOf(both(old < most_, old < tip.atMost(at) * most_))) return;
        const bool isSolid = at >= row.solid.first && at + kLanes <= row.solid.last;
        // In 64 bits up to the ceiling, then in 32.
        const Floats target = narrowedFrom([&](int i) HWY_ATTR {
            Doubles c = isSolid ? Doubles(1) : tip.at(at + i);
            if (row.grain) c = c * widened(row.grain + at + i);
            if (row.selected) c = c * (widened(row.selected + at + i) / Doubles(255));
            return c * ceiling_;
        });
        auto rises = old < target;
        // The tip ends within its columns, but for those that the canvas edge cuts off.
        if (at + kLanes > row.reached.last)
            rises = both(rises, floatLaneNumbers() < Floats(static_cast<float>(row.reached.last - at)));
        if (!anyOf(rises)) return;
        const Floats raised = old + (target - old) * flow_;
        storeFloats(select(rises, raised, old), row.mask + at);
        const Words now = loadWords(row.pixels + at * 4);
        const Words painted = blend_(loadWords(row.before + at * 4), raised, now);
        storeWords(select(rises, painted, now), row.pixels + at * 4);
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

/// Vector by vector, each from the top row to the bottom row: what depends on the column alone is worked out once, and
/// no row is asked where it begins and ends.
template <class Tip, class Ink>
HWY_ATTR void stampColumns(const TipShape& tip, const DabInk& ink, const TileDab& tile, Columns columns) {
    const DabVector<Tip, Ink> dab(ink);
    Tip rows(tip, tile.tileX);
    const Columns vectors = wholeVectors(columns);
    const int64_t bottom = tile.part.maxY();
    for (int at = vectors.first; at < vectors.last; at += kLanes) {
        for (int64_t y = tile.part.y; y < bottom; ++y) {
            rows.enterRow(static_cast<double>(y) + 0.5 - tip.cy);
            dab.stamp(rows, rowOf(tile, y, columns), at);
        }
    }
}

template <bool kHard, bool kRound, class Ink>
HWY_ATTR void stampRows(const TipShape& tip, const DabInk& ink, const TileDab& tile) {
    using Tip = TipRows<kHard, kRound>;
    const Columns columns{static_cast<int>(tile.part.x - tile.tileX),
                          static_cast<int>(tile.part.maxX() - tile.tileX)};
    // Rows pay where they can leave out much: a wide core of full coverage, the corners around a slanted ellipse.
    const bool rowsPay = kHard || !kRound || tip.edge.inner > tip.edge.band;
    if (!ink.textured && (!rowsPay || columns.last - columns.first <= kNarrow))
        return stampColumns<Tip, Ink>(tip, ink, tile, columns);
    const DabVector<Tip, Ink> dab(ink);
    // Beyond this the tip has no coverage, which leaves half a pixel for rounding.
    const Crossing outer(tip, tip.edge.r + (kHard ? 1 : 0.5), tile.tileX);
    // Well inside the tip coverage is 1 without further arithmetic.
    const Crossing full(tip, (kHard ? tip.edge.r - 0.5 : tip.edge.inner) - 0.01, tile.tileX);
    std::optional<GrainShares> grain;
    if (ink.textured) grain.emplace(ink, tile.tileX, wholeVectors(columns));
    Tip rows(tip, tile.tileX);
    const int64_t bottom = tile.part.maxY();
    for (int64_t y = tile.part.y; y < bottom; ++y) {
        const double dy = static_cast<double>(y) + 0.5 - tip.cy;
        const Columns reached = outer.at(dy, columns);
        if (reached.isEmpty()) continue;
        DabRow row = rowOf(tile, y, reached);
        row.solid = full.at(dy, reached);
        if (grain) row.grain = grain->row(y);
        rows.enterRow(dy);
        const Columns vectors = wholeVectors(reached);
        for (int at = vectors.first; at < vectors.last; at += kLanes) dab.stamp(rows, row, at);
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
