#include "brush/TileDab.h"

#include "brush/PaperGrain.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

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

/// What lowers the coverage of a row's pixels besides the tip, column by column.
struct RowShares {
    alignas(64) float grain[kTileSize];
    alignas(64) uint8_t selected[kTileSize];
};

void gatherGrain(const DabInk& ink, int64_t tileX, int64_t y, Columns row, RowShares& shares) {
    constexpr int64_t mask = PaperGrain::size - 1;
    const int64_t gy = static_cast<int64_t>(static_cast<double>(y) / ink.textureScale) & mask;
    const float* grain = PaperGrain::values().data() + gy * PaperGrain::size;
    for (int i = row.first; i < row.last; ++i) {
        const int64_t gx = static_cast<int64_t>(static_cast<double>(tileX + i) / ink.textureScale) & mask;
        shares.grain[i] = grain[gx];
    }
}

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

// Pixels are handled in whole blocks of the tile's own columns, so that vectors come out even and never reach beyond
// the tile.
constexpr int kBlock = kLanes < 8 ? 8 : kLanes;

HWY_INLINE Columns wholeBlocks(Columns row) {
    return {row.first / kBlock * kBlock, (row.last + kBlock - 1) / kBlock * kBlock};
}

/// Half a step up and cut off; for values below 255.5.
HWY_INLINE Words roundedByte(Floats v) {
    return truncated(larger(v + Floats(0.5f), Floats(0)));
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

/// The tip's coverage at consecutive columns of a row.
template <bool kHard, bool kRound> class TipRow {
public:
    HWY_INLINE TipRow(const TipShape& tip, int64_t tileX, double dy) : tip_(tip), tileX_(tileX), dy_(dy) {}

    HWY_INLINE Doubles at(int column) const {
        const Doubles dx =
            Doubles(static_cast<double>(tileX_ + column)) + laneNumbers() + Doubles(0.5) - Doubles(tip_.cx);
        const Doubles dist = distance(dx, dy_);
        return kHard ? hardCoverage(tip_.edge, dist) : softCoverage(tip_.edge, dist);
    }

    /// At least `at`, for a part of its work: in 32 bits, and then more than those can be wrong by.
    HWY_INLINE Floats atMost(int column) const {
        if constexpr (kHard) return Floats(1);
        const auto left = static_cast<float>(static_cast<double>(tileX_ + column) + 0.5 - tip_.cx);
        const Floats dist = distance(Floats(left) + floatLaneNumbers(), static_cast<float>(dy_));
        const Floats t = (dist - Floats(static_cast<float>(tip_.edge.inner))) *
                         Floats(static_cast<float>(1 / tip_.edge.band));
        const Floats inside = smaller(Floats(1), larger(Floats(0), t));
        const Floats c = Floats(1) - inside * inside * (Floats(3) - Floats(2) * inside);
        return c + Floats(static_cast<float>(1e-5 + 2e-6 * tip_.inverse * tip_.edge.r / tip_.edge.band));
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

    const TipShape& tip_;
    const int64_t tileX_;
    const double dy_;
};

/// What the coverage of a block's pixels is raised towards: in 64 bits up to the ceiling, then in 32.
template <class Tip>
HWY_INLINE void makeTargets(const Tip& tip, const DabInk& ink, const DabRow& row, int block, float* targets) {
    const bool isSolid = block >= row.solid.first && block + kBlock <= row.solid.last;
    alignas(64) float grainShare[kBlock];
    if (row.grain) {
        for (int i = 0; i < kBlock; i += kLanes) {
            const Floats grain = loadFloats(row.grain + block + i);
            storeFloats(Floats(1) - (Floats(1) - grain) * Floats(ink.texture), grainShare + i);
        }
    }
    for (int i = 0; i < kBlock; i += kDoubleLanes) {
        Doubles c = isSolid ? Doubles(1) : tip.at(block + i);
        if (row.grain) c = c * widened(grainShare + i);
        if (row.selected) c = c * (widened(row.selected + block + i) / Doubles(255));
        storeNarrowed(c * Doubles(ink.ceiling), targets + i);
    }
}

template <class Tip, class Ink>
HWY_INLINE void stampRow(const Tip& tip, const DabInk& ink, const Ink& blend, const DabRow& row) {
    const Floats flow(ink.flow), most(static_cast<float>(ink.ceiling));
    const Columns blocks = wholeBlocks(row.reached);
    for (int block = blocks.first; block < blocks.last; block += kBlock) {
        // Behind a moving tip, and where the ceiling is reached, most of the mask stands above what the dab could
        // raise it to.
        bool mayRise = false;
        for (int i = 0; i < kBlock; i += kLanes) {
            const Floats old = loadFloats(row.mask + block + i);
            mayRise = mayRise || anyOf(both(old < most, old < tip.atMost(block + i) * most));
        }
        if (!mayRise) continue;
        alignas(64) float targets[kBlock];
        makeTargets(tip, ink, row, block, targets);
        for (int i = block; i < row.reached.first; ++i) targets[i - block] = 0;
        for (int i = row.reached.last; i < block + kBlock; ++i) targets[i - block] = 0;
        for (int i = 0; i < kBlock; i += kLanes) {
            const int at = block + i;
            const Floats target = loadFloats(targets + i);
            const Floats old = loadFloats(row.mask + at);
            const auto rises = old < target;
            if (!anyOf(rises)) continue;
            const Floats raised = old + (target - old) * flow;
            storeFloats(select(rises, raised, old), row.mask + at);
            const Words now = loadWords(row.pixels + at * 4);
            const Words painted = blend(loadWords(row.before + at * 4), raised, now);
            storeWords(select(rises, painted, now), row.pixels + at * 4);
        }
    }
}

template <bool kHard, bool kRound, class Ink>
HWY_ATTR void stampRows(const TipShape& tip, const DabInk& ink, const TileDab& tile) {
    const Ink blend(ink);
    const Columns columns{static_cast<int>(tile.part.x - tile.tileX),
                          static_cast<int>(tile.part.maxX() - tile.tileX)};
    // Beyond this no tip has any coverage, which leaves half a pixel for rounding.
    const Crossing outer(tip, tip.edge.r + 1, tile.tileX);
    // Well inside the tip coverage is 1 without further arithmetic.
    const Crossing full(tip, (kHard ? tip.edge.r - 0.5 : tip.edge.inner) - 0.01, tile.tileX);
    RowShares shares;
    for (int64_t y = tile.part.y; y < tile.part.maxY(); ++y) {
        const double dy = static_cast<double>(y) + 0.5 - tip.cy;
        const Columns reached = outer.at(dy, columns);
        if (reached.isEmpty()) continue;
        const int64_t place = (y - tile.tileY) * kTileSize;
        DabRow row{tile.mask + place,
                   tile.before ? tile.before + place * 4 : kTransparentRow.data(),
                   tile.pixels + place * 4,
                   reached,
                   full.at(dy, reached),
                   nullptr,
                   nullptr};
        if (ink.textured) {
            gatherGrain(ink, tile.tileX, y, wholeBlocks(reached), shares);
            row.grain = shares.grain;
        }
        if (tile.selection) {
            // Only what lies on the canvas has bytes; the rest of the blocks is masked out.
            std::memcpy(shares.selected + reached.first,
                        tile.selection + (y - tile.tileY) * tile.selectionStride + reached.first,
                        static_cast<std::size_t>(reached.last - reached.first));
            row.selected = shares.selected;
        }
        stampRow(TipRow<kHard, kRound>(tip, tile.tileX, dy), ink, blend, row);
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

} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qirn {

HWY_EXPORT(StampTile);

double TipEdge::coverage(double dist) const {
    return isHard ? HWY_NAMESPACE::hardCoverage(*this, dist) : HWY_NAMESPACE::softCoverage(*this, dist);
}

void stampTile(const TipShape& tip, const DabInk& ink, const TileDab& tile) {
    HWY_DYNAMIC_DISPATCH(StampTile)(tip, ink, tile);
}

} // namespace qirn
#endif
