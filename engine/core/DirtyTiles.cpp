#include "core/DirtyTiles.h"

#include "platform/CheckedMath.h"

#include <algorithm>
#include <utility>

namespace qirn {

void DirtyTiles::add(int64_t index, const IRect& part) {
    const auto slot = checkedSize(index);
    if (slot >= places_.size()) places_.resize(slot + 1, -1);
    if (places_[slot] < 0) {
        listed_.push_back({index, part});
        places_[slot] = static_cast<int32_t>(listed_.size()) - 1;
    } else {
        IRect& listed = listed_[checkedSize(places_[slot])].part;
        listed = listed.united(part);
    }
}

void DirtyTiles::clear() {
    listed_.clear();
    places_.clear();
}

std::vector<DirtyTile> DirtyTiles::take() {
    std::vector<DirtyTile> taken = std::exchange(listed_, {});
    for (const DirtyTile& tile : taken) places_[checkedSize(tile.index)] = -1;
    std::sort(taken.begin(), taken.end(),
              [](const DirtyTile& a, const DirtyTile& b) { return a.index < b.index; });
    return taken;
}

} // namespace qirn
