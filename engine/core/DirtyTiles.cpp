#include "core/DirtyTiles.h"

#include <algorithm>
#include <utility>

namespace qirn {

void DirtyTiles::add(int64_t index, const IRect& part) {
    const auto slot = static_cast<std::size_t>(index);
    if (slot >= places_.size()) places_.resize(slot + 1, -1);
    if (places_[slot] < 0) {
        listed_.push_back({index, part});
        places_[slot] = static_cast<int32_t>(listed_.size()) - 1;
    } else {
        IRect& listed = listed_[static_cast<std::size_t>(places_[slot])].part;
        listed = listed.united(part);
    }
}

void DirtyTiles::clear() {
    listed_.clear();
    places_.clear();
}

std::vector<DirtyTile> DirtyTiles::take() {
    std::vector<DirtyTile> taken = std::exchange(listed_, {});
    for (const DirtyTile& tile : taken) places_[static_cast<std::size_t>(tile.index)] = -1;
    std::sort(taken.begin(), taken.end(),
              [](const DirtyTile& a, const DirtyTile& b) { return a.index < b.index; });
    return taken;
}

} // namespace qirn
