#include "formats/psd/read/LayerTiles.h"

#include "core/PaintColor.h"
#include "formats/common/ByteReader.h"
#include "formats/common/FlatTiles.h"
#include "formats/common/StraightPixels.h"
#include "formats/psd/PackBits.h"
#include "platform/Bytes.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"
#include "platform/Require.h"

#include <algorithm>
#include <atomic>
#include <cstring>

namespace qirn::PSDFile {

namespace {

int64_t countAt(const StoredPlane& plane, int64_t row) {
    const uint8_t* count = plane.counts.data() + 2 * row;
    return count[0] << 8 | count[1];
}

/// Goes through the rows of a plane one after the other.
class RowWalk {
public:
    /// From a row on; `offset` is where its bytes begin.
    RowWalk(const StoredPlane& plane, int64_t row, int64_t offset)
        : plane_(plane),
          row_(row),
          offset_(offset) {}

    bool isPacked() const { return !plane_.counts.empty(); }
    std::span<const uint8_t> next() {
        const int64_t length = isPacked() ? countAt(plane_, row_) : plane_.w;
        const auto bytes = plane_.rows.subspan(checkedSize(offset_), checkedSize(length));
        ++row_;
        offset_ += length;
        return bytes;
    }
    int64_t offset() const { return offset_; }

private:
    const StoredPlane& plane_;
    int64_t row_;
    int64_t offset_;
};

/// Rows of a plane that are not shown; they are checked all the same.
struct Check {
    StoredPlane plane;
    int64_t firstRow, endRow;
    int64_t offset;

    void run() const {
        RowWalk walk(plane, firstRow, offset);
        for (int64_t row = firstRow; row < endRow; ++row) unpackPart(walk.next(), plane.w, 0, {});
    }
};

/// A part of a tile in a single color.
struct FlatTile {
    int64_t slot;
    IRect part; // in the tile
    PixelBytes pixel;
};

/// The premultiplied pixel that all pixels of a part of a row have; nothing if they differ.
std::optional<PixelBytes> flatPixel(const ConstPlaneRows& rows, int64_t count) {
    if (!allAlike(rows[3], count)) return std::nullopt;
    const uint8_t alpha = rows[3][0];
    if (alpha == 0) return PixelBytes{}; // whatever the colors
    for (std::size_t plane = 0; plane < 3; ++plane) {
        if (!allAlike(rows[plane], count)) return std::nullopt;
    }
    return PixelBytes{premultiplied(rows[0][0], alpha), premultiplied(rows[1][0], alpha),
                      premultiplied(rows[2][0], alpha), alpha};
}

/// A tile under construction, row by row from the top of its part.
class GrowingTile {
public:
    GrowingTile(int64_t slot, const IRect& part) : flat_{slot, part, {}} {}

    const IRect& part() const { return flat_.part; }
    bool isFlat() const { return !tile_; }

    void addFlatRow(const PixelBytes& pixel) {
        if (rows_ == 0) flat_.pixel = pixel;
        if (isFlat() && pixel != flat_.pixel) makeTile();
        if (tile_) fillPart(*tile_, {part().x, part().y + rows_, part().w, 1}, pixel);
        ++rows_;
    }
    void addRow(const ConstPlaneRows& rows) {
        if (isFlat()) makeTile();
        premultiplyRow(rows, part().w, tile_->writableRow(part().y + rows_) + part().x * 4);
        ++rows_;
    }

    void finish(std::vector<PlacedTile>& tiles, std::vector<FlatTile>& flats) {
        if (tile_) {
            tiles.emplace_back(flat_.slot, std::move(tile_));
        } else if (flat_.pixel != PixelBytes{}) {
            flats.push_back(flat_);
        }
    }

private:
    void makeTile() {
        tile_ = std::make_shared<Tile>();
        fillPart(*tile_, {part().x, part().y, part().w, rows_}, flat_.pixel);
    }

    FlatTile flat_; // the color of all rows so far
    int64_t rows_ = 0;
    TileRef tile_; // null as long as they have one
};

/// The rows of a picture that lie in one row of tiles.
struct Band {
    std::size_t picture;
    IRect visible;                  // in the canvas, not empty
    std::array<int64_t, 4> offsets; // of each plane's first row
    std::vector<PlacedTile> tiles;
    std::vector<FlatTile> flats;
};

/// The visible pixels of a band's rows, one row after the other, all four planes side by side.
class BandRows {
public:
    BandRows(const Band& band, const StoredPicture& picture)
        : picture_(picture),
          width_(checkedSize(band.visible.w)),
          skipped_(band.visible.x - picture.rect.x) {
        for (std::size_t plane = 0; plane < 4; ++plane) {
            // The row of a missing plane stays as it is here.
            unpacked_[plane].assign(width_, plane == 3 && !picture.planes[3] ? 255 : 0);
            if (picture.planes[plane])
                walks_[plane].emplace(*picture.planes[plane], band.visible.y - picture.rect.y,
                                      band.offsets[plane]);
        }
    }

    /// The next row; good until the next call.
    ConstPlaneRows next() {
        ConstPlaneRows rows;
        for (std::size_t plane = 0; plane < 4; ++plane) {
            std::vector<uint8_t>& row = unpacked_[plane];
            rows[plane] = row.data();
            if (!walks_[plane]) continue;
            const std::span<const uint8_t> bytes = walks_[plane]->next();
            if (walks_[plane]->isPacked()) {
                const std::size_t reach = unpackPart(bytes, picture_.planes[plane]->w, skipped_, row);
                if (reach < reach_[plane]) std::memset(row.data() + reach, 0, reach_[plane] - reach);
                reach_[plane] = reach;
            } else {
                rows[plane] = bytes.data() + skipped_;
                reach_[plane] = width_;
            }
        }
        return rows;
    }
    /// From this pixel on the row is `pixelBeyond`.
    int64_t end() const { return static_cast<int64_t>(*std::max_element(reach_.begin(), reach_.end())); }
    PixelBytes pixelBeyond() const { return {0, 0, 0, static_cast<uint8_t>(picture_.planes[3] ? 0 : 255)}; }

private:
    const StoredPicture& picture_;
    const std::size_t width_;
    const int64_t skipped_; // pixels of each row that lie left of the canvas
    std::array<std::vector<uint8_t>, 4> unpacked_;
    std::array<std::size_t, 4> reach_{}; // bytes of the row that were packed; behind them it is 0
    std::array<std::optional<RowWalk>, 4> walks_;
};

void decodeBand(Band& band, const StoredPicture& picture, const TileGrid& grid) {
    require(band.visible.w > 0); // also spares a warning of g++ 14
    std::vector<GrowingTile> growing;
    for (const int64_t slot : grid.tilesIn(band.visible)) {
        const IRect place = grid.rectOf(slot), part = place.intersection(band.visible);
        growing.emplace_back(slot, IRect{part.x - place.x, part.y - place.y, part.w, part.h});
    }
    BandRows bandRows(band, picture);
    for (int64_t y = 0; y < band.visible.h; ++y) {
        const ConstPlaneRows rows = bandRows.next();
        int64_t x = 0;
        for (GrowingTile& tile : growing) {
            const int64_t count = tile.part().w;
            const ConstPlaneRows tileRows{rows[0] + x, rows[1] + x, rows[2] + x, rows[3] + x};
            if (x >= bandRows.end()) {
                tile.addFlatRow(bandRows.pixelBeyond());
            } else if (const auto pixel = tile.isFlat() ? flatPixel(tileRows, count) : std::nullopt) {
                tile.addFlatRow(*pixel);
            } else {
                tile.addRow(tileRows);
            }
            x += count;
        }
    }
    for (GrowingTile& tile : growing) tile.finish(band.tiles, band.flats);
}

/// The work for all pictures, cut into tasks that do not depend on each other.
struct Work {
    std::vector<Band> bands;
    std::vector<Check> checks;

    void add(const StoredPlane& plane) {
        if (!plane.counts.empty())
            checks.push_back({plane, 0, static_cast<int64_t>(plane.counts.size() / 2), 0});
    }

    void add(std::size_t index, const StoredPicture& picture, const TileGrid& grid) {
        const IRect& rect = picture.rect;
        const IRect visible = rect.intersection(grid.bounds());
        std::array<std::optional<RowWalk>, 4> walks;
        for (std::size_t plane = 0; plane < 4; ++plane) {
            if (picture.planes[plane]) walks[plane].emplace(*picture.planes[plane], 0, 0);
        }
        for (int64_t y = rect.y; y < rect.maxY();) {
            const bool isVisible = !visible.isEmpty() && y >= visible.y && y < visible.maxY();
            int64_t end = rect.maxY();
            if (isVisible) {
                end = std::min((y / kTileSize + 1) * kTileSize, visible.maxY());
            } else if (!visible.isEmpty() && y < visible.y) {
                end = visible.y;
            }
            Band band{index, {visible.x, y, visible.w, end - y}, {}, {}, {}};
            for (std::size_t plane = 0; plane < 4; ++plane) {
                if (!walks[plane]) continue;
                band.offsets[plane] = walks[plane]->offset();
                if (walks[plane]->isPacked()) {
                    if (!isVisible)
                        checks.push_back(
                            {*picture.planes[plane], y - rect.y, end - rect.y, band.offsets[plane]});
                    for (int64_t row = y; row < end; ++row) walks[plane]->next();
                } else if (end < rect.maxY()) {
                    walks[plane].emplace(*picture.planes[plane], end - rect.y,
                                         (end - rect.y) * picture.planes[plane]->w);
                }
            }
            if (isVisible) bands.push_back(std::move(band));
            y = end;
        }
    }
};

} // namespace

std::vector<std::vector<PlacedTile>> decodePictures(std::span<const StoredPicture> pictures,
                                                    std::span<const StoredPlane> unused, const TileGrid& grid,
                                                    const Progress& progress) {
    Work work;
    for (const StoredPlane& plane : unused) work.add(plane);
    for (std::size_t i = 0; i < pictures.size(); ++i) work.add(i, pictures[i], grid);

    std::atomic<bool> endsEarly = false;
    const auto bandCount = static_cast<int64_t>(work.bands.size());
    const auto doTask = [&](int64_t i) {
        if (endsEarly) return;
        try {
            if (i < bandCount) {
                Band& band = work.bands[checkedSize(i)];
                decodeBand(band, pictures[band.picture], grid);
            } else {
                work.checks[checkedSize(i - bandCount)].run();
            }
        } catch (const BEReader::Short&) {
            endsEarly = true;
        }
    };
    concurrentPerform(bandCount + static_cast<int64_t>(work.checks.size()), doTask, progress);
    if (endsEarly) throw BEReader::Short();

    std::vector<std::vector<PlacedTile>> tiles(pictures.size());
    FlatTiles flats;
    for (Band& band : work.bands) {
        auto& placed = tiles[band.picture];
        std::move(band.tiles.begin(), band.tiles.end(), std::back_inserter(placed));
        for (const FlatTile& flat : band.flats)
            placed.emplace_back(flat.slot, flats.tile(flat.part, flat.pixel));
    }
    return tiles;
}

} // namespace qirn::PSDFile
