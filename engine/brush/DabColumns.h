#pragma once
#include "brush/PaperGrain.h"
#include "brush/TileDab.h"
#include "core/Tile.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

// The geometry of a dab's rows. For TileDab.cpp alone: without linkage it is inlined into its loops, and compiled with
// their instruction sets.
namespace qirn {
namespace {

/// Tile columns from `first` to before `last`.
struct Columns {
    int first;
    int last;

    bool isEmpty() const { return first >= last; }
};

/// The columns of each row whose pixel centers lie within a distance of the tip's center, measured in the tip's
/// metric: an ellipse.
class DabColumns {
public:
    DabColumns(const TipShape& tip, double reach, int64_t tileX) : reach_(reach) {
        // The ellipse as a dx^2 + 2 b dx dy + c dy^2 = reach^2, solved for dx; a c - b^2 is i2.
        const double i2 = tip.inverse * tip.inverse;
        const double a = tip.cosine * tip.cosine + i2 * tip.sine * tip.sine;
        widest_ = reach * reach / a;
        narrowing_ = i2 / (a * a);
        slope_ = tip.sine * tip.cosine * (1 - i2) / a;
        middle_ = tip.cx - 0.5 - static_cast<double>(tileX);
    }

    /// The columns of `row` within the distance. Subject to rounding: callers add a margin.
    Columns columnsAt(double dy, Columns row) const {
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

/// The weights that the paper's grain gives to a dab's coverage, row by row of a tile.
class GrainShares {
public:
    GrainShares(const DabInk& ink, int64_t tileX, Columns columns) : ink_(ink), columns_(columns) {
        for (int i = columns.first; i < columns.last; ++i)
            places_[i] = static_cast<uint8_t>(placeOf(tileX + i));
    }

    /// For each column of the tile, the factor for the tip's coverage in canvas row `y`.
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

} // namespace
} // namespace qirn
