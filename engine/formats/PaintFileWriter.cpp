#include "core/PaintDocument.h"
#include "formats/ImageExport.h"
#include "formats/PaintFile.h"
#include "formats/PaintPreview.h"
#include "formats/TileCodec.h"
#include "platform/Bytes.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <vector>

namespace qirn {

namespace {

using namespace PaintFile;

constexpr std::size_t kTilesAtOnce = 4; // with one encoder; few, so that the load spreads over the cores
constexpr double kPreviewDpi = 72;

/// A tile as it goes into the file: as a stream, as its own bytes, or not at all.
struct StoredTile {
    std::optional<std::vector<uint8_t>> stream;
    std::span<const uint8_t> raw; // the tile's own; empty for a tile without alpha

    std::span<const uint8_t> bytes() const { return stream ? std::span<const uint8_t>(*stream) : raw; }
    int64_t coding() const { return stream ? kCodingLzfse : kCodingRaw; }
};

/// Every tile of a snapshot, stored once however many slots share it.
class StoredTiles {
public:
    explicit StoredTiles(const DocumentSnapshot& snapshot) {
        std::vector<const Tile*> tiles;
        for (const LayerState& layer : snapshot.layers) {
            layer.tiles.forEachTile([&](int64_t, const Tile& tile) {
                if (places_.emplace(&tile, tiles.size()).second) tiles.push_back(&tile);
            });
        }
        stored_.resize(tiles.size());
        const std::size_t chunks = (tiles.size() + kTilesAtOnce - 1) / kTilesAtOnce;
        concurrentPerform(static_cast<int64_t>(chunks), [&](int64_t chunk) {
            TileEncoder encoder;
            const std::size_t first = static_cast<std::size_t>(chunk) * kTilesAtOnce;
            for (std::size_t i = first; i < std::min(first + kTilesAtOnce, tiles.size()); ++i) {
                if (tiles[i]->isEmpty()) continue;
                stored_[i] = {encoder.encode(*tiles[i]), tiles[i]->bytes()};
            }
        });
    }

    const StoredTile& operator[](const Tile& tile) const { return stored_[places_.at(&tile)]; }

private:
    std::unordered_map<const Tile*, std::size_t> places_;
    std::vector<StoredTile> stored_;
};

/// What follows the manifest, as pieces that stay where they are until the file is put together.
class Blob {
public:
    TileEntry add(int64_t slot, std::span<const uint8_t> bytes, int64_t coding) {
        const TileEntry entry{slot, length_, static_cast<int64_t>(bytes.size()), coding};
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
        const StoredTile& kept = stored[tile];
        if (!kept.bytes().empty()) entry.tiles.push_back(blob.add(index, kept.bytes(), kept.coding()));
    });
    return entry;
}

void append(QByteArray& file, std::span<const uint8_t> bytes) {
    file.append(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
}

QByteArray assembled(const std::string& manifest, const Blob& blob) {
    if (manifest.size() > std::numeric_limits<uint32_t>::max()) throw PaintFileError::tooLarge();
    const auto length = static_cast<uint32_t>(manifest.size());
    QByteArray file;
    file.reserve(static_cast<qsizetype>(magic.size() + 4 + manifest.size()) + blob.length());
    append(file, magic);
    for (int shift = 0; shift < 32; shift += 8) file.append(static_cast<char>(length >> shift & 255));
    file.append(manifest.data(), static_cast<qsizetype>(manifest.size()));
    for (std::span<const uint8_t> piece : blob.pieces()) append(file, piece);
    return file;
}

} // namespace

QByteArray PaintFile::encode(const DocumentSnapshot& snapshot, int64_t maxSide,
                             std::optional<QDateTime> saved) {
    const StoredTiles stored(snapshot);
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
    const std::optional<QByteArray> preview = ImageExport::pngData(previewOf(snapshot, maxSide), kPreviewDpi);
    if (preview) manifest.thumbnail = blob.add(-1, bytesOf(*preview), kCodingPng);
    return assembled(manifestText(manifest), blob);
}

QByteArray PaintFile::encode(PaintDocument& doc, std::optional<QDateTime> saved) {
    return encode(snapshot(doc), kPreviewSide, std::move(saved));
}

} // namespace qirn
