#include "formats/psd/write/PlanePacker.h"

#include "compositing/CompositeInputs.h"
#include "formats/common/StraightPixels.h"
#include "formats/psd/PackBits.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cstring>

namespace qirn::PSDFile {

namespace {

constexpr int64_t kBandRows =
    8; // divides the height of a tile; four planes of so many rows fit into a near cache
constexpr int64_t kBandsInTile = kTileSize / kBandRows;
constexpr std::size_t kChunkBytes = 1 << 20;

// Tiles of the finished picture that are kept at a time; more only where one row of tiles has more.
constexpr int64_t kTilesOfAWorker = 16;
constexpr int64_t kMostTiles = 96; // 24 MiB

constexpr std::size_t kAlpha = 3; // which plane

int64_t bandOf(int64_t y) {
    return y / kBandRows;
}

/// Value of a plane where the picture is transparent.
uint8_t blankOf(std::size_t plane, Matte matte) {
    return matte == Matte::white && plane != kAlpha ? 255 : 0;
}

/// Color stored multiplied by alpha lacks just the light that a white ground gives.
void whiteRow(const uint8_t* pixels, int64_t count, const PlaneRows& rows) {
    for (int64_t x = 0; x < count; ++x, pixels += 4) {
        const int white = 255 - pixels[kAlpha];
        for (std::size_t c = 0; c < kAlpha; ++c)
            rows[c][x] = static_cast<uint8_t>(std::min(pixels[c] + white, 255));
        rows[kAlpha][x] = pixels[kAlpha];
    }
}

} // namespace

uint8_t* PlanePacker::Room::atLeast(std::size_t count) {
    while (open_ < chunks_.size() && chunks_[open_].size - used_ < count) {
        ++open_;
        used_ = 0;
    }
    if (open_ == chunks_.size()) {
        const std::size_t size = std::max(kChunkBytes, 2 * count);
        chunks_.push_back({std::make_unique_for_overwrite<uint8_t[]>(size), size});
    }
    return chunks_[open_].bytes.get() + used_;
}

std::span<const uint8_t> PlanePacker::Room::keep(const uint8_t* end) {
    const uint8_t* const begin = chunks_[open_].bytes.get() + used_;
    used_ += checkedSize(end - begin);
    return {begin, end};
}

void PlanePacker::Room::clear() {
    open_ = used_ = 0;
}

PlanePacker::PlanePacker(const PaintDocument& doc) : doc_(doc), workers_(checkedSize(concurrency())) {}

PackedPlanes PlanePacker::emptyPlanes(const IRect& rect) {
    for (Worker& worker : workers_) worker.room.clear();
    PackedPlanes planes{rect, {}, {}};
    if (rect.isEmpty()) return planes;
    planes.bands.resize(checkedSize(bandOf(rect.maxY() - 1) - bandOf(rect.y) + 1));
    for (auto& counts : planes.counts) counts.resize(checkedSize(rect.h));
    return planes;
}

IRect PlanePacker::bandRect(const PackedPlanes& planes, int64_t band) const {
    const IRect& rect = planes.rect;
    return rect.intersection({rect.x, (bandOf(rect.y) + band) * kBandRows, rect.w, kBandRows});
}

void PlanePacker::packBlank(PackedPlanes& planes, int64_t band, Matte matte, Room& room) {
    const IRect part = bandRect(planes, band);
    PackedBand& packed = planes.bands[checkedSize(band)];
    for (std::size_t plane = kPlanes; plane-- > 0;) {
        const std::vector<uint8_t> blank(checkedSize(part.w), blankOf(plane, matte));
        if (plane < kAlpha && blank[0] == blankOf(plane + 1, matte)) {
            packed[plane] = packed[plane + 1];
        } else {
            uint8_t* const start = room.atLeast(packedRoom(blank.size()) * checkedSize(part.h));
            const auto length = checkedSize(packBits(blank, start) - start);
            for (int64_t y = 1; y < part.h; ++y) std::memcpy(start + checkedSize(y) * length, start, length);
            packed[plane] = room.keep(start + checkedSize(part.h) * length);
        }
        std::fill_n(planes.counts[plane].begin() + (part.y - planes.rect.y), part.h,
                    static_cast<uint16_t>(std::ssize(packed[plane]) / part.h));
    }
}

void PlanePacker::packBand(PackedPlanes& planes, int64_t band, std::span<const uint8_t* const> tiles,
                           Matte matte, Worker& worker) {
    const IRect part = bandRect(planes, band);
    const int64_t firstTile = part.x / kTileSize, lastTile = (part.maxX() - 1) / kTileSize;
    if (std::all_of(tiles.begin() + firstTile, tiles.begin() + lastTile + 1,
                    [](const uint8_t* tile) { return tile == nullptr; }))
        return packBlank(planes, band, matte, worker.room);
    const auto width = checkedSize(part.w);
    const std::size_t planeSize = width * checkedSize(part.h);
    worker.rows.resize(std::max(worker.rows.size(), kPlanes * planeSize));
    for (int64_t y = 0; y < part.h; ++y) {
        for (int64_t left = part.x, right = 0; left < part.maxX(); left = right) {
            const int64_t tile = left / kTileSize;
            right = std::min(part.maxX(), (tile + 1) * kTileSize);
            PlaneRows into;
            for (std::size_t plane = 0; plane < kPlanes; ++plane)
                into[plane] =
                    worker.rows.data() + plane * planeSize + checkedSize(y) * width + (left - part.x);
            if (const uint8_t* pixels = tiles[checkedSize(tile)]) {
                const auto split = matte == Matte::white ? whiteRow : straightRow;
                split(pixels + placeInTile(left, part.y + y), right - left, into);
            } else {
                for (std::size_t plane = 0; plane < kPlanes; ++plane)
                    std::memset(into[plane], blankOf(plane, matte), checkedSize(right - left));
            }
        }
    }
    for (std::size_t plane = 0; plane < kPlanes; ++plane) {
        uint8_t* end = worker.room.atLeast(packedRoom(width) * checkedSize(part.h));
        auto count = planes.counts[plane].begin() + (part.y - planes.rect.y);
        for (std::size_t at = plane * planeSize; at < (plane + 1) * planeSize; at += width) {
            uint8_t* const start = end;
            end = packBits({worker.rows.data() + at, width}, start);
            *count++ = static_cast<uint16_t>(end - start);
        }
        planes.bands[checkedSize(band)][plane] = worker.room.keep(end);
    }
}

PackedPlanes PlanePacker::layer(const Layer& layer, const IRect& rect, const Progress& progress) {
    PackedPlanes planes = emptyPlanes(rect);
    const TileGrid& grid = doc_.grid();
    const auto pack = [&](std::size_t worker, int64_t band) {
        const int64_t firstIndex = bandRect(planes, band).y / kTileSize * grid.cols;
        std::vector<const uint8_t*> tiles(checkedSize(grid.cols));
        for (int64_t col = 0; col < grid.cols; ++col) {
            const Tile* tile = layer.tile(firstIndex + col);
            tiles[checkedSize(col)] = tile ? tile->pixels() : nullptr;
        }
        packBand(planes, band, tiles, Matte::none, workers_[worker]);
    };
    concurrentPerformByWorkers(std::ssize(workers_), std::ssize(planes.bands), pack, progress);
    return planes;
}

PackedPlanes PlanePacker::finishedPicture(Matte matte, const Progress& progress) {
    const TileGrid& grid = doc_.grid();
    const std::vector<CompositeInput> inputs = compositeInputs(doc_, ForDisplay::no);
    PackedPlanes planes = emptyPlanes(grid.bounds());
    const int64_t tilesAtOnce = std::min(kMostTiles, kTilesOfAWorker * std::ssize(workers_));
    const int64_t rowsAtOnce = std::clamp<int64_t>(tilesAtOnce / grid.cols, 1, grid.rows);
    const auto pixels =
        std::make_unique_for_overwrite<uint8_t[]>(checkedSize(rowsAtOnce * grid.cols * kTileBytes));
    std::vector<const uint8_t*> tiles(checkedSize(rowsAtOnce * grid.cols));
    for (int64_t top = 0; top < grid.rows; top += rowsAtOnce) {
        const int64_t rows = std::min(rowsAtOnce, grid.rows - top);
        const Progress ofRows =
            progress.part(static_cast<double>(top) / static_cast<double>(grid.rows),
                          static_cast<double>(top + rows) / static_cast<double>(grid.rows));
        const auto composite = [&](int64_t i) {
            uint8_t* const out = pixels.get() + i * kTileBytes;
            const bool shows = Compositor::compositeTile(top * grid.cols + i, inputs, out);
            tiles[checkedSize(i)] = shows ? out : nullptr;
        };
        concurrentPerform(rows * grid.cols, composite, ofRows.part(0, 0.5));
        const int64_t firstBand = top * kBandsInTile;
        const int64_t lastBand = std::min((top + rows) * kBandsInTile, std::ssize(planes.bands));
        const auto pack = [&](std::size_t worker, int64_t i) {
            const auto rowOfTiles = std::span<const uint8_t* const>(tiles).subspan(
                checkedSize(i / kBandsInTile * grid.cols), checkedSize(grid.cols));
            packBand(planes, firstBand + i, rowOfTiles, matte, workers_[worker]);
        };
        concurrentPerformByWorkers(std::ssize(workers_), lastBand - firstBand, pack, ofRows.part(0.5, 1));
    }
    return planes;
}

} // namespace qirn::PSDFile
