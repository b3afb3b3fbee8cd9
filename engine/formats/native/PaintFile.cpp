// The parts that writer and reader share, and reading without tiles; see PaintFileWriter.cpp and PaintFileReader.cpp.
#include "formats/native/PaintFile.h"

#include "core/PaintDocument.h"
#include "formats/pictures/PngReader.h"
#include "platform/CheckedMath.h"

#include <algorithm>

namespace qirn {

namespace {

constexpr std::size_t kHeaderBytes = PaintFile::magic.size() + 4;

} // namespace

DocumentSnapshot snapshot(PaintDocument& doc) {
    PaintDocument::State state = doc.captureState();
    return {state.grid, state.dpi, std::move(state.layers), state.active, doc.onion};
}

DocumentSnapshot snapshotOfLastCommit(const PaintDocument& doc) {
    const PaintDocument::State& state = doc.history()[checkedSize(doc.undoDepth())].state;
    const auto top = static_cast<int64_t>(state.layers.size()) - 1;
    return {state.grid, state.dpi, state.layers, std::min(doc.activeIndex(), top), doc.onion};
}

PaintFile::LocatedManifest PaintFile::manifestOf(std::span<const uint8_t> file) {
    if (file.size() < kHeaderBytes || !std::equal(magic.begin(), magic.end(), file.begin())) {
        throw PaintFileError::notPaintFile();
    }
    const std::size_t length = std::size_t{file[8]} | std::size_t{file[9]} << 8 |
                               std::size_t{file[10]} << 16 | std::size_t{file[11]} << 24;
    if (length == 0 || file.size() - kHeaderBytes < length) {
        throw PaintFileError::damaged(QStringLiteral("manifest size"));
    }
    std::optional<Manifest> manifest = parseManifest(file.subspan(kHeaderBytes, length));
    if (!manifest) throw PaintFileError::damaged(QStringLiteral("manifest"));
    return {std::move(*manifest), static_cast<int64_t>(kHeaderBytes + length)};
}

std::optional<QImage> PaintFile::thumbnailOf(std::span<const uint8_t> file) {
    try {
        const auto [manifest, blobOffset] = manifestOf(file);
        if (!manifest.thumbnail) return std::nullopt;
        const auto png = storedBytes(file.subspan(checkedSize(blobOffset)), *manifest.thumbnail);
        if (!png) return std::nullopt;
        return decodePNG(*png);
    } catch (const PaintFileError&) {
        return std::nullopt;
    }
}

std::optional<PaintFile::Info> PaintFile::infoOf(std::span<const uint8_t> file) {
    try {
        const Manifest manifest = manifestOf(file).manifest;
        return Info{manifest.width, manifest.height, static_cast<int64_t>(manifest.layers.size())};
    } catch (const PaintFileError&) {
        return std::nullopt;
    }
}

} // namespace qirn
