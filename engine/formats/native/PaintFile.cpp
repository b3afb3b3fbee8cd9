// What is common to writing and reading (PaintFileWriter.cpp, PaintFileReader.cpp), and the questions that need no
// tile.
#include "formats/native/PaintFile.h"

#include "core/PaintDocument.h"
#include "formats/pictures/ImageImport.h"

#include <algorithm>

#include <QCoreApplication>

namespace qirn {

namespace {

constexpr std::size_t kHeaderBytes = PaintFile::magic.size() + 4;

QString translated(const char* text) {
    return QCoreApplication::translate("PaintFileError", text);
}

} // namespace

PaintFileError PaintFileError::notPaintFile() {
    return PaintFileError(translated("This file is not an Qirn Paint document."));
}

PaintFileError PaintFileError::tooLarge() {
    return PaintFileError(
        translated("The canvas in this file is larger than Qirn Paint can open (30,000 × 30,000 pixels)."));
}

PaintFileError PaintFileError::damaged(const QString& detail) {
    return PaintFileError(
        translated("The Qirn Paint document is damaged (%1). Try File → Recover Autosaved Work.")
            .arg(detail));
}

DocumentSnapshot snapshot(PaintDocument& doc) {
    PaintDocument::State state = doc.captureState();
    return {state.grid, state.dpi, std::move(state.layers), state.active, doc.onion};
}

DocumentSnapshot snapshotOfLastCommit(const PaintDocument& doc) {
    const PaintDocument::State& state = doc.history()[static_cast<std::size_t>(doc.undoDepth())].state;
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
        const auto png = storedBytes(file.subspan(static_cast<std::size_t>(blobOffset)), *manifest.thumbnail);
        if (!png) return std::nullopt;
        return ImageImport::decodePNG(*png);
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
