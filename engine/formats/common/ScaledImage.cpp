#include "formats/common/ScaledImage.h"

#include "core/PaintEngine.h"
#include "formats/common/AreaReducer.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"
#include "platform/QtImages.h"

#include <algorithm>
#include <cstring>

namespace qirn {

namespace {

constexpr int kBandRows = 16;

} // namespace

QSize ImageExport::scaledSize(int64_t width, int64_t height, int64_t maxSide) {
    const double ratio = static_cast<double>(maxSide) / static_cast<double>(std::max(width, height));
    if (ratio >= 1) return {static_cast<int>(width), static_cast<int>(height)};
    return {std::max(1, static_cast<int>(ratio * static_cast<double>(width))),
            std::max(1, static_cast<int>(ratio * static_cast<double>(height)))};
}

QImage ImageExport::scaled(const QImage& image, int64_t maxSide) {
    const QSize size = scaledSize(image.width(), image.height(), maxSide);
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
