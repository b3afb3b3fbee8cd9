#include "core/selection/MaskTiles.h"

#include "platform/Bytes.h"
#include "platform/CheckedMath.h"

#include <algorithm>

namespace qirn {

namespace {

const MaskTile kNothing{};

bool isAll(uint8_t byte, const uint8_t* bytes, int64_t count) {
    return bytes[0] == byte && allAlike(bytes, count);
}

} // namespace

MaskTiles::MaskTiles(const TileGrid& grid) : grid_(grid), slots_(checkedSize(grid.count())) {}

const MaskTiles::Ref& MaskTiles::whole() {
    static const Ref tile = [] {
        auto whole = std::make_shared<MaskTile>();
        whole->fill(255);
        return whole;
    }();
    return tile;
}

const uint8_t* MaskTiles::row(int64_t index, int64_t y) const {
    const Ref& tile = share(index);
    return (tile ? *tile : kNothing).data() + y * kTileSize;
}

IRect MaskTiles::bounds() const {
    IRect box;
    for (int64_t index = 0; index < grid_.count(); ++index) {
        const IRect part = grid_.rectOf(index);
        if (isAbsent(index) || box.united(part) == box) continue;
        int64_t left = part.w, right = -1, top = -1, bottom = -1;
        for (int64_t y = 0; y < part.h; ++y) {
            const uint8_t* bytes = row(index, y);
            const int64_t first =
                std::find_if(bytes, bytes + part.w, [](uint8_t b) { return b != 0; }) - bytes;
            if (first == part.w) continue;
            int64_t last = part.w - 1;
            while (bytes[last] == 0) --last;
            left = std::min(left, first);
            right = std::max(right, last);
            if (top < 0) top = y;
            bottom = y;
        }
        if (bottom >= 0) box = box.united({part.x + left, part.y + top, right - left + 1, bottom - top + 1});
    }
    return box;
}

void MaskTiles::setBytes(int64_t index, std::unique_ptr<MaskTile> tile) {
    const IRect part = grid_.rectOf(index);
    const auto isAllOver = [&](uint8_t byte) {
        for (int64_t y = 0; y < part.h; ++y) {
            if (!isAll(byte, tile->data() + y * kTileSize, part.w)) return false;
        }
        return true;
    };
    if (isAllOver(0))
        set(index, nullptr);
    else if (isAllOver(255))
        set(index, whole());
    else
        set(index, std::move(tile));
}

} // namespace qirn
