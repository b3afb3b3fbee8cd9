#include "formats/native/PaintPreview.h"

#include "compositing/CompositeInputs.h"
#include "formats/common/AreaReducer.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>
#include <vector>

namespace qirn {

namespace {

constexpr std::size_t kGroupsAtOnce = 64; // bounds the memory of reduced parts that are not added yet

/// Key of a tile of the finished picture: the layers that have a tile there, and these tiles.
using Ingredients = std::vector<std::pair<std::size_t, const Tile*>>;
/// Slots that look the same, since all layers have the same tiles there.
using Group = std::vector<int64_t>;

std::vector<Group> groupsOf(const DocumentSnapshot& snapshot) {
    std::map<int64_t, Ingredients> slots; // only those where some layer has a tile
    for (std::size_t l = 0; l < snapshot.layers.size(); ++l) {
        snapshot.layers[l].tiles.forEachTile(
            [&](int64_t index, const Tile& tile) { slots[index].emplace_back(l, &tile); });
    }
    std::map<Ingredients, Group> groups;
    for (auto& [index, ingredients] : slots) groups[std::move(ingredients)].push_back(index);
    std::vector<Group> result;
    for (auto& [ingredients, group] : groups) result.push_back(std::move(group));
    return result;
}

} // namespace

QImage previewOf(const DocumentSnapshot& snapshot, int64_t maxSide, const Progress& progress) {
    const TileGrid& grid = snapshot.grid;
    const QSize size = reducedSize(grid.width, grid.height, maxSide);
    AreaReducer reducer(grid.width, grid.height, size.width(), size.height());
    const std::vector<CompositeInput> inputs = compositeInputs(snapshot.layers);
    const std::vector<Group> groups = groupsOf(snapshot);
    for (std::size_t start = 0; start < groups.size(); start += kGroupsAtOnce) {
        const std::size_t count = std::min(kGroupsAtOnce, groups.size() - start);
        std::vector<std::vector<AreaReducer::Patch>> patches(count);
        concurrentPerform(static_cast<int64_t>(count), [&](int64_t i) {
            const Group& group = groups[start + checkedSize(i)];
            const auto tile = std::make_unique_for_overwrite<uint8_t[]>(kTileBytes);
            if (!Compositor::compositeTile(group.front(), inputs, tile.get())) return;
            const bool uniform = allAlike(tile.get(), kTilePixels, 4);
            PixelBytes pixel;
            std::memcpy(pixel.data(), tile.get(), pixel.size());
            for (int64_t index : group) {
                const IRect part = grid.rectOf(index);
                patches[checkedSize(i)].push_back(uniform ? reducer.reduceUniform(part, pixel)
                                                          : reducer.reduce(part, tile.get(), kTileRowBytes));
            }
        });
        for (const auto& ofGroup : patches) {
            for (const AreaReducer::Patch& patch : ofGroup) reducer.add(patch);
        }
        progress.done(static_cast<int64_t>(start + count), std::ssize(groups));
    }
    return reducer.result()->makeImage();
}

} // namespace qirn
