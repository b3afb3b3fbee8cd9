#pragma once
#include "core/IRect.h"
#include "platform/resample/PixelMap.h"

#include <algorithm>
#include <cstdlib>

namespace qirn {

/// The source pixels that the pixels of `rect` show, which is not empty.
inline IRect mapped(const PixelMap& map, const IRect& rect) {
    const int64_t x = map.sourceX(rect.x, rect.y), y = map.sourceY(rect.x, rect.y);
    const int64_t farX = map.sourceX(rect.maxX() - 1, rect.maxY() - 1);
    const int64_t farY = map.sourceY(rect.maxX() - 1, rect.maxY() - 1);
    return {std::min(x, farX), std::min(y, farY), std::abs(farX - x) + 1, std::abs(farY - y) + 1};
}

} // namespace qirn
