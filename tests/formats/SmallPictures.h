#pragma once
// Small pictures in the formats that come in, for the tests of reading them.
#include "formats/ImageExport.h"
#include "formats/ImageImport.h"
#include "platform/Bytes.h"
#include "support/PictureFiles.h"
#include "support/Pictures.h"

#include <optional>
#include <vector>

namespace qirn::test {

inline constexpr int kWidth = 48;
inline constexpr int kHeight = 32;

/// Six flat blocks of 16 x 16 pixels, all different, so that each turn shows and a JPEG keeps them.
inline QImage blocks(bool hasAlpha = false) {
    QImage image(kWidth, kHeight, hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    const QColor colors[6] = {{200, 30, 30},   {30, 200, 30}, {30, 30, 200},
                              {220, 220, 220}, {20, 20, 20},  {200, 200, 30}};
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            QColor color = colors[y / 16 * 3 + x / 16];
            if (hasAlpha) color.setAlpha(255 - x - y * 3);
            image.setPixelColor(x, y, color);
        }
    }
    return image;
}

inline std::optional<DecodedPicture> decoded(const QByteArray& file) {
    return ImageImport::decode(bytesOf(file));
}

inline QByteArray jpegOf(const QImage& image) {
    PaintDocument doc(image.width(), image.height(), 72, std::nullopt);
    doc.layer(0).load(*RGBABuffer::fromImage(image));
    return ImageExport::data(doc, ExportFormat::jpeg, 1, PaintColor::white());
}

inline QByteArray rgbBytes(const QImage& image) {
    QByteArray bytes;
    for (int y = 0; y < image.height(); ++y)
        bytes.append(reinterpret_cast<const char*>(image.constScanLine(y)), image.width() * 3);
    return bytes;
}

inline QByteArray tiffOf(const QImage& image, std::vector<TiffEntry> more = {}) {
    auto entries =
        tiffTags(static_cast<uint32_t>(image.width()), static_cast<uint32_t>(image.height()), 2, 3, 8);
    entries.insert(entries.end(), more.begin(), more.end());
    return tiffFile(std::move(entries), rgbBytes(image));
}

inline QByteArray webpOf(const QImage& image, const QByteArray& profile, const QByteArray& exif) {
    return extendedWebP(written(image, "webp"), image.width(), image.height(), profile, exif);
}

inline QImage flat(const QColor& color, QImage::Format format = QImage::Format_RGB888) {
    QImage image(16, 16, format);
    image.fill(color);
    return image;
}

} // namespace qirn::test
