#include "operations/TileParts.h"

#include "operations/Selection.h"
#include "platform/Parallel.h"

#include <algorithm>

namespace qirn {

Extent extentOf(const Selection* selection, const IRect& part) {
    if (!selection) return Extent::everything;
    const uint8_t first = selection->row(part.y)[part.x];
    if (first != 0 && first != 255) return Extent::some;
    for (int64_t y = part.y; y < part.maxY(); ++y) {
        const uint8_t* row = selection->row(y) + part.x;
        if (!std::all_of(row, row + part.w, [first](uint8_t byte) { return byte == first; }))
            return Extent::some;
    }
    return first == 0 ? Extent::nothing : Extent::everything;
}

void TileParts::take(int64_t index, const IRect& part) {
    if (layer_.alphaLocked && !layer_.tile(index)) return;
    uint8_t* pixels = layer_.writableTile(index).writablePixels();
    parts_.push_back({index, layer_.grid().rectOf(index), part, pixels});
}

void TileParts::run(const std::function<void(const TilePart& part, int64_t y)>& paint) const {
    concurrentPerform(static_cast<int64_t>(parts_.size()), [&](int64_t i) {
        const TilePart& part = parts_[static_cast<std::size_t>(i)];
        for (int64_t y = part.part.y; y < part.part.maxY(); ++y) paint(part, y);
    });
}

} // namespace qirn
