#include "core/HistoryMemory.h"

namespace qirn {

void HistoryMemory::add(const std::vector<LayerState>& layers) {
    for (const LayerState& layer : layers) {
        if (layer.tiles.holdsNothing() || ++arrays_[layer.tiles.identity()] > 1) continue;
        layer.tiles.forEachTile([this](int64_t, const Tile& tile) { ++tiles_[&tile]; });
    }
}

void HistoryMemory::remove(const std::vector<LayerState>& layers) {
    for (const LayerState& layer : layers) {
        if (layer.tiles.holdsNothing() || --arrays_[layer.tiles.identity()] > 0) continue;
        arrays_.erase(layer.tiles.identity());
        layer.tiles.forEachTile([this](int64_t, const Tile& tile) {
            const auto found = tiles_.find(&tile);
            if (--found->second == 0) tiles_.erase(found);
        });
    }
}

void HistoryMemory::clear() {
    arrays_.clear();
    tiles_.clear();
}

} // namespace qirn
