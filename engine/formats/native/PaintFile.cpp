#include "formats/native/PaintFile.h"

#include "core/PaintDocument.h"
#include "core/PaintEngine.h"
#include "core/StoredForm.h"
#include "formats/native/IncomingTiles.h"
#include "formats/native/PaintPreview.h"
#include "formats/native/StoredPreview.h"
#include "formats/native/StoredTiles.h"
#include "formats/pictures/PngWriter.h"
#include "platform/Bytes.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <utility>

namespace qirn {

namespace {

using namespace PaintFile;

constexpr double kPreviewDpi = 72;
constexpr double kTilesEncoded = 0.8, kPreviewMade = 0.95; // of the work of writing, about

/// The part of the file behind the manifest, as pieces that are not copied until the file is assembled.
class Blob {
public:
    TileEntry add(int64_t slot, std::span<const uint8_t> bytes, int64_t coding, int64_t checksum) {
        const TileEntry entry{slot, length_, static_cast<int64_t>(bytes.size()), coding, checksum};
        pieces_.push_back(bytes);
        length_ += entry.n;
        return entry;
    }
    int64_t length() const { return length_; }
    const std::vector<std::span<const uint8_t>>& pieces() const { return pieces_; }

private:
    std::vector<std::span<const uint8_t>> pieces_;
    int64_t length_ = 0;
};

LayerEntry entryOf(const LayerState& layer, const StoredTiles& stored, Blob& blob) {
    LayerEntry entry{.id = layer.id,
                     .name = layer.name,
                     .opacity = layer.opacity,
                     .blend = QString::fromLatin1(rowOf(layer.blendMode).id),
                     .visible = layer.isVisible,
                     .locked = layer.isLocked,
                     .alphaLocked = layer.alphaLocked,
                     .clipping = layer.isClipping,
                     .tiles = {}};
    layer.tiles.forEachTile([&](int64_t index, const Tile& tile) {
        const StoredForm& form = stored[tile];
        if (form.coding == StoredForm::Coding::lzfse)
            entry.tiles.push_back(blob.add(index, form.bytes, kCodingLzfse, form.checksum));
        else if (form.coding == StoredForm::Coding::raw)
            entry.tiles.push_back(blob.add(index, tile.bytes(), kCodingRaw, form.checksum));
    });
    return entry;
}

void append(QByteArray& file, std::span<const uint8_t> bytes) {
    file.append(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
}

QByteArray assembled(const std::string& manifest, const Blob& blob, const Progress& progress) {
    if (manifest.size() > std::numeric_limits<uint32_t>::max()) throw PaintFileError::tooLarge();
    const auto length = static_cast<uint32_t>(manifest.size());
    QByteArray file;
    file.reserve(static_cast<qsizetype>(kHeaderBytes) + std::ssize(manifest) + blob.length());
    append(file, magic);
    for (int shift = 0; shift < 32; shift += 8) file.append(static_cast<char>(length >> shift & 255));
    file.append(manifest.data(), static_cast<qsizetype>(manifest.size()));
    ProgressCount appended(progress, std::ssize(blob.pieces()));
    for (std::span<const uint8_t> piece : blob.pieces()) {
        append(file, piece);
        appended.oneDone();
    }
    return file;
}

struct Placement {
    std::size_t layer;
    int64_t slot;
    std::size_t tile; // in IncomingTiles
};

/// The tile of each slot; of two entries of one slot the later one. `refused` is called with the layer of each invalid
/// entry, and says whether to go on.
template <class Refused>
std::vector<Placement> placementsOf(const std::vector<LayerEntry>& layers, IncomingTiles& tiles,
                                    const Refused& refused) {
    std::vector<Placement> placements;
    std::unordered_map<int64_t, std::size_t> placed; // in this layer, by slot
    for (std::size_t l = 0; l < layers.size(); ++l) {
        placed.clear();
        for (const TileEntry& entry : layers[l].tiles) {
            const auto tile = tiles.add(entry);
            if (!tile) {
                if (refused(l)) continue;
                return placements;
            }
            const auto [found, isNew] = placed.try_emplace(entry.i, placements.size());
            if (isNew) placements.push_back({l, entry.i, *tile});
            placements[found->second].tile = *tile;
        }
    }
    return placements;
}

LayerRef emptyLayer(const LayerEntry& entry, const TileGrid& grid) {
    auto layer = std::make_shared<Layer>(entry.name, grid, entry.id);
    layer->opacity = std::clamp(entry.opacity, 0.0, 1.0);
    layer->blendMode = blendModeWithId(entry.blend.toStdString()).value_or(BlendMode::normal);
    layer->isVisible = entry.visible;
    layer->isLocked = entry.locked;
    layer->alphaLocked = entry.alphaLocked;
    layer->isClipping = entry.clipping;
    return layer;
}

/// Throws PaintFileError for a size that no canvas has.
TileGrid gridOf(const Manifest& manifest) {
    if (manifest.width < 1 || manifest.height < 1)
        throw PaintFileError::damaged(QStringLiteral("canvas size"));
    if (std::max(manifest.width, manifest.height) > PaintEngine::maxCanvasSide)
        throw PaintFileError::tooLarge();
    return {manifest.width, manifest.height};
}

std::unique_ptr<PaintDocument> documentOf(const Manifest& manifest, const TileGrid& grid,
                                          const std::vector<Placement>& placements,
                                          const IncomingTiles& tiles) {
    std::vector<LayerRef> layers;
    for (const LayerEntry& entry : manifest.layers) layers.push_back(emptyLayer(entry, grid));
    for (const Placement& place : placements) layers[place.layer]->setTile(place.slot, tiles[place.tile]);

    const int64_t top = std::max<int64_t>(static_cast<int64_t>(layers.size()) - 1, 0);
    auto document = std::make_unique<PaintDocument>(manifest.width, manifest.height,
                                                    manifest.dpi > 0 ? manifest.dpi : 72, std::move(layers),
                                                    std::min(top, std::max<int64_t>(manifest.active, 0)));
    if (manifest.onion) document->onion = *manifest.onion;
    return document;
}

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
    const std::optional<int64_t> length = manifestLength(file);
    if (!length) throw PaintFileError::notPaintFile();
    if (*length == 0 || std::ssize(file) - kHeaderBytes < *length)
        throw PaintFileError::damaged(QStringLiteral("manifest size"));
    std::optional<Manifest> manifest = parseManifest(file.subspan(kHeaderBytes, checkedSize(*length)));
    if (!manifest) throw PaintFileError::damaged(QStringLiteral("manifest"));
    return {std::move(*manifest), kHeaderBytes + *length};
}

std::optional<QImage> PaintFile::thumbnailOf(std::span<const uint8_t> file) {
    const auto preview = storedPreview([file](int64_t offset, std::span<uint8_t> target) {
        if (offset >= std::ssize(file)) return std::size_t{0};
        const auto bytes = file.subspan(checkedSize(offset));
        const std::size_t count = std::min(bytes.size(), target.size());
        std::copy_n(bytes.begin(), count, target.begin());
        return count;
    });
    return preview ? std::optional(preview->makeImage()) : std::nullopt;
}

std::optional<PaintFile::Info> PaintFile::infoOf(std::span<const uint8_t> file) {
    try {
        const Manifest manifest = manifestOf(file).manifest;
        return Info{manifest.width, manifest.height, static_cast<int64_t>(manifest.layers.size())};
    } catch (const PaintFileError&) {
        return std::nullopt;
    }
}

QByteArray PaintFile::encode(const DocumentSnapshot& snapshot, int64_t maxSide,
                             std::optional<QDateTime> saved, const Progress& progress) {
    const StoredTiles stored(snapshot, progress.part(0, kTilesEncoded));
    Blob blob;
    Manifest manifest;
    manifest.width = snapshot.grid.width;
    manifest.height = snapshot.grid.height;
    manifest.dpi = snapshot.dpi;
    manifest.active = snapshot.active;
    for (const LayerState& layer : snapshot.layers) manifest.layers.push_back(entryOf(layer, stored, blob));
    manifest.onion = snapshot.onion;
    manifest.saved = saved.value_or(QDateTime::currentDateTimeUtc());
    // A preview that cannot be made is never a reason not to save.
    const QImage preview = previewOf(snapshot, maxSide, progress.part(kTilesEncoded, kPreviewMade));
    const QByteArray png = preview.isNull() ? QByteArray() : pngBytes(preview, kPreviewDpi);
    if (!png.isEmpty()) manifest.thumbnail = blob.add(-1, bytesOf(png), kCodingPng, checksumOf(bytesOf(png)));
    return assembled(manifestText(manifest), blob, progress.part(kPreviewMade, 1));
}

QByteArray PaintFile::encode(PaintDocument& doc, std::optional<QDateTime> saved) {
    return encode(snapshot(doc), kPreviewSide, std::move(saved));
}

std::unique_ptr<PaintDocument> PaintFile::decode(std::span<const uint8_t> file, const Progress& progress) {
    const auto [manifest, blobOffset] = manifestOf(file);
    const TileGrid grid = gridOf(manifest);
    IncomingTiles tiles(file.subspan(checkedSize(blobOffset)), grid.count());
    const std::vector<Placement> placements =
        placementsOf(manifest.layers, tiles, [](std::size_t) { return false; });
    for (const Placement& place : placements) tiles.place(place.tile);
    tiles.decode(progress);
    return documentOf(manifest, grid, placements, tiles);
}

PaintFile::Salvaged PaintFile::salvage(std::span<const uint8_t> file, const Progress& progress) {
    const auto [manifest, blobOffset] = manifestOf(file);
    const TileGrid grid = gridOf(manifest);
    IncomingTiles tiles(file.subspan(checkedSize(blobOffset)), grid.count());
    std::vector<int64_t> lost(manifest.layers.size());
    const std::vector<Placement> placements =
        placementsOf(manifest.layers, tiles, [&lost](std::size_t layer) {
            ++lost[layer];
            return true;
        });
    for (const Placement& place : placements) tiles.place(place.tile);
    tiles.decodeWhatCanBe(progress);
    for (const Placement& place : placements)
        if (!tiles[place.tile]) ++lost[place.layer];
    return {documentOf(manifest, grid, placements, tiles), std::move(lost)};
}

} // namespace qirn
