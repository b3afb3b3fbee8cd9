#include "core/Layer.h"

#include "core/PaintEngine.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace qirn {

using PaintEngine::fnvStep;

namespace {

/// Of a tile's part of the canvas; the zero rectangle where it has no alpha.
IRect alphaBounds(const Tile& tile, const IRect& part) {
    int64_t left = part.w, right = -1, top = part.h, bottom = -1;
    for (int64_t y = 0; y < part.h; ++y) {
        const uint8_t* alpha = tile.row(y) + 3;
        int64_t first = 0;
        while (first < part.w && alpha[first * 4] == 0) ++first;
        if (first == part.w) continue;
        int64_t last = part.w - 1;
        while (alpha[last * 4] == 0) --last;
        left = std::min(left, first);
        right = std::max(right, last);
        top = std::min(top, y);
        bottom = y;
    }
    if (bottom < 0) return {};
    return {part.x + left, part.y + top, right - left + 1, bottom - top + 1};
}

} // namespace

Layer::Layer(QString layerName, const TileGrid& grid, QUuid layerId)
    : Layer(LayerSettings{.name = std::move(layerName)}, grid, layerId) {}

Layer::Layer(const LayerSettings& settings, const TileGrid& grid, QUuid layerId)
    : LayerSettings(settings),
      id(layerId),
      grid_(grid),
      tiles_(grid.count()) {}

Layer::Layer(const LayerState& state, const TileGrid& grid)
    : LayerSettings(state),
      id(state.id),
      grid_(grid),
      tiles_(state.tiles) {
    require(tiles_.count() == grid.count());
}

PixelBytes Layer::pixel(int64_t x, int64_t y) const {
    PixelBytes out{};
    if (x < 0 || y < 0 || x >= grid_.width || y >= grid_.height) return out;
    const Tile* tile = tiles_.at(grid_.indexAt(x, y));
    if (tile) std::memcpy(out.data(), tile->pixels() + placeInTile(x, y), 4);
    return out;
}

bool Layer::isEmpty() const {
    bool empty = true;
    tiles_.forEachTile([&](int64_t, const Tile& tile) { empty = empty && tile.isEmpty(); });
    return empty;
}

std::optional<IRect> Layer::contentBounds() const {
    std::vector<int64_t> indices;
    tiles_.forEachTile([&](int64_t index, const Tile&) { indices.push_back(index); });
    std::vector<IRect> boxes(indices.size());
    concurrentPerform(std::ssize(indices), [&](int64_t i) {
        const auto place = checkedSize(i);
        boxes[place] = alphaBounds(*tiles_.at(indices[place]), grid_.rectOf(indices[place]));
    });
    IRect bounds;
    for (const IRect& box : boxes) bounds = bounds.united(box);
    if (bounds.isEmpty()) return std::nullopt;
    return bounds;
}

std::shared_ptr<RGBABuffer> Layer::toBuffer() const {
    auto buffer = std::make_shared<RGBABuffer>(grid_.width, grid_.height);
    tiles_.forEachTile([&](int64_t index, const Tile& tile) {
        const IRect part = grid_.rectOf(index);
        for (int64_t y = 0; y < part.h; ++y) {
            std::memcpy(buffer->pixels(part.x, part.y + y), tile.row(y), checkedSize(part.w) * 4);
        }
    });
    return buffer;
}

uint64_t Layer::fingerprint() const {
    uint64_t h = PaintEngine::fnvStart;
    tiles_.forEachTile([&](int64_t index, const Tile& tile) {
        if (tile.isEmpty()) return;
        h = fnvStep(fnvStep(h, static_cast<uint64_t>(index)), PaintEngine::fnv(tile.bytes()));
    });
    h = fnvStep(h, static_cast<uint64_t>(std::llround(opacity * 1000)));
    h = fnvStep(h, static_cast<uint64_t>(blendMode));
    h = fnvStep(h, isVisible ? 1 : 2);
    h = fnvStep(h, isLocked ? 3 : 4);
    h = fnvStep(h, alphaLocked ? 5 : 6);
    h = fnvStep(h, isClipping ? 7 : 8);
    for (char byte : name.toUtf8()) h = fnvStep(h, static_cast<uint8_t>(byte));
    return h;
}

std::shared_ptr<RGBABuffer> Layer::thumbnail(int64_t maxSide) const {
    const double scale =
        static_cast<double>(maxSide) / static_cast<double>(std::max(grid_.width, grid_.height));
    const int64_t tw = std::max<int64_t>(1, static_cast<int64_t>(scale * static_cast<double>(grid_.width)));
    const int64_t th = std::max<int64_t>(1, static_cast<int64_t>(scale * static_cast<double>(grid_.height)));
    auto buffer = std::make_shared<RGBABuffer>(tw, th);
    if (tiles_.holdsNothing()) return buffer;
    for (int64_t ty = 0; ty < th; ++ty) {
        const auto sy =
            std::min(grid_.height - 1, static_cast<int64_t>((static_cast<double>(ty) + 0.5) / scale));
        for (int64_t tx = 0; tx < tw; ++tx) {
            const auto sx =
                std::min(grid_.width - 1, static_cast<int64_t>((static_cast<double>(tx) + 0.5) / scale));
            const PixelBytes bytes = pixel(sx, sy);
            std::memcpy(buffer->pixels(tx, ty), bytes.data(), 4);
        }
    }
    return buffer;
}

Tile& Layer::writableTile(int64_t index) {
    Tile* tile = tiles_.mutableAt(index);
    if (tile && !tile->isFrozen()) return *tile;
    auto fresh = tile ? std::make_shared<Tile>(*tile) : std::make_shared<Tile>();
    Tile& result = *fresh;
    tiles_.set(index, std::move(fresh));
    return result;
}

void Layer::load(const RGBABuffer& buffer) {
    require(buffer.width() == grid_.width && buffer.height() == grid_.height);
    TileArray loaded(grid_.count());
    for (int64_t index = 0; index < grid_.count(); ++index) {
        const IRect part = grid_.rectOf(index);
        int64_t y = 0;
        while (y < part.h && !hasAlpha(buffer.pixels(part.x, part.y + y), part.w)) ++y;
        if (y == part.h) continue;
        auto tile = std::make_shared<Tile>();
        for (y = 0; y < part.h; ++y) {
            std::memcpy(tile->writableRow(y), buffer.pixels(part.x, part.y + y), checkedSize(part.w) * 4);
        }
        loaded.set(index, std::move(tile));
    }
    tiles_ = std::move(loaded);
}

void Layer::shareTilesOf(Layer& other) {
    require(grid_ == other.grid_);
    other.freezeTiles();
    tiles_ = other.tiles_;
}

LayerState Layer::captureState() {
    freezeTiles();
    return {settings(), id, tiles_};
}

} // namespace qirn
