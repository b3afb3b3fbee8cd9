// Any bytes as a picture file: told apart by content, decoded, opened as a document.
#include "MemoryWatch.h"
#include "core/PaintEngine.h"
#include "formats/pictures/ImageImport.h"
#include "platform/DescribedError.h"
#include "platform/Require.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

using namespace qirn;

namespace {

/// A decoded picture is whole, within the largest canvas, and premultiplied.
void check(const DecodedPicture& picture) {
    const RGBABuffer& pixels = *picture.pixels;
    require(std::min(pixels.width(), pixels.height()) >= 1);
    require(std::max(pixels.width(), pixels.height()) <= PaintEngine::maxCanvasSide);
    require(picture.dpi > 0 && picture.dpi <= 100'000);
    for (int64_t i = 0; i < pixels.byteCount(); i += 4) {
        const uint8_t* pixel = pixels.data() + i;
        require(std::max({pixel[0], pixel[1], pixel[2]}) <= pixel[3]);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::span file(data, size);
    try {
        std::optional<DecodedPicture> picture;
        {
            fuzz::MemoryWatch memory;
            picture = ImageImport::decode(file);
            memory.requireWithin(picture ? picture->pixels->byteCount()
                                         : fuzz::kMostFromOneByte * static_cast<int64_t>(size));
        }
        if (picture) check(*picture);
        const auto document = ImageImport::document(file, {});
        require(document->layerCount() >= 1);
        require(std::max(document->grid().width, document->grid().height) <= PaintEngine::maxCanvasSide);
    } catch (const DescribedError&) { // refused in words
    }
    return 0;
}
