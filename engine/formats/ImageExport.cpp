#include "formats/ImageExport.h"

#include "core/PaintDocument.h"
#include "core/PaintEngine.h"
#include "formats/common/AreaReducer.h"
#include "formats/pictures/PngWriter.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"
#include "platform/QtImages.h"

#include <algorithm>
#include <cstring>

namespace qirn {

namespace {

constexpr int kBandRows = 16; // of a reduced picture

} // namespace

QByteArray ImageExport::data(const PaintDocument& doc, ExportFormat format, double quality,
                             const PaintColor& background, const Progress& progress) {
    const ExportFormatRow& row = rowOf(format);
    if (std::max(doc.grid().width, doc.grid().height) > row.longestSide)
        throw ExportError::tooLongASide(displayName(format), row.longestSide);
    std::optional<QByteArray> bytes = row.encode(doc, {quality, background}, progress);
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

std::optional<QByteArray> ImageExport::pngData(const QImage& image, double dpi) {
    const QImage picture = image.isNull() ? image : inPixelFormat(image);
    if (picture.isNull()) return std::nullopt;
    return pngBytes(picture, dpi);
}

QImage ImageExport::scaled(const QImage& image, int64_t maxSide) {
    const QSize size = reducedSize(image.width(), image.height(), maxSide);
    if (image.isNull() || size == image.size()) return image;
    const QImage source = inPixelFormat(image);
    QImage target(size, PaintEngine::imageFormat);
    if (source.isNull() || target.isNull()) return image;
    uint8_t* const targetBytes = target.bits(); // taken once: it detaches
    const int64_t targetRow = target.bytesPerLine();
    // In bands, so that the sums of a large target need no memory of its size.
    concurrentPerform((size.height() + kBandRows - 1) / kBandRows, [&](int64_t i) {
        const int64_t top = i * kBandRows;
        const IRect band{0, top, size.width(), std::min<int64_t>(kBandRows, size.height() - top)};
        AreaReducer reducer(source.width(), source.height(), size.width(), size.height(), band);
        const IRect rows = reducer.sourceOfWindow();
        reducer.add(
            reducer.reduce(rows, source.constScanLine(static_cast<int>(rows.y)), source.bytesPerLine()));
        const auto pixels = reducer.result();
        for (int64_t y = 0; y < band.h; ++y) {
            std::memcpy(targetBytes + (top + y) * targetRow, pixels->row(y), checkedSize(band.w) * 4);
        }
    });
    return target;
}

} // namespace qirn
