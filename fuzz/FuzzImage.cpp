// Any bytes as a picture file: told apart by content, decoded, opened as a document.
#include "MemoryWatch.h"
#include "core/PaintEngine.h"
#include "formats/ImageImport.h"
#include "platform/DescribedError.h"
#include "platform/Require.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

using namespace qirn;

namespace {

/// A decoded picture is whole, within the largest canvas, and premultiplied.
void check(const DecodedPicture& picture) {
    const auto [width, height] = std::pair(picture.layer->grid().width, picture.layer->grid().height);
    require(std::min(width, height) >= 1 && std::max(width, height) <= PaintEngine::maxCanvasSide);
    require(picture.dpi >= 1 && picture.dpi <= 100'000);
    const Tile* last = nullptr; // those of one colour are shared
    picture.layer->tiles().forEachTile([&](int64_t, const Tile& tile) {
        for (int i = 0; &tile != last && i < kTileBytes; i += 4) {
            const uint8_t* pixel = tile.pixels() + i;
            require(std::max({pixel[0], pixel[1], pixel[2]}) <= pixel[3]);
        }
        last = &tile;
    });
}

/// A decoder may need the whole picture at once where it is one.
int64_t bytesOf(const std::optional<DecodedPicture>& picture) {
    return picture ? picture->layer->grid().width * picture->layer->grid().height * 4 : 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::span file(data, size);
    try {
        std::optional<DecodedPicture> picture;
        {
            fuzz::MemoryWatch memory;
            picture = ImageImport::decode(file);
            memory.requireWithin(bytesOf(picture) + fuzz::kMostFromOneByte * static_cast<int64_t>(size));
        }
        if (picture) check(*picture);
        const auto document = ImageImport::document(file, {});
        require(document->layerCount() >= 1);
        require(std::max(document->grid().width, document->grid().height) <= PaintEngine::maxCanvasSide);
    } catch (const DescribedError&) { // refused in words
    }
    return 0;
}
