#include "formats/pictures/ImageExport.h"

#include "compositing/CompositeInputs.h"
#include "core/PaintEngine.h"
#include "formats/AreaReducer.h"
#include "formats/pictures/JpegWriter.h"
#include "formats/pictures/PngWriter.h"
#include "formats/pictures/TiffWriter.h"
#include "formats/psd/PSDFile.h"
#include "platform/Parallel.h"
#include "platform/QtImages.h"

#include <algorithm>
#include <cstring>
#include <new>

#include <QCoreApplication>

namespace qirn {

namespace {

constexpr int kBandRows = 16;

QString translated(const char* text) {
    return QCoreApplication::translate("ExportError", text);
}

std::optional<QByteArray> encoded(const PaintDocument& doc, ExportFormat format, double jpegQuality,
                                  const PaintColor& jpegBackground) {
    switch (format) {
    case ExportFormat::png:
        return pngBytes(flattened(doc)->imageOverBytes(), doc.dpi);
    case ExportFormat::jpeg:
        return jpegBytes(*ImageExport::onBackground(*flattened(doc), jpegBackground), jpegQuality, doc.dpi);
    case ExportFormat::tiff:
        return tiffBytes(*flattened(doc), doc.dpi);
    case ExportFormat::psdLayered:
        return PSDFile::write(doc, PSDFile::Layered::yes);
    case ExportFormat::psdFlat:
        return PSDFile::write(doc, PSDFile::Layered::no);
    }
    return std::nullopt;
}

} // namespace

QString displayName(ExportFormat format) {
    return QCoreApplication::translate("ExportFormat", rowOf(format).displayName);
}

ExportError ExportError::cannotEncode(const QString& formatName) {
    return ExportError(translated("The picture could not be saved as %1.").arg(formatName));
}

ExportError ExportError::cannotRead() {
    return ExportError(
        translated("This picture could not be opened. It may be damaged or in a format macOS cannot read."));
}

QByteArray ImageExport::data(const PaintDocument& doc, ExportFormat format, double jpegQuality,
                             const PaintColor& jpegBackground) {
    std::optional<QByteArray> bytes = encoded(doc, format, jpegQuality, jpegBackground);
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
            std::memcpy(targetBytes + (top + y) * targetRow, pixels->row(y),
                        static_cast<std::size_t>(band.w) * 4);
        }
    });
    return target;
}

} // namespace qirn
