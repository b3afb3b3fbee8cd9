#include "MemoryWatch.h"
#include "OpenedDocument.h"
#include "core/PaintDocument.h"
#include "formats/openraster/OpenRaster.h"
#include "platform/Bytes.h"
#include "platform/Require.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

using namespace qirn;

namespace {

/// Premultiplied, and settings in their range.
void check(const PaintDocument& doc) {
    require(doc.dpi >= 1 && doc.dpi <= 100'000);
    for (const LayerRef& layer : doc.layers()) {
        require(layer->opacity >= 0 && layer->opacity <= 1 && !layer->name.isEmpty());
        layer->tiles().forEachTile([&](int64_t, const Tile& tile) {
            for (int i = 0; i < kTileBytes; i += 4) {
                const uint8_t* pixel = tile.pixels() + i;
                require(std::max({pixel[0], pixel[1], pixel[2]}) <= pixel[3]);
            }
        });
    }
}

} // namespace

/// Any bytes are refused or opened; what opened and is written again opens as the same picture.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    std::unique_ptr<PaintDocument> doc;
    {
        fuzz::MemoryWatch memory;
        doc = OpenRaster::read({data, size});
        memory.requireWithin((doc ? fuzz::bytesHeldBy(*doc) : 0) +
                             fuzz::kMostFromOneByte * static_cast<int64_t>(size));
    }
    if (!doc || !fuzz::isSmall(*doc)) return 0;
    check(*doc);
    const auto again = OpenRaster::read(bytesOf(OpenRaster::write(*doc, {})));
    require(again && again->grid() == doc->grid() && again->layerCount() == doc->layerCount());
    for (LayerRef layer : doc->layers()) layer->name.clear(); // a list cannot hold all of it
    for (LayerRef layer : again->layers()) layer->name.clear();
    require(again->fingerprint() == doc->fingerprint());
    return 0;
}
