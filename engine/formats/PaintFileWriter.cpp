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

/// Every tile of a snapshot as it goes into the file, once however many slots share it.
class StoredTiles {
public:
    explicit StoredTiles(const DocumentSnapshot& snapshot) {
        std::vector<const Tile*> tiles;
        for (const LayerState& layer : snapshot.layers) {
            layer.tiles.forEachTile([&](int64_t, const Tile& tile) {
                if (places_.emplace(&tile, tiles.size()).second) tiles.push_back(&tile);
            });
        }
        forms_.resize(tiles.size());
        std::vector<std::size_t> unknown;
        for (std::size_t i = 0; i < tiles.size(); ++i) {
            forms_[i] = tiles[i]->storedForm();
            if (!forms_[i]) unknown.push_back(i);
        }
        const std::size_t chunks = (unknown.size() + kTilesAtOnce - 1) / kTilesAtOnce;
        concurrentPerform(static_cast<int64_t>(chunks), [&](int64_t chunk) {
            TileEncoder encoder;
            const std::size_t first = static_cast<std::size_t>(chunk) * kTilesAtOnce;
            for (std::size_t i = first; i < std::min(first + kTilesAtOnce, unknown.size()); ++i) {
                const Tile& tile = *tiles[unknown[i]];
                forms_[unknown[i]] = encoder.encode(tile);
                if (tile.isFrozen()) tile.remember(forms_[unknown[i]]);
            }
        });
    }

    const StoredForm& operator[](const Tile& tile) const { return *forms_[places_.at(&tile)]; }

private:
    std::unordered_map<const Tile*, std::size_t> places_;
    std::vector<std::shared_ptr<const StoredForm>> forms_;
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
        const StoredForm& form = stored[tile];
        if (form.coding == StoredForm::Coding::lzfse)
            entry.tiles.push_back(blob.add(index, form.bytes, kCodingLzfse));
        else if (form.coding == StoredForm::Coding::raw)
            entry.tiles.push_back(blob.add(index, tile.bytes(), kCodingRaw));
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
