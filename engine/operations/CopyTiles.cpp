#include "operations/CopyTiles.h"

#include "core/MappedRect.h"
#include "operations/TileJobs.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace qirn {

void copyTiles(Layer& from, Layer& to, const PixelMap& map, const Progress& progress) {
    const TileGrid &old = from.grid(), &grid = to.grid();
    const PixelMap back = map.inverse();
    const bool tilesOnTiles = map.isMove() && map.x0 % kTileSize == 0 && map.y0 % kTileSize == 0;
    // Up to four source tiles, the rectangle that is read from them, and its place in the new tile.
    using Key = std::tuple<std::array<const Tile*, 4>, std::array<int64_t, 6>>;
    TileJobs<Key> jobs;
    for (int64_t slot : grid.tilesIn(mapped(back, old.bounds()))) {
        const IRect part = grid.rectOf(slot);
        const IRect source = mapped(map, part).intersection(old.bounds());
        const std::vector<int64_t> tiles = old.tilesIn(source);
        std::array<const Tile*, 4> held{};
        for (std::size_t i = 0; i < tiles.size(); ++i) held[i] = from.tile(tiles[i]);
        if (std::all_of(held.begin(), held.end(), [](const Tile* tile) { return !tile; })) continue;
        if (tilesOnTiles && source.w == kTileSize && source.h == kTileSize) {
            const TileRef tile = from.tiles().share(tiles[0]);
            if (tile->isEmpty()) continue;
            tile->freeze();
            to.setTile(slot, tile);
            continue;
        }
        const IRect target = mapped(back, source);
        const bool all = target.w == kTileSize && target.h == kTileSize &&
                         std::all_of(held.begin(), held.begin() + std::ssize(tiles),
                                     [](const Tile* tile) { return tile != nullptr; });
        jobs.add({held,
                  {source.x % kTileSize, source.y % kTileSize, source.w, source.h, target.x % kTileSize,
                   target.y % kTileSize}},
                 slot, all ? TileJobs<Key>::DrawsAll::yes : TileJobs<Key>::DrawsAll::no);
    }
    const auto draw = [&](const TileJob& job, uint8_t* pixels) {
        const IRect slot = grid.rectOf(job.first);
        for (int64_t index : old.tilesIn(mapped(map, slot))) {
            const Tile* tile = from.tile(index);
            if (!tile) continue;
            const IRect place = old.rectOf(index);
            const IRect target = mapped(back, place).intersection(slot);
            const int64_t sx = map.sourceX(target.x, target.y) - place.x;
            const int64_t sy = map.sourceY(target.x, target.y) - place.y;
            map.copy(tile->pixels() + placeInTile(sx, sy), kTileRowBytes,
                     pixels + placeInTile(target.x, target.y), kTileRowBytes, target.w, target.h);
        }
    };
    jobs.run(to, draw, progress);
}

} // namespace qirn
