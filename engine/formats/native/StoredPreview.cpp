#include "formats/native/StoredPreview.h"

#include "formats/native/PaintFile.h"
#include "formats/pictures/PngReader.h"
#include "platform/Bytes.h"
#include "platform/files/ReadFile.h"

namespace qirn {

namespace {

constexpr int64_t kHeaderBytes = 12;
constexpr int64_t kMostManifestBytes = 64 * 1024 * 1024;
constexpr int64_t kMostPreviewBytes = 4 * 1024 * 1024;
constexpr int64_t kMostOffset = int64_t{1} << 60; // sums of such offsets do not overflow

int64_t manifestBytes(const QByteArray& header) {
    int64_t length = 0;
    for (qsizetype i = kHeaderBytes - 1; i >= 8; --i) length = length << 8 | static_cast<uint8_t>(header[i]);
    return length;
}

} // namespace

std::optional<QImage> storedPreview(const QString& path) {
    const QByteArray header = readFilePart(path, 0, kHeaderBytes);
    if (header.size() < kHeaderBytes) return std::nullopt;
    const int64_t length = manifestBytes(header);
    if (length > kMostManifestBytes) return std::nullopt;
    std::optional<PaintFile::TileEntry> entry;
    int64_t blobOffset = 0;
    try {
        const QByteArray head = readFilePart(path, 0, kHeaderBytes + length);
        auto located = PaintFile::manifestOf(bytesOf(head));
        entry = located.manifest.thumbnail;
        blobOffset = located.blobOffset;
    } catch (const PaintFileError&) {
        return std::nullopt;
    }
    if (!entry || entry->o < 0 || entry->o > kMostOffset || entry->n < 1 || entry->n > kMostPreviewBytes)
        return std::nullopt;
    const QByteArray png = readFilePart(path, blobOffset + entry->o, entry->n);
    if (png.size() < entry->n || !PaintFile::matches(bytesOf(png), entry->k)) return std::nullopt;
    auto image = decodePNG(bytesOf(png));
    const int most = static_cast<int>(PaintFile::kPreviewSide);
    if (!image || image->width() > most || image->height() > most) return std::nullopt;
    return image;
}

} // namespace qirn
