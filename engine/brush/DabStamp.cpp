#include "brush/DabStamp.h"

#include "brush/DabRows.h"
#include "brush/PaperGrain.h"
#include "operations/Selection.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"
#include "platform/Trigonometry.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace qirn {

namespace {

constexpr std::array<uint8_t, kTileRowBytes> kTransparentRow{};
// Fewer pixels than this are painted before other threads have woken up.
constexpr int64_t kLeastParallelPixels = 120'000;

/// A dab made ready: what does not change from pixel to pixel.
TipShape shapeOf(const Dab& dab) {
    TipShape tip{.edge = TipEdge(std::max(dab.radius, 0.5), dab.hardness), .cx = dab.cx, .cy = dab.cy};
    if (dab.roundness >= 0.999) return tip;
    const SineCosine turn = sineCosine(dab.angle * std::numbers::pi / 180);
    tip.isRound = false;
    tip.sine = turn.sine;
    tip.cosine = turn.cosine;
    tip.inverse = 1 / std::max(dab.roundness, 0.05);
    return tip;
}

IRect boxOf(const TipShape& tip) {
    const auto side = checkedWhole(std::ceil(2 * tip.edge.r + 3));
    return {checkedWhole(std::floor(tip.cx - tip.edge.r - 1)),
            checkedWhole(std::floor(tip.cy - tip.edge.r - 1)), side, side};
}

/// The columns of `row` whose pixel centres lie within a distance of the centre, as the tip measures it. Exact but for
/// rounding: who asks leaves a margin.
Columns columnsWithin(const TipShape& tip, double reach, int64_t tileX, double dy, Columns row) {
    // The ellipse as a dx^2 + 2 b dx dy + c dy^2 = reach^2, solved for dx; a c - b^2 is i2.
    const double i2 = tip.inverse * tip.inverse;
    const double a = tip.cosine * tip.cosine + i2 * tip.sine * tip.sine;
    const double b = tip.sine * tip.cosine * (1 - i2);
    const double under = a * reach * reach - i2 * dy * dy;
    if (reach <= 0 || under < 0) return {row.first, row.first};
    const double half = std::sqrt(under) / a;
    const double middle = tip.cx - 0.5 - b * dy / a - static_cast<double>(tileX);
    const auto within = [&](double v, int from) {
        return static_cast<int>(std::clamp(v, static_cast<double>(from), static_cast<double>(row.last)));
    };
    const int first = within(std::ceil(middle - half), row.first);
    return {first, within(std::floor(middle + half) + 1, first)};
}

/// The tip's coverage of the columns of a row, exactly; 0 beside them in their blocks.
void coverRow(const TipShape& tip, int64_t tileX, double dy, Columns row, RowOf<double>& coverage) {
    const Columns blocks = row.blocks();
    // Well inside the tip coverage is 1 without further arithmetic.
    const double full = tip.edge.isHard ? tip.edge.r - 0.5 : tip.edge.inner;
    const Columns solid = columnsWithin(tip, full - 0.01, tileX, dy, row);
    const int solidFrom = Columns{solid.first, solid.first}.blocks().last;
    const int solidTo = Columns{solid.last, solid.last}.blocks().first;
    if (solidFrom < solidTo) {
        coverTip(tip, tileX, dy, {blocks.first, solidFrom}, coverage);
        std::fill(coverage.at + solidFrom, coverage.at + solidTo, 1.0);
        coverTip(tip, tileX, dy, {solidTo, blocks.last}, coverage);
    } else {
        coverTip(tip, tileX, dy, blocks, coverage);
    }
    std::fill(coverage.at + blocks.first, coverage.at + row.first, 0.0);
    std::fill(coverage.at + row.last, coverage.at + blocks.last, 0.0);
}

} // namespace

DabStamp::DabStamp(PaintDocument& document, Layer& layer, const BrushSettings& brush, const PaintColor& color)
    : document_(document),
      layer_(layer),
      erases_(brush.kind == BrushKind::erase),
      texture_(static_cast<float>(brush.texture)),
      textureScale_(brush.textureScale),
      color_{static_cast<float>(color.r), static_cast<float>(color.g), static_cast<float>(color.b)} {}

IRect DabStamp::stamp(const Dab& dab) {
    const TipShape tip = shapeOf(dab);
    const IRect box = boxOf(tip).intersection(document_.grid().bounds());
    if (box.isEmpty() || !(dab.ceiling > 0)) return {};
    std::vector<TileJob> jobs;
    for (int64_t index : document_.grid().tilesIn(box)) {
        jobs.push_back({&workOn(index), layer_.writableTile(index).writablePixels(),
                        document_.grid().rectOf(index), box});
    }
    if (box.w * box.h < kLeastParallelPixels) {
        for (const TileJob& job : jobs) stampTile(tip, dab, job);
    } else {
        concurrentPerform(static_cast<int64_t>(jobs.size()),
                          [&](int64_t i) { stampTile(tip, dab, jobs[static_cast<std::size_t>(i)]); });
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

void DabStamp::stampTile(const TipShape& tip, const Dab& dab, const TileJob& job) const {
    const IRect part = job.tile.intersection(job.box);
    const Selection* selection = document_.selection.get();
    const DabKind kind = erases_              ? DabKind::erase
                         : layer_.alphaLocked ? DabKind::paintUnderAlphaLock
                                              : DabKind::paint;
    const DabInk ink{kind, color_[0], color_[1], color_[2], static_cast<float>(dab.flow)};
    const Columns columns{static_cast<int>(part.x - job.tile.x), static_cast<int>(part.maxX() - job.tile.x)};
    RowOf<double> coverage;
    RowOf<float> targets;
    for (int64_t y = part.y; y < part.maxY(); ++y) {
        const double dy = static_cast<double>(y) + 0.5 - tip.cy;
        // Beyond this no tip has any coverage, which leaves half a pixel for rounding.
        const Columns reached = columnsWithin(tip, tip.edge.r + 1, job.tile.x, dy, columns);
        if (reached.count() == 0) continue;
        const Columns blocks = reached.blocks();
        coverRow(tip, job.tile.x, dy, reached, coverage);
        if (dab.textured) applyGrain(grainOf(job.tile.x, y, blocks), texture_, blocks, coverage);
        if (selection) {
            RowOf<uint8_t> selected;
            std::memcpy(selected.at + reached.first, selection->row(y) + job.tile.x + reached.first,
                        static_cast<std::size_t>(reached.count()));
            std::memset(selected.at + blocks.first, 0,
                        static_cast<std::size_t>(reached.first - blocks.first));
            std::memset(selected.at + reached.last, 0, static_cast<std::size_t>(blocks.last - reached.last));
            applySelection(selected, blocks, coverage);
        }
        makeTargets(coverage, dab.ceiling, blocks, targets);
        const int64_t place = (y - job.tile.y) * kTileSize;
        const TileRef& before = job.work->before;
        paintRow({job.work->mask->coverage.data() + place,
                  before ? std::as_const(*before).pixels() + place * 4 : kTransparentRow.data(),
                  job.pixels + place * 4},
                 ink, blocks, targets);
    }
}

/// The paper under a row of a tile; in canvas pixels.
RowOf<float> DabStamp::grainOf(int64_t tileX, int64_t y, Columns blocks) const {
    constexpr int64_t mask = PaperGrain::size - 1;
    const int64_t gy = static_cast<int64_t>(static_cast<double>(y) / textureScale_) & mask;
    const float* grain = PaperGrain::values().data() + gy * PaperGrain::size;
    RowOf<float> row;
    for (int i = blocks.first; i < blocks.last; ++i) {
        const int64_t gx = static_cast<int64_t>(static_cast<double>(tileX + i) / textureScale_) & mask;
        row.at[i] = grain[gx];
    }
    return row;
}

} // namespace qirn
