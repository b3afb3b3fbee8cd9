#include "formats/ImageImport.h"

#include "core/PaintEngine.h"
#include "formats/ImageExport.h"
#include "formats/PSDPicture.h"
#include "formats/PaintFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include <QBuffer>
#include <QImageReader>

namespace qirn {

namespace {

const QString kLayerName = QStringLiteral("Background");

constexpr std::array<uint8_t, 8> kPngSignature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
// Deflate turns one byte into at most 1,032.
constexpr uint64_t kLargestInflation = 1040;

// Behind the signature stands the first chunk: length, "IHDR", width, height (both big-endian), bits a channel,
// colour type and three more bytes, checksum.
constexpr std::size_t kWidthAt = 16;
constexpr std::size_t kHeightAt = 20;
constexpr std::size_t kBitsAt = 24;
constexpr std::size_t kColorTypeAt = 25;
constexpr std::size_t kHeaderBytes = 33;

uint64_t bigEndian(std::span<const uint8_t> bytes, std::size_t at) {
    return uint64_t{bytes[at]} << 24 | uint64_t{bytes[at + 1]} << 16 | uint64_t{bytes[at + 2]} << 8 |
           bytes[at + 3];
}

uint64_t channelsOf(uint8_t colorType) {
    switch (colorType) {
    case 2:
        return 3;
    case 4:
        return 2;
    case 6:
        return 4;
    default:
        return 1;
    }
}

/// A few bytes can claim a picture of gigabytes: whether the file is long enough to hold what its header says.
bool backsItsSize(std::span<const uint8_t> png) {
    if (png.size() < kHeaderBytes) return false;
    if (std::memcmp(png.data(), kPngSignature.data(), kPngSignature.size()) != 0) return false;
    const uint64_t width = bigEndian(png, kWidthAt);
    const uint64_t height = bigEndian(png, kHeightAt);
    const uint64_t bits = uint64_t{png[kBitsAt]} * channelsOf(png[kColorTypeAt]);
    if (width > PaintEngine::maxCanvasSide || height > PaintEngine::maxCanvasSide) return false;
    return height * ((width * bits + 7) / 8) <= png.size() * kLargestInflation;
}

} // namespace

std::unique_ptr<PaintDocument> ImageImport::document(std::span<const uint8_t> file, const QString&) {
    if (PaintFile::infoOf(file)) return PaintFile::decode(file);
    auto picture = decode(file);
    if (!picture) throw ExportError::cannotRead();
    const RGBABuffer& pixels = *picture->pixels;
    const TileGrid grid(pixels.width(), pixels.height());
    auto layer = std::make_shared<Layer>(kLayerName, grid);
    layer->load(pixels);
    return std::make_unique<PaintDocument>(pixels.width(), pixels.height(), picture->dpi,
                                           std::vector<LayerRef>{std::move(layer)}, 0);
}

std::optional<ImageImport::DecodedPicture> ImageImport::decode(std::span<const uint8_t> file) {
    if (PSDPicture::isPhotoshopFile(file)) return PSDPicture::decode(file);
    const auto bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(file.data()),
                                               static_cast<qsizetype>(file.size()));
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (std::max(size.width(), size.height()) > PaintEngine::maxCanvasSide) return std::nullopt;
    const QImage image = reader.read();
    auto pixels = RGBABuffer::fromImage(image);
    if (!pixels) return std::nullopt;
    return DecodedPicture{std::move(pixels), std::round(image.dotsPerMeterX() * 0.0254)};
}

std::optional<QImage> ImageImport::decodePNG(std::span<const uint8_t> png) {
    if (!backsItsSize(png)) return std::nullopt;
    const auto bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(png.data()),
                                               static_cast<qsizetype>(png.size()));
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer, "png");
    QImage image = reader.read();
    if (image.isNull()) return std::nullopt;
    return image;
}

} // namespace qirn
