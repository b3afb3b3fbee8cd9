#include "formats/PSDPacking.h"

#include "compositing/CompositeInputs.h"
#include "formats/PackBits.h"
#include "formats/StraightPixels.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <numeric>

namespace qirn::PSDFile {

namespace {

constexpr int64_t kTilesAtOnce =
    96; // of the finished picture, 24 MiB; more only where one row of tiles has more

constexpr int64_t kBandsInTile = kTileSize / kBandRows;

int64_t bandOf(int64_t y) {
    return y / kBandRows;
}

} // namespace

PackedPlanes::PackedPlanes(const IRect& rect) : rect_(rect) {
    if (rect.isEmpty()) return;
    bands_.resize(static_cast<std::size_t>(bandOf(rect.maxY() - 1) - bandOf(rect.y) + 1));
    for (auto& counts : counts_) counts.resize(static_cast<std::size_t>(rect.h));
}

IRect PackedPlanes::bandRect(int64_t band) const {
    return rect_.intersection({rect_.x, (bandOf(rect_.y) + band) * kBandRows, rect_.w, kBandRows});
}

int64_t PackedPlanes::planeBytes(int plane) const {
    const auto& rows = counts(plane);
    return std::accumulate(rows.begin(), rows.end(), int64_t{0});
}

int64_t PackedPlanes::packTransparent(int64_t band) {
    const IRect part = bandRect(band);
    const std::vector<uint8_t> zeros(static_cast<std::size_t>(part.w));
    std::vector<uint8_t> row(packedRoom(zeros.size()));
    row.resize(static_cast<std::size_t>(packBits(zeros, row.data()) - row.data()));
    for (std::size_t plane = 0; plane < kPlanes; ++plane) {
        std::fill_n(counts_[plane].begin() + (part.y - rect_.y), part.h, static_cast<uint16_t>(row.size()));
        auto& bytes = bands_[static_cast<std::size_t>(band)].bytes[plane];
        bytes.reserve(row.size() * static_cast<std::size_t>(part.h));
        for (int64_t y = 0; y < part.h; ++y) bytes.insert(bytes.end(), row.begin(), row.end());
    }
    return kPlanes * part.h * static_cast<int64_t>(row.size());
}

int64_t PackedPlanes::packBand(int64_t band, std::span<const uint8_t* const> tiles) {
    const IRect part = bandRect(band);
    const int64_t firstTile = part.x / kTileSize, lastTile = (part.maxX() - 1) / kTileSize;
    const auto needed = tiles.subspan(static_cast<std::size_t>(firstTile),
                                      static_cast<std::size_t>(lastTile - firstTile + 1));
    if (std::all_of(needed.begin(), needed.end(), [](const uint8_t* tile) { return tile == nullptr; }))
        return packTransparent(band);

    const auto width = static_cast<std::size_t>(part.w);
    const std::size_t planeRoom = packedRoom(width) * static_cast<std::size_t>(part.h);
    const auto room = std::make_unique_for_overwrite<uint8_t[]>(kPlanes * planeRoom);
    std::vector<uint8_t> rows(kPlanes * width); // absent tiles leave their zeros
    std::array<uint8_t*, kPlanes> ends{};
    for (std::size_t plane = 0; plane < kPlanes; ++plane) ends[plane] = room.get() + plane * planeRoom;

    for (int64_t y = part.y; y < part.maxY(); ++y) {
        for (int64_t tile = firstTile; tile <= lastTile; ++tile) {
            const uint8_t* pixels = tiles[static_cast<std::size_t>(tile)];
            if (!pixels) continue;
            const int64_t left = std::max(part.x, tile * kTileSize);
            const int64_t right = std::min(part.maxX(), (tile + 1) * kTileSize);
            PlaneRows into;
            for (std::size_t plane = 0; plane < kPlanes; ++plane)
                into[plane] = rows.data() + plane * width + (left - part.x);
            straightRow(pixels + (y % kTileSize) * kTileRowBytes + (left % kTileSize) * 4, right - left,
                        into);
        }
        for (std::size_t plane = 0; plane < kPlanes; ++plane) {
            uint8_t* const start = ends[plane];
            ends[plane] = packBits({rows.data() + plane * width, width}, start);
            counts_[plane][static_cast<std::size_t>(y - rect_.y)] =
                static_cast<uint16_t>(ends[plane] - start);
        }
    }

    int64_t total = 0;
    for (std::size_t plane = 0; plane < kPlanes; ++plane) {
        auto& bytes = bands_[static_cast<std::size_t>(band)].bytes[plane];
        bytes.assign(room.get() + plane * planeRoom, ends[plane]);
        total += static_cast<int64_t>(bytes.size());
    }
    return total;
}

std::vector<PackedPlanes> packLayers(const PaintDocument& doc, int64_t most) {
    std::vector<IRect> bounds(static_cast<std::size_t>(doc.layerCount()));
    concurrentPerform(doc.layerCount(), [&](int64_t i) {
        bounds[static_cast<std::size_t>(i)] = doc.layer(i).contentBounds().value_or(IRect());
    });
    std::vector<PackedPlanes> packed(bounds.begin(), bounds.end());

    struct Job {
        int64_t layer, band;
    };
    std::vector<Job> jobs;
    for (int64_t layer = 0; layer < doc.layerCount(); ++layer) {
        for (int64_t band = 0; band < packed[static_cast<std::size_t>(layer)].bandCount(); ++band)
            jobs.push_back({layer, band});
    }
    std::atomic<int64_t> total = 0;
    concurrentPerform(static_cast<int64_t>(jobs.size()), [&](int64_t i) {
        if (total > most) return;
        const auto [layer, band] = jobs[static_cast<std::size_t>(i)];
        PackedPlanes& planes = packed[static_cast<std::size_t>(layer)];
        const TileGrid& grid = doc.grid();
        const int64_t firstIndex = planes.bandRect(band).y / kTileSize * grid.cols;
        std::vector<const uint8_t*> tiles(static_cast<std::size_t>(grid.cols));
        for (int64_t col = 0; col < grid.cols; ++col) {
            const Tile* tile = doc.layer(layer).tile(firstIndex + col);
            tiles[static_cast<std::size_t>(col)] = tile ? tile->pixels() : nullptr;
        }
        total += planes.packBand(band, tiles);
    });
    return packed;
}

PackedPlanes packFinishedPicture(const PaintDocument& doc) {
    const TileGrid& grid = doc.grid();
    const std::vector<CompositeInput> inputs = compositeInputs(doc, ForDisplay::no);
    PackedPlanes packed(grid.bounds());
    const int64_t rowsAtOnce = std::clamp<int64_t>(kTilesAtOnce / grid.cols, 1, grid.rows);
    const auto pixels = std::make_unique_for_overwrite<uint8_t[]>(
        static_cast<std::size_t>(rowsAtOnce * grid.cols * kTileBytes));
    std::vector<const uint8_t*> tiles(static_cast<std::size_t>(rowsAtOnce * grid.cols));
    for (int64_t top = 0; top < grid.rows; top += rowsAtOnce) {
        const int64_t rows = std::min(rowsAtOnce, grid.rows - top);
        concurrentPerform(rows * grid.cols, [&](int64_t i) {
            uint8_t* const out = pixels.get() + i * kTileBytes;
            const bool shows = Compositor::compositeTile(top * grid.cols + i, inputs, out);
            tiles[static_cast<std::size_t>(i)] = shows ? out : nullptr;
        });
        const int64_t firstBand = top * kBandsInTile;
        const int64_t lastBand = std::min((top + rows) * kBandsInTile, packed.bandCount());
        concurrentPerform(lastBand - firstBand, [&](int64_t i) {
            const int64_t row = i / kBandsInTile;
            packed.packBand(firstBand + i, std::span<const uint8_t* const>(tiles).subspan(
                                               static_cast<std::size_t>(row * grid.cols),
                                               static_cast<std::size_t>(grid.cols)));
        });
    }
    return packed;
}

} // namespace qirn::PSDFile
