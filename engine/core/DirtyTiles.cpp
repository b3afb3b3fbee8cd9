#include "core/DirtyTiles.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace qirn {

void DirtyTiles::add(int64_t index) {
    const auto place = static_cast<std::size_t>(index);
    if (place >= present_.size()) present_.resize(place + 1);
    if (present_[place]) return;
    present_[place] = true;
    listed_.push_back(index);
}

void DirtyTiles::setAll(int64_t count) {
    listed_.resize(static_cast<std::size_t>(count));
    std::iota(listed_.begin(), listed_.end(), 0);
    present_.assign(listed_.size(), true);
}

std::vector<int64_t> DirtyTiles::take() {
    std::vector<int64_t> taken = std::exchange(listed_, {});
    for (int64_t index : taken) present_[static_cast<std::size_t>(index)] = false;
    std::sort(taken.begin(), taken.end());
    return taken;
}

} // namespace qirn
