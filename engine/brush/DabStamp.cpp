#include "brush/DabStamp.h"

#include "brush/PaperGrain.h"
#include "brush/TipEdge.h"
#include "platform/FloatPixel.h"
#include "operations/Selection.h"
#include "platform/CheckedMath.h"
#include "platform/Trigonometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qirn {

namespace {

/// Canvas columns from `first` to before `last`.
struct Columns {
    int64_t first;
    int64_t last;
};

/// The pixels of one row of a tile that a dab reaches.
struct Row {
    int64_t count;
    float* mask;
    const uint8_t* before; // as before the stroke
    uint8_t* pixels;       // written, never read
};

constexpr std::array<uint8_t, kTileRowBytes> kTransparentRow{};

// What a pixel becomes at a coverage from 0 to 1, from its bytes before the stroke. Alpha lock has no say over an
// eraser.

struct Erase {
    void operator()(const uint8_t* before, float coverage, uint8_t* out) const {
        writePixel(out, (1 - coverage) * readPixel(before));
    }
};

struct PaintUnderAlphaLock {
    FloatPixel color; // straight, 0 to 1; alpha 1

    void operator()(const uint8_t* before, float coverage, uint8_t* out) const {
        if (before[3] == 0) return;
        const FloatPixel was = readPixel(before);
        const float alpha = was[3];
        writePixel(out, limited(was + coverage * (color * alpha - was), alpha));
    }
};

struct Paint {
    FloatPixel color; // straight, 0 to 255; alpha 255

    void operator()(const uint8_t* before, float coverage, uint8_t* out) const {
        const FloatPixel now = (1 - coverage) * readPixel(before) + coverage * color;
        writePixel(out, limited(now, now[3]));
    }
};

/// Raises the coverage of each pixel towards the dab's and writes those that moved.
template <class Write>
void blendRow(const Row& row, const double* coverage, double ceiling, float flow, const Write& write) {
    for (int64_t i = 0; i < row.count; ++i) {
        const auto target = static_cast<float>(coverage[i] * ceiling);
        const float old = row.mask[i];
        if (old >= target) continue;
        const float raised = old + (target - old) * flow;
        row.mask[i] = raised;
        write(row.before + i * 4, raised, row.pixels + i * 4);
    }
}

} // namespace

/// A dab made ready: what does not change from pixel to pixel.
struct DabStamp::Tip {
    double cx;
    double cy;
    TipEdge edge;
    double ceiling;
    float flow;
    bool textured;
    bool isRound;
    double sine = 0;
    double cosine = 1;
    double inverse = 1; // of the roundness

    explicit Tip(const Dab& dab)
        : cx(dab.cx),
          cy(dab.cy),
          edge(std::max(dab.radius, 0.5), dab.hardness),
          ceiling(dab.ceiling),
          flow(static_cast<float>(dab.flow)),
          textured(dab.textured),
          isRound(dab.roundness >= 0.999) {
        if (isRound) return;
        const SineCosine turn = sineCosine(dab.angle * std::numbers::pi / 180);
        sine = turn.sine;
        cosine = turn.cosine;
        inverse = 1 / std::max(dab.roundness, 0.05);
    }

    IRect box() const {
        const auto side = checkedWhole(std::ceil(2 * edge.r + 3));
        return {checkedWhole(std::floor(cx - edge.r - 1)), checkedWhole(std::floor(cy - edge.r - 1)), side,
                side};
    }

    /// The columns of [first, last) in a row whose pixel centres lie within a distance of the centre, as the tip
    /// measures it. Exact but for rounding: who asks leaves a margin.
    Columns columnsWithin(double reach, double dy, Columns row) const {
        // The ellipse as a dx^2 + 2 b dx dy + c dy^2 = reach^2, solved for dx; a c - b^2 is i2.
        const double i2 = inverse * inverse;
        const double a = cosine * cosine + i2 * sine * sine;
        const double b = sine * cosine * (1 - i2);
        const double under = a * reach * reach - i2 * dy * dy;
        if (reach <= 0 || under < 0) return {row.first, row.first};
        const double half = std::sqrt(under) / a;
        const double middle = cx - 0.5 - b * dy / a;
        const auto first = static_cast<int64_t>(std::ceil(middle - half));
        const auto last = static_cast<int64_t>(std::floor(middle + half)) + 1;
        const int64_t from = std::clamp(first, row.first, row.last);
        return {from, std::clamp(last, from, row.last)};
    }

    template <bool hard, bool round>
    void coverEdge(double* coverage, int64_t x, double dy, int64_t count) const {
        // Copies, so that the compiler need not fear that writing the coverage changes them.
        const TipEdge e = edge;
        const double centre = cx, s = sine, c = cosine, inv = inverse;
        const double us = s * dy, vc = c * dy, dy2 = dy * dy;
        for (int64_t i = 0; i < count; ++i) {
            const double dx = static_cast<double>(static_cast<int32_t>(x + i)) + 0.5 - centre;
            const double u = c * dx + us;
            const double v = inv * (vc - s * dx);
            const double dist = std::sqrt(round ? dx * dx + dy2 : u * u + v * v);
            coverage[i] = hard ? e.hardCoverage(dist) : e.softCoverage(dist);
        }
    }

    /// The coverage of the row's columns, 0 where the tip does not touch.
    void coverRow(double* coverage, double dy, Columns row) const {
        // Well inside the tip coverage is 1 without further arithmetic.
        const double full = edge.isHard ? edge.r - 0.5 : edge.inner;
        const Columns solid = columnsWithin(full - 0.01, dy, row);
        const auto cover = [&](int64_t first, int64_t last) {
            double* out = coverage + (first - row.first);
            if (edge.isHard)
                isRound ? coverEdge<true, true>(out, first, dy, last - first)
                        : coverEdge<true, false>(out, first, dy, last - first);
            else
                isRound ? coverEdge<false, true>(out, first, dy, last - first)
                        : coverEdge<false, false>(out, first, dy, last - first);
        };
        cover(row.first, solid.first);
        std::fill(coverage + (solid.first - row.first), coverage + (solid.last - row.first), 1.0);
        cover(solid.last, row.last);
    }
};

DabStamp::DabStamp(PaintDocument& document, Layer& layer, const BrushSettings& brush, const PaintColor& color)
    : document_(document),
      layer_(layer),
      erases_(brush.kind == BrushKind::erase),
      texture_(static_cast<float>(brush.texture)),
      textureScale_(brush.textureScale),
      color_{static_cast<float>(color.r), static_cast<float>(color.g), static_cast<float>(color.b)} {}

IRect DabStamp::stamp(const Dab& dab) {
    const Tip tip(dab);
    const IRect box = tip.box().intersection(document_.grid().bounds());
    if (box.isEmpty() || !(dab.ceiling > 0)) return {};
    for (int64_t index : document_.grid().tilesIn(box)) {
        stampTile(tip, index, document_.grid().rectOf(index).intersection(box));
    }
    document_.markDirty(box);
    return box;
}

void DabStamp::releaseBuffers() {
    work_.clear();
}

DabStamp::TileWork& DabStamp::workOn(int64_t index) {
    TileWork& work = work_[index];
    if (!work.mask) {
        work.mask = std::make_unique<Mask>();
        work.before = layer_.tiles().share(index);
        if (work.before) work.before->freeze();
    }
    return work;
}

void DabStamp::stampTile(const Tip& tip, int64_t index, const IRect& part) {
    TileWork& work = workOn(index);
    uint8_t* pixels = layer_.writableTile(index).writablePixels();
    const IRect tile = document_.grid().rectOf(index);
    const Selection* selection = document_.selection.get();
    std::array<double, kTileSize> coverage;
    for (int64_t y = part.y; y < part.maxY(); ++y) {
        const double dy = static_cast<double>(y) + 0.5 - tip.cy;
        // Beyond this no tip has any coverage, which leaves half a pixel for rounding.
        const Columns reached = tip.columnsWithin(tip.edge.r + 1, dy, {part.x, part.maxX()});
        const int64_t first = reached.first, count = reached.last - reached.first;
        if (count == 0) continue;
        tip.coverRow(coverage.data(), dy, reached);
        if (tip.textured) applyGrain(coverage.data(), first, y, count);
        if (selection) {
            const uint8_t* selected = selection->row(y) + first;
            for (int64_t i = 0; i < count; ++i) coverage[static_cast<std::size_t>(i)] *= selected[i] / 255.0;
        }
        const int64_t place = (y - tile.y) * kTileSize + (first - tile.x);
        const uint8_t* before =
            work.before ? std::as_const(*work.before).pixels() + place * 4 : kTransparentRow.data();
        const Row row{count, work.mask->coverage.data() + place, before, pixels + place * 4};
        if (erases_)
            blendRow(row, coverage.data(), tip.ceiling, tip.flow, Erase{});
        else if (layer_.alphaLocked)
            blendRow(row, coverage.data(), tip.ceiling, tip.flow,
                     PaintUnderAlphaLock{{color_[0], color_[1], color_[2], 1}});
        else
            blendRow(row, coverage.data(), tip.ceiling, tip.flow,
                     Paint{FloatPixel{color_[0], color_[1], color_[2], 1} * 255});
    }
}

void DabStamp::applyGrain(double* coverage, int64_t x, int64_t y, int64_t count) const {
    constexpr int64_t mask = PaperGrain::size - 1;
    const int64_t gy = static_cast<int64_t>(static_cast<double>(y) / textureScale_) & mask;
    const float* grain = PaperGrain::values().data() + gy * PaperGrain::size;
    for (int64_t i = 0; i < count; ++i) {
        const int64_t gx = static_cast<int64_t>(static_cast<double>(x + i) / textureScale_) & mask;
        coverage[i] *= static_cast<double>(1 - (1 - grain[gx]) * texture_);
    }
}

} // namespace qirn
