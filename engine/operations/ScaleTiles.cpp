#include "operations/ScaleTiles.h"

#include "operations/TileJobs.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"
#include "platform/resample/ScaleBlock.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <tuple>
#include <unordered_map>

namespace qirn {

namespace {

constexpr int64_t kBandRows = 64; // of a tile, made by one thread

/// Rows of a layer for the scaler: straight from a tile, or put together from several.
SourceRows rowsOf(const Layer& layer) {
    return [&layer](int64_t x, int64_t y, int64_t count, uint8_t* scratch) -> const uint8_t* {
        const int64_t firstTile = y / kTileSize * layer.grid().cols;
        if (x / kTileSize == (x + count - 1) / kTileSize) {
            const Tile* tile = layer.tile(firstTile + x / kTileSize);
            return tile ? tile->pixels() + placeInTile(x, y) : nullptr;
        }
        bool empty = true;
        for (int64_t at = x; at < x + count;) {
            const int64_t end = std::min((at / kTileSize + 1) * kTileSize, x + count);
            const auto bytes = checkedSize(end - at) * 4;
            uint8_t* out = scratch + (at - x) * 4;
            if (const Tile* tile = layer.tile(firstTile + at / kTileSize)) {
                std::memcpy(out, tile->pixels() + placeInTile(at, y), bytes);
                empty = false;
            } else {
                std::memset(out, 0, bytes);
            }
            at = end;
        }
        return empty ? nullptr : scratch;
    };
}

ScaleWeights weightsBetween(int64_t oldLength, int64_t newLength) {
    const double step = static_cast<double>(oldLength) / static_cast<double>(newLength);
    return {oldLength, step, 0, 0, newLength, Edges::extended};
}

/// The source pixels of each column (or row) of tiles of the new grid.
std::vector<ScaleWeights::Span> reaches(const ScaleWeights& weights, int64_t length) {
    std::vector<ScaleWeights::Span> spans;
    for (int64_t at = 0; at < length; at += kTileSize) {
        spans.push_back(weights.reachOf(at, std::min<int64_t>(kTileSize, length - at)));
    }
    return spans;
}

/// Finds tiles of one color, examining each tile once.
class OneColorTiles {
public:
    std::optional<PixelBytes> colorOf(const Tile& tile) {
        const auto [place, isNew] = known_.try_emplace(&tile);
        if (isNew) place->second = tile.onlyPixel();
        return place->second;
    }

private:
    std::unordered_map<const Tile*, std::optional<PixelBytes>> known_;
};

struct SourceTiles {
    bool any = false;                ///< Some tile is there.
    std::optional<PixelBytes> color; ///< All are there and have this one.
};

SourceTiles sourceTilesIn(const Layer& layer, const IRect& rect, OneColorTiles& oneColor) {
    SourceTiles under;
    bool alike = true;
    for (int64_t index : layer.grid().tilesIn(rect)) {
        const Tile* tile = layer.tile(index);
        const auto color = tile && alike ? oneColor.colorOf(*tile) : std::nullopt;
        alike = alike && color && (!under.any || color == under.color);
        under.any = under.any || tile;
        under.color = alike ? color : std::nullopt;
    }
    return under;
}

} // namespace

void scaleTiles(Layer& from, Layer& to, const Progress& progress) {
    const TileGrid &old = from.grid(), &grid = to.grid();
    const ScaleWeights across = weightsBetween(old.width, grid.width);
    const ScaleWeights down = weightsBetween(old.height, grid.height);
    const auto columns = reaches(across, grid.width), rows = reaches(down, grid.height);
    OneColorTiles oneColor;
    // A tile of a single color depends on the color and the size of its part of the canvas, any other on its slot.
    using Key = std::tuple<std::optional<PixelBytes>, int64_t, int64_t, int64_t>;
    TileJobs<Key> jobs;
    std::unordered_map<int64_t, PixelBytes> colors; // of the slots that have one
    for (int64_t slot = 0; slot < grid.count(); ++slot) {
        const auto& span = columns[checkedSize(slot % grid.cols)];
        const auto& lines = rows[checkedSize(slot / grid.cols)];
        const SourceTiles under =
            sourceTilesIn(from, {span.first, lines.first, span.count, lines.count}, oneColor);
        if (!under.any) continue;
        const IRect part = grid.rectOf(slot);
        if (under.color) colors.emplace(slot, *under.color);
        jobs.add({under.color, under.color ? -1 : slot, part.w, part.h}, slot);
    }
    const SourceRows source = rowsOf(from);
    jobs.run(
        to,
        [&](const TileJob& job, uint8_t* pixels) {
            const IRect part = grid.rectOf(job.first);
            if (const auto color = colors.find(job.first); color != colors.end())
                return fillPixels(pixels, {0, 0, part.w, part.h}, color->second);
            concurrentPerform((part.h + kBandRows - 1) / kBandRows, [&](int64_t band) {
                const int64_t top = band * kBandRows;
                scaleBlock(source, across, down,
                           {part.x, part.y + top, part.w, std::min(kBandRows, part.h - top),
                            pixels + placeInTile(0, top), kTileRowBytes});
            });
        },
        progress);
}

} // namespace qirn
