#include "core/HistoryMemory.h"

#include "operations/Selection.h"

namespace qirn {

namespace {

void dropUse(std::unordered_map<const void*, int64_t>& uses, const void* of) {
    const auto found = uses.find(of);
    if (--found->second == 0) uses.erase(found);
}

} // namespace

void HistoryMemory::add(const std::vector<LayerState>& layers, const Selection* selection) {
    for (const LayerState& layer : layers) {
        if (layer.tiles.holdsNothing() || ++arrays_[layer.tiles.identity()] > 1) continue;
        layer.tiles.forEachTile([this](int64_t, const Tile& tile) { ++tiles_[&tile]; });
    }
    if (!selection || ++selections_[selection] > 1) return;
    selection->tiles().forEachOwnTile([this](const MaskTile& tile) { ++masks_[&tile]; });
}

void HistoryMemory::remove(const std::vector<LayerState>& layers, const Selection* selection) {
    for (const LayerState& layer : layers) {
        if (layer.tiles.holdsNothing() || --arrays_[layer.tiles.identity()] > 0) continue;
        arrays_.erase(layer.tiles.identity());
        layer.tiles.forEachTile([this](int64_t, const Tile& tile) { dropUse(tiles_, &tile); });
    }
    if (!selection || --selections_[selection] > 0) return;
    selections_.erase(selection);
    selection->tiles().forEachOwnTile([this](const MaskTile& tile) { dropUse(masks_, &tile); });
}

} // namespace qirn
