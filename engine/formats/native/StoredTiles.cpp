#include "formats/native/StoredTiles.h"

#include "formats/native/PaintFile.h"
#include "formats/native/TileCodec.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <map>
#include <optional>

namespace qirn {

namespace {

constexpr double kPixelsFound = 0.05; // of the work, about

} // namespace

StoredTiles::StoredTiles(const DocumentSnapshot& snapshot, const Progress& progress) {
    std::vector<const Tile*> tiles;
    for (const LayerState& layer : snapshot.layers) {
        layer.tiles.forEachTile([&](int64_t, const Tile& tile) {
            if (places_.emplace(&tile, tiles.size()).second) tiles.push_back(&tile);
        });
    }
    forms_.resize(tiles.size());
    std::vector<std::size_t> unknown;
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        forms_[i] = tiles[i]->storedForm();
        if (!forms_[i]) unknown.push_back(i);
    }
    encode(tiles, unknown, progress);
}

/// Tiles of a single color, as of fills and papers, are encoded once for each color.
void StoredTiles::encode(const std::vector<const Tile*>& tiles, const std::vector<std::size_t>& unknown,
                         const Progress& progress) {
    std::vector<std::optional<PixelBytes>> pixels(unknown.size());
    const auto findPixel = [&](int64_t i) {
        pixels[checkedSize(i)] = tiles[unknown[checkedSize(i)]]->onlyPixel();
    };
    concurrentPerform(std::ssize(unknown), findPixel, progress.part(0, kPixelsFound));
    std::map<PixelBytes, std::size_t> flat; // the tile that is encoded for a pixel
    std::vector<std::size_t> distinct;
    for (std::size_t i = 0; i < unknown.size(); ++i) {
        if (!pixels[i] || flat.try_emplace(*pixels[i], unknown[i]).second) distinct.push_back(unknown[i]);
    }
    std::vector<TileEncoder> encoders(checkedSize(concurrency()));
    const auto encodeOne = [&](std::size_t worker, int64_t i) {
        const std::size_t which = distinct[checkedSize(i)];
        forms_[which] = encoders[worker].encode(*tiles[which]);
    };
    concurrentPerformByWorkers(std::ssize(encoders), std::ssize(distinct), encodeOne,
                               progress.part(kPixelsFound, 1));
    for (std::size_t i = 0; i < unknown.size(); ++i) {
        const std::size_t which = unknown[i];
        if (pixels[i]) forms_[which] = forms_[flat.at(*pixels[i])];
        if (tiles[which]->isFrozen()) tiles[which]->remember(forms_[which]);
    }
}

} // namespace qirn
