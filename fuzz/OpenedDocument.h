#pragma once
#include "core/PaintDocument.h"

#include <cstdint>

namespace qirn::fuzz {

/// Others would take the run too long to compare, though the program opens them.
inline bool isSmall(const PaintDocument& doc) {
    constexpr int64_t kMostTiles = 64;
    return doc.grid().count() * doc.layerCount() <= kMostTiles;
}

/// Tiles, and arrays of slots of 16 bytes.
inline int64_t bytesHeldBy(const PaintDocument& doc) {
    int64_t bytes = 0;
    for (const LayerRef& layer : doc.layers()) {
        if (!layer->tiles().holdsNothing()) bytes += doc.grid().count() * 16;
        layer->tiles().forEachTile([&](int64_t, const Tile&) { bytes += kTileBytes; });
    }
    return bytes;
}

} // namespace qirn::fuzz
