#include "formats/native/StoredPreview.h"

#include "formats/native/PaintFile.h"
#include "formats/pictures/SmallPng.h"
#include "platform/CheckedMath.h"
#include "platform/files/ReadFile.h"

#include <algorithm>
#include <array>
#include <vector>

namespace qirn {

namespace {

using namespace PaintFile;

constexpr int64_t kMostManifestBytes = 64 * 1024 * 1024;
constexpr int64_t kMostPreviewBytes = 4 * 1024 * 1024;
constexpr int64_t kPieceBytes = 64 * 1024;
constexpr int64_t kMostOffset = int64_t{1} << 60; // sums of such offsets do not overflow

std::optional<TileEntry> previewEntry(const FileBytes& file, int64_t manifestBytes) {
    std::vector<uint8_t> piece(checkedSize(std::min(manifestBytes, kPieceBytes)));
    int64_t read = 0;
    return previewEntryIn([&]() -> std::span<const uint8_t> {
        const std::span<uint8_t> target(piece.data(),
                                        checkedSize(std::min(manifestBytes - read, kPieceBytes)));
        const std::size_t count = file(kHeaderBytes + read, target);
        read += static_cast<int64_t>(count);
        return target.first(count);
    });
}

} // namespace

std::shared_ptr<RGBABuffer> storedPreview(const FileBytes& file) {
    std::array<uint8_t, checkedSize(kHeaderBytes)> header{};
    const auto length = manifestLength({header.data(), file(0, header)});
    if (!length || *length > kMostManifestBytes) return nullptr;
    const auto entry = previewEntry(file, *length);
    if (!entry || entry->o < 0 || entry->o > kMostOffset || entry->n < 1 || entry->n > kMostPreviewBytes)
        return nullptr;
    std::vector<uint8_t> png(checkedSize(entry->n));
    if (file(kHeaderBytes + *length + entry->o, png) < png.size() || !matches(png, entry->k)) return nullptr;
    return readSmallPng(png, kPreviewSide);
}

std::shared_ptr<RGBABuffer> storedPreview(const QString& path) {
    const FileParts file(path);
    return storedPreview(
        [&file](int64_t offset, std::span<uint8_t> target) { return file.read(offset, target); });
}

} // namespace qirn
