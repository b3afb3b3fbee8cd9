#include "brush/SmudgeBlur.h"

#include "brush/TipDistances.h"
#include "core/selection/Selection.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"
#include "platform/lanes/FloatPixel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace qirn {

namespace {

constexpr std::array<uint8_t, kTileRowBytes> kTransparentRow{};

/// Calls visit(index, x, count) for each tile that the canvas pixels [first, last) of a row lie in.
template <class Visit>
void forEachTileOfRow(const TileGrid& grid, int64_t first, int64_t last, int64_t y, Visit visit) {
    for (int64_t x = first; x < last;) {
        const int64_t next = std::min(last, (x / kTileSize + 1) * kTileSize);
        visit(grid.indexAt(x, y), x, next - x);
        x = next;
    }
}

/// The layer's pixels of part of a tile's row, or zeros where there is no tile.
const uint8_t* rowInTile(const Layer& layer, int64_t index, int64_t x, int64_t y) {
    const Tile* tile = layer.tile(index);
    return tile ? tile->pixels() + placeInTile(x, y) : kTransparentRow.data();
}

/// The selection's coverage from a pixel of a tile on, a byte a pixel; null without a selection.
const uint8_t* selectedFrom(const Selection* selection, int64_t index, int64_t x, int64_t y) {
    return selection ? selection->row(index, y % kTileSize) + x % kTileSize : nullptr;
}

/// Moves a pixel towards the paint on the tip, and the paint towards the old pixel. Both shares are from 0 to 1, so
/// every result lies between the two.
void smudgePixel(uint8_t* pixel, float* load, float given, float taken, bool keepsAlpha) {
    const FloatPixel was = readPixel(pixel), paint = loadPixel(load);
    FloatPixel now = was + given * (paint - was);
    if (keepsAlpha) now[3] = was[3];
    writePixel(pixel, limited(now, now[3]));
    storePixel(load, paint + taken * (was - paint));
}

/// For values of 0 and above, whose numbers are equal exactly if their bits are.
bool areEqual(FloatPixel a, FloatPixel b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

/// Calls work(first, last) for bands that make up 0 to before `count`, in parallel.
template <class Work> void inBands(int64_t count, Work work) {
    constexpr int64_t band = 64;
    concurrentPerform((count + band - 1) / band,
                      [&](int64_t i) { work(i * band, std::min((i + 1) * band, count)); });
}

} // namespace

SmudgeTip::SmudgeTip(PaintDocument& document, Layer& layer, const BrushSettings& brush)
    : document_(document),
      layer_(layer),
      hardness_(brush.hardness),
      strength_(static_cast<float>(brush.strength)),
      pick_(static_cast<float>((1 - brush.strength) * 0.6 + 0.15)),
      halfWidth_(static_cast<int64_t>(std::ceil(brush.size / 2)) + 1) {}

IRect SmudgeTip::dab(double x, double y, double size) {
    // Rounded to a pixel, so that the carried square does not drift by fractions.
    const int64_t cx = checkedWhole(std::round(x));
    const int64_t cy = checkedWhole(std::round(y));
    const TipEdge edge(std::max(size / 2, 1.0), hardness_);
    const bool isFirst = load_.empty();
    const int64_t side = 2 * halfWidth_ + 1;
    if (isFirst) load_.resize(checkedSize(side * side * 4));

    const TileGrid& grid = document_.grid();
    IRect touched;
    for (int64_t dy = -halfWidth_; dy <= halfWidth_; ++dy) {
        const int64_t py = cy + dy;
        const double under = (edge.r + 1) * (edge.r + 1) - static_cast<double>(dy * dy);
        if (py < 0 || py >= grid.height || under < 0) continue;
        const int64_t half = std::min(halfWidth_, static_cast<int64_t>(std::sqrt(under)) + 1);
        const int64_t first = std::max<int64_t>(cx - half, 0), last = std::min(cx + half + 1, grid.width);
        forEachTileOfRow(grid, first, last, py, [&](int64_t index, int64_t px, int64_t count) {
            const Row row{index, px, py, count, px - cx, dy};
            float* load = load_.data() + ((dy + halfWidth_) * side + (px - cx + halfWidth_)) * 4;
            if (isFirst)
                pickUp(edge, row, load);
            else
                touched = touched.united(drag(edge, row, load));
        });
    }
    document_.markDirty(touched);
    return touched;
}

void SmudgeTip::pickUp(const TipEdge& edge, const Row& row, float* load) const {
    const uint8_t* pixels = rowInTile(layer_, row.tile, row.x, row.y);
    TipCoverage covered;
    coverAround(edge, row.dx, row.dy, row.count, covered);
    for (int64_t i = 0; i < row.count; ++i) {
        if (!(covered.share[checkedSize(i)] > 0)) continue;
        storePixel(load + i * 4, readPixel(pixels + i * 4));
    }
}

IRect SmudgeTip::drag(const TipEdge& edge, const Row& row, float* load) {
    const uint8_t* selected = selectedFrom(document_.selection.get(), row.tile, row.x, row.y);
    const bool keepsAlpha = layer_.alphaLocked;
    const uint8_t* pixels = rowInTile(layer_, row.tile, row.x, row.y);
    uint8_t* writable = nullptr;
    int64_t firstWritten = row.count, lastWritten = -1;
    TipCoverage covered;
    coverAround(edge, row.dx, row.dy, row.count, covered);
    for (int64_t i = 0; i < row.count; ++i) {
        float c = covered.share[checkedSize(i)];
        if (!(c > 0)) continue;
        if (selected) {
            c *= static_cast<float>(selected[i]) / 255.0f;
            if (!(c > 0)) continue;
        }
        if (keepsAlpha && pixels[i * 4 + 3] == 0) continue;
        if (!writable) {
            // From now on pixels are read from the copy: the tile that it was copied from may be gone.
            writable = layer_.writableTile(row.tile).writablePixels() + placeInTile(row.x, row.y);
            pixels = writable;
            firstWritten = i;
        }
        lastWritten = i;
        smudgePixel(writable + i * 4, load + i * 4, c * strength_, c * pick_, keepsAlpha);
    }
    if (!writable) return {};
    return {row.x + firstWritten, row.y, lastWritten - firstWritten + 1, 1};
}

BlurTip::BlurTip(PaintDocument& document, Layer& layer, const BrushSettings& brush)
    : document_(document),
      layer_(layer),
      hardness_(brush.hardness),
      strength_(static_cast<float>(brush.strength)) {}

IRect BlurTip::dab(double x, double y, double size) {
    const double r = std::max(size / 2, 1.0);
    const int64_t b = std::clamp<int64_t>(static_cast<int64_t>(r * 0.2), 1, 12);
    const int64_t side = static_cast<int64_t>(std::ceil(2 * r)) + 1;
    const IRect area =
        IRect{checkedWhole(std::floor(x - r)), checkedWhole(std::floor(y - r)), side, side}.intersection(
            document_.grid().bounds());
    if (area.isEmpty()) return {};
    const IRect around = area.insetBy(-b);
    makeRoom(area, around);
    inBands(around.h, [&](int64_t first, int64_t last) {
        read(around, first, last);
        blurRows(area.w, b, first, last);
    });
    inBands(area.w, [&](int64_t first, int64_t last) { blurColumns(area, b, first, last); });
    const TipEdge edge(r, hardness_);
    for (int64_t py = area.y; py < area.maxY(); ++py) {
        forEachTileOfRow(
            document_.grid(), area.x, area.maxX(), py, [&](int64_t index, int64_t px, int64_t count) {
                const int64_t row = py - area.y, column = px - area.x;
                const float* source = source_.data() + ((row + b) * (area.w + 2 * b) + column + b) * 4;
                const float* blurred = blurred_.data() + (row * area.w + column) * 4;
                mix(edge, {index, px, py, count, x, y}, source, blurred);
            });
    }
    document_.markDirty(area);
    return area;
}

void BlurTip::makeRoom(const IRect& area, const IRect& around) {
    source_.resize(checkedSize(around.w * around.h * 4));
    rows_.resize(checkedSize(area.w * around.h * 4));
    blurred_.resize(checkedSize(area.w * area.h * 4));
    sums_.assign(checkedSize(area.w * 4), 0.0f);
}

/// Fills rows of `source_` with the layer's pixels; those beyond the canvas repeat its edge.
void BlurTip::read(const IRect& area, int64_t firstRow, int64_t lastRow) {
    const TileGrid& grid = document_.grid();
    const int64_t first = std::max<int64_t>(area.x, 0), last = std::min(area.maxX(), grid.width);
    for (int64_t y = area.y + firstRow; y < area.y + lastRow; ++y) {
        const int64_t inside = std::clamp<int64_t>(y, 0, grid.height - 1);
        float* row = source_.data() + (y - area.y) * area.w * 4;
        forEachTileOfRow(grid, first, last, inside, [&](int64_t index, int64_t x, int64_t count) {
            const uint8_t* pixels = rowInTile(layer_, index, x, inside);
            float* out = row + (x - area.x) * 4;
            for (int64_t i = 0; i < count * 4; i += 4) storePixel(out + i, readPixel(pixels + i));
        });
        for (int64_t x = area.x; x < first; ++x)
            std::copy_n(row + (first - area.x) * 4, 4, row + (x - area.x) * 4);
        for (int64_t x = last; x < area.maxX(); ++x)
            std::copy_n(row + (last - 1 - area.x) * 4, 4, row + (x - area.x) * 4);
    }
}

/// Box means along each row of `source_` into `rows_`, which is narrower by `b` on both sides. The sums are of
/// whole numbers below 2^24 and so exact, whatever the order.
void BlurTip::blurRows(int64_t width, int64_t b, int64_t firstRow, int64_t lastRow) {
    const auto n = static_cast<float>(2 * b + 1);
    for (int64_t y = firstRow; y < lastRow; ++y) {
        const float* in = source_.data() + y * (width + 2 * b) * 4;
        float* out = rows_.data() + y * width * 4;
        FloatPixel sum{};
        for (int64_t x = 0; x < 2 * b; ++x) sum += loadPixel(in + x * 4);
        for (int64_t x = 0; x < width; ++x) {
            sum += loadPixel(in + (x + 2 * b) * 4);
            storePixel(out + x * 4, sum / n);
            sum -= loadPixel(in + x * 4);
        }
    }
}

/// Box means down columns of `rows_` into `blurred_`, which is lower by `b` on both sides. These sums round, so they
/// slide from the first row on, with the rows beyond it repeating it.
void BlurTip::blurColumns(const IRect& area, int64_t b, int64_t firstColumn, int64_t lastColumn) {
    const auto n = static_cast<float>(2 * b + 1);
    const int64_t stride = area.w * 4, floats = (lastColumn - firstColumn) * 4, last = area.h + 2 * b - 1;
    float* sums = sums_.data() + firstColumn * 4;
    const auto row = [&](int64_t y) {
        return rows_.data() + std::clamp<int64_t>(y, 0, last) * stride + firstColumn * 4;
    };
    for (int64_t y = -b; y <= b; ++y) {
        const float* in = row(y);
        for (int64_t i = 0; i < floats; ++i) sums[i] += in[i];
    }
    for (int64_t y = 0; y < area.h + b; ++y) {
        const float* gained = row(y + b + 1);
        const float* lost = row(y - b);
        if (y >= b) {
            float* out = blurred_.data() + (y - b) * stride + firstColumn * 4;
            for (int64_t i = 0; i < floats; ++i) out[i] = sums[i] / n;
        }
        for (int64_t i = 0; i < floats; ++i) sums[i] = (sums[i] + gained[i]) - lost[i];
    }
}

void BlurTip::mix(const TipEdge& edge, const Row& row, const float* source, const float* blurred) {
    const uint8_t* selected = selectedFrom(document_.selection.get(), row.tile, row.x, row.y);
    const bool keepsAlpha = layer_.alphaLocked;
    uint8_t* writable = nullptr;
    TipCoverage covered;
    coverAround(edge, row.cx, row.cy, row.x, row.y, row.count, covered);
    for (int64_t i = 0; i < row.count; ++i, source += 4, blurred += 4) {
        float c = covered.share[checkedSize(i)];
        if (!(c > 0)) continue;
        if (selected) {
            c *= static_cast<float>(selected[i]) / 255.0f;
            if (!(c > 0)) continue;
        }
        const float m = c * strength_;
        const FloatPixel was = loadPixel(source);
        FloatPixel now = was + m * (loadPixel(blurred) - was);
        if (keepsAlpha) now[3] = was[3];
        // Flat color does not change, and its tile is not copied.
        if (areEqual(now, was)) continue;
        if (!writable) writable = layer_.writableTile(row.tile).writablePixels() + placeInTile(row.x, row.y);
        // Rounding errors below 0 or above 255 are less than 0.5, so they vanish when the byte is rounded.
        writePixel(writable + i * 4, limited(now, now[3]));
    }
}

} // namespace qirn
