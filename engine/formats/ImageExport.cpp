#include "formats/ImageExport.h"

#include "platform/Parallel.h"

#include <optional>

namespace qirn {

QByteArray ImageExport::data(const PaintDocument& doc, ExportFormat format, double jpegQuality,
                             const PaintColor& jpegBackground) {
    std::optional<QByteArray> bytes = rowOf(format).encode(doc, {jpegQuality, jpegBackground});
    if (!bytes) throw ExportError::cannotEncode(displayName(format));
    return *std::move(bytes);
}

std::shared_ptr<RGBABuffer> ImageExport::onBackground(const RGBABuffer& picture,
                                                      const PaintColor& background) {
    auto result = std::make_shared<RGBABuffer>(picture.width(), picture.height());
    const PixelBytes below{background.r8(), background.g8(), background.b8(), 255};
    concurrentPerform(picture.height(), [&](int64_t y) {
        const uint8_t* from = picture.row(y);
        uint8_t* to = result->row(y);
        for (int64_t x = 0; x < picture.width(); ++x, from += 4, to += 4) {
            const int through = 255 - from[3];
            for (std::size_t c = 0; c < 4; ++c)
                to[c] = static_cast<uint8_t>(from[c] + (below[c] * through + 127) / 255);
        }
    });
    return result;
}

} // namespace qirn
