#include "core/PaintDocument.h"
#include "core/StoredForm.h"
#include "formats/native/PaintFile.h"
#include "formats/native/PaintPreview.h"
#include "formats/native/TileCodec.h"
#include "formats/pictures/PngWriter.h"
#include "platform/Bytes.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <limits>
#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

namespace qirn {

namespace {

using namespace PaintFile;

constexpr double kPreviewDpi = 72;

/// The encoded tiles of a snapshot, each once however many slots share it.
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
        encode(tiles, unknown);
    }

    const StoredForm& operator[](const Tile& tile) const { return *forms_[places_.at(&tile)]; }

private:
    /// Tiles of a single color, as of fills and papers, are encoded once for each color.
    void encode(const std::vector<const Tile*>& tiles, const std::vector<std::size_t>& unknown) {
        std::vector<std::optional<PixelBytes>> pixels(unknown.size());
        concurrentPerform(std::ssize(unknown), [&](int64_t i) {
            pixels[checkedSize(i)] = tiles[unknown[checkedSize(i)]]->onlyPixel();
        });
        std::map<PixelBytes, std::size_t> flat; // the tile that is encoded for a pixel
        std::vector<std::size_t> distinct;
        for (std::size_t i = 0; i < unknown.size(); ++i) {
            if (!pixels[i] || flat.try_emplace(*pixels[i], unknown[i]).second) distinct.push_back(unknown[i]);
        }
        std::vector<TileEncoder> encoders(checkedSize(concurrency()));
        concurrentPerformByWorkers(std::ssize(encoders), std::ssize(distinct),
                                   [&](std::size_t worker, int64_t i) {
                                       const std::size_t which = distinct[checkedSize(i)];
                                       forms_[which] = encoders[worker].encode(*tiles[which]);
                                   });
        for (std::size_t i = 0; i < unknown.size(); ++i) {
            const std::size_t which = unknown[i];
            if (pixels[i]) forms_[which] = forms_[flat.at(*pixels[i])];
            if (tiles[which]->isFrozen()) tiles[which]->remember(forms_[which]);
        }
    }

    std::unordered_map<const Tile*, std::size_t> places_;
    std::vector<std::shared_ptr<const StoredForm>> forms_;
};

/// The part of the file behind the manifest, as pieces that are not copied until the file is assembled.
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
