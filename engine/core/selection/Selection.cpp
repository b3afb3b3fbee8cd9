#include "core/selection/Selection.h"

#include "platform/CheckedMath.h"
#include "platform/Parallel.h"
#include "platform/Require.h"

#include <algorithm>
#include <optional>

namespace qirn {

namespace {

QPainterPath rectanglePath(const IRect& rect) {
    QPainterPath path;
    path.addRect(rect.rectF());
    return path;
}

/// The coverage of a path as tiles.
MaskTiles coverageTiles(const QPainterPath& path, const TileGrid& grid, Antialias antialias) {
    MaskTiles tiles(grid);
    const PathCoverage coverage(path, antialias, grid.width, grid.height);
    const QRect& reach = coverage.reach();
    if (reach.isEmpty()) return tiles;
    const int64_t firstRow = reach.top() / kTileSize, endRow = reach.bottom() / kTileSize + 1;
    concurrentPerform(endRow - firstRow, [&](int64_t i) {
        const int top = std::max(static_cast<int>((firstRow + i) * kTileSize), reach.top());
        const IRect strip{reach.x(), top, reach.width(),
                          std::min(static_cast<int>((firstRow + i + 1) * kTileSize), reach.bottom() + 1) -
                              top};
        const QImage rows = coverage.rows(top, static_cast<int>(strip.h));
        for (int64_t index : grid.tilesIn(strip)) {
            const IRect tile = grid.rectOf(index), part = tile.intersection(strip);
            auto bytes = std::make_unique<MaskTile>();
            for (int64_t y = part.y; y < part.maxY(); ++y) {
                std::copy_n(rows.constScanLine(static_cast<int>(y - top)) + (part.x - strip.x), part.w,
                            bytes->data() + (y - tile.y) * kTileSize + (part.x - tile.x));
            }
            tiles.setBytes(index, std::move(bytes));
        }
    });
    return tiles;
}

uint8_t combined(SelectionOp op, unsigned fresh, unsigned kept) {
    if (op == SelectionOp::add) return static_cast<uint8_t>(std::max(fresh, kept));
    return static_cast<uint8_t>(((op == SelectionOp::subtract ? 255 - fresh : fresh) * kept + 127) / 255);
}

/// Combines two tiles of which one is empty or whole; nothing where both have partial coverage.
std::optional<MaskTiles::Ref> combinedTrivially(SelectionOp op, const MaskTiles::Ref& fresh,
                                                const MaskTiles::Ref& kept) {
    const bool isAllFresh = fresh == MaskTiles::whole(), isAllKept = kept == MaskTiles::whole();
    switch (op) {
    case SelectionOp::add:
        if (!fresh || isAllKept) return kept;
        if (!kept || isAllFresh) return fresh;
        break;
    case SelectionOp::subtract:
        if (!fresh || !kept) return kept;
        if (isAllFresh) return MaskTiles::Ref();
        break;
    default:
        if (!fresh || isAllKept) return fresh;
        if (!kept || isAllFresh) return kept;
        break;
    }
    return std::nullopt;
}

/// Combines the new coverage with the previous selection, in place.
void combine(MaskTiles& fresh, SelectionOp op, const MaskTiles& kept) {
    std::vector<int64_t> edges;
    for (int64_t index = 0; index < fresh.grid().count(); ++index) {
        if (auto tile = combinedTrivially(op, fresh.share(index), kept.share(index)))
            fresh.set(index, std::move(*tile));
        else
            edges.push_back(index);
    }
    concurrentPerform(static_cast<int64_t>(edges.size()), [&](int64_t i) {
        const int64_t index = edges[checkedSize(i)];
        auto bytes = std::make_unique<MaskTile>(*fresh.share(index));
        const uint8_t* old = kept.row(index, 0);
        for (uint8_t& byte : *bytes) byte = combined(op, byte, *old++);
        fresh.setBytes(index, std::move(bytes));
    });
}

} // namespace

Selection::Selection(Key, MaskTiles tiles, const IRect& bounds, QPainterPath outline)
    : tiles_(std::move(tiles)),
      bounds_(bounds),
      outline_(std::move(outline)) {}

SelectionRef Selection::fromTiles(MaskTiles tiles, QPainterPath outline) {
    const IRect bounds = tiles.bounds();
    if (bounds.isEmpty()) return nullptr;
    return std::make_shared<const Selection>(Key{}, std::move(tiles), bounds, std::move(outline));
}

std::vector<uint8_t> Selection::rasterize(const QPainterPath& path, int64_t width, int64_t height,
                                          Antialias antialias) {
    std::vector<uint8_t> mask(checkedSize(width * height));
    fillPathCoverage(path, antialias, mask.data(), width, height);
    return mask;
}

SelectionRef Selection::make(const QPainterPath& path, SelectionOp op, const SelectionRef& existing,
                             int64_t width, int64_t height, Antialias antialias) {
    const bool needsExisting = op == SelectionOp::subtract || op == SelectionOp::intersect;
    if (needsExisting && !existing) return nullptr;
    MaskTiles tiles = coverageTiles(path, TileGrid(width, height), antialias);
    QPainterPath outline;
    if (existing && op != SelectionOp::replace) {
        require(existing->tiles_.grid() == tiles.grid());
        outline = existing->outline_;
        combine(tiles, op, existing->tiles_);
    }
    outline.addPath(path);
    return fromTiles(std::move(tiles), std::move(outline));
}

SelectionRef Selection::fromMask(std::span<const uint8_t> mask, int64_t width, int64_t height) {
    if (width < 1 || height < 1 || static_cast<int64_t>(mask.size()) != width * height) return nullptr;
    MaskTiles tiles(TileGrid(width, height));
    for (int64_t index = 0; index < tiles.grid().count(); ++index) {
        const IRect part = tiles.grid().rectOf(index);
        auto bytes = std::make_unique<MaskTile>();
        for (int64_t y = 0; y < part.h; ++y)
            std::copy_n(mask.data() + (part.y + y) * width + part.x, part.w, bytes->data() + y * kTileSize);
        tiles.setBytes(index, std::move(bytes));
    }
    const IRect bounds = tiles.bounds();
    return fromTiles(std::move(tiles), rectanglePath(bounds));
}

SelectionRef Selection::all(int64_t width, int64_t height) {
    MaskTiles tiles(TileGrid(width, height));
    for (int64_t index = 0; index < tiles.grid().count(); ++index) tiles.set(index, MaskTiles::whole());
    return fromTiles(std::move(tiles), rectanglePath({0, 0, width, height}));
}

uint8_t Selection::value(int64_t x, int64_t y) const {
    const TileGrid& grid = tiles_.grid();
    if (!grid.bounds().contains(x, y)) return 0;
    return row(grid.indexAt(x, y), y % kTileSize)[x % kTileSize];
}

SelectionRef Selection::offsetBy(int64_t dx, int64_t dy) const {
    const TileGrid& grid = tiles_.grid();
    MaskTiles moved(grid);
    const IRect target = IRect{bounds_.x + dx, bounds_.y + dy, bounds_.w, bounds_.h};
    for (int64_t index : grid.tilesIn(target)) {
        const IRect tile = grid.rectOf(index), from{tile.x - dx, tile.y - dy, tile.w, tile.h};
        const std::vector<int64_t> sources = grid.tilesIn(from);
        const bool isInside = from.intersection(grid.bounds()) == from;
        const auto isWhole = [&](int64_t source) { return tiles_.isWhole(source); };
        if (isInside && std::all_of(sources.begin(), sources.end(), isWhole)) {
            moved.set(index, MaskTiles::whole());
            continue;
        }
        auto bytes = std::make_unique<MaskTile>();
        for (int64_t source : sources) {
            const IRect place = grid.rectOf(source), part = place.intersection(from);
            for (int64_t y = part.y; y < part.maxY(); ++y) {
                std::copy_n(row(source, y - place.y) + (part.x - place.x), part.w,
                            bytes->data() + (y - from.y) * kTileSize + (part.x - from.x));
            }
        }
        moved.setBytes(index, std::move(bytes));
    }
    return fromTiles(std::move(moved), outline_.translated(static_cast<double>(dx), static_cast<double>(dy)));
}

SelectionRef Selection::inverted() const {
    MaskTiles inverse(tiles_.grid());
    for (int64_t index = 0; index < inverse.grid().count(); ++index) {
        if (tiles_.isAbsent(index)) {
            inverse.set(index, MaskTiles::whole());
        } else if (!tiles_.isWhole(index)) {
            auto bytes = std::make_unique<MaskTile>(*tiles_.share(index));
            for (uint8_t& byte : *bytes) byte = static_cast<uint8_t>(255 - byte);
            inverse.set(index, std::move(bytes));
        }
    }
    QPainterPath outline = outline_;
    outline.addPath(rectanglePath(inverse.grid().bounds()));
    return fromTiles(std::move(inverse), std::move(outline));
}

} // namespace qirn
