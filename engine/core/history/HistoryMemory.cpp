#include "core/history/HistoryMemory.h"

#include "core/selection/Selection.h"

namespace qirn {

namespace {

using Uses = std::unordered_map<const void*, int64_t>;

void dropUse(Uses& uses, const void* of) {
    const auto found = uses.find(of);
    if (--found->second == 0) uses.erase(found);
}

/// Counts one more use of a group and, if it is the first, one more use of each of its pieces. All or nothing.
template <class ForEach>
void addGroup(Uses& groups, const void* group, Uses& pieces, const ForEach& forEach) {
    if (++groups[group] > 1) return;
    int64_t counted = 0;
    try {
        forEach([&](const void* piece) {
            ++pieces[piece];
            ++counted;
        });
    } catch (...) {
        groups.erase(group);
        forEach([&](const void* piece) {
            if (counted-- > 0) dropUse(pieces, piece);
        });
        throw;
    }
}

template <class ForEach>
void removeGroup(Uses& groups, const void* group, Uses& pieces, const ForEach& forEach) {
    if (--groups[group] > 0) return;
    groups.erase(group);
    forEach([&](const void* piece) { dropUse(pieces, piece); });
}

auto piecesOf(const TileArray& tiles) {
    return
        [&tiles](const auto& visit) { tiles.forEachTile([&](int64_t, const Tile& tile) { visit(&tile); }); };
}
auto piecesOf(const Selection& selection) {
    return [&selection](const auto& visit) {
        selection.tiles().forEachOwnTile([&](const MaskTile& tile) { visit(&tile); });
    };
}

} // namespace

void HistoryMemory::add(const TileArray& tiles) {
    if (!tiles.holdsNothing()) addGroup(arrays_, tiles.identity(), tiles_, piecesOf(tiles));
}

void HistoryMemory::remove(const TileArray& tiles) {
    if (!tiles.holdsNothing()) removeGroup(arrays_, tiles.identity(), tiles_, piecesOf(tiles));
}

void HistoryMemory::add(const std::vector<LayerState>& layers, const Selection* selection) {
    std::size_t added = 0;
    try {
        for (; added < layers.size(); ++added) add(layers[added].tiles);
        if (selection) addGroup(selections_, selection, masks_, piecesOf(*selection));
    } catch (...) {
        while (added > 0) remove(layers[--added].tiles);
        throw;
    }
}

void HistoryMemory::remove(const std::vector<LayerState>& layers, const Selection* selection) {
    for (const LayerState& layer : layers) remove(layer.tiles);
    if (selection) removeGroup(selections_, selection, masks_, piecesOf(*selection));
}

} // namespace qirn
