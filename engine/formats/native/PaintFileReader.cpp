#include "core/PaintDocument.h"
#include "core/PaintEngine.h"
#include "formats/native/PaintFile.h"
#include "formats/native/TileCodec.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qirn {

namespace {

using namespace PaintFile;

constexpr std::size_t kShortStream = 4096; // bytes; a flat tile takes about 300

/// A tile's bytes in the file, for all entries with the same bytes.
struct StoredTile {
    std::span<const uint8_t> bytes;
    int64_t coding;
    int64_t firstSlot; // of the first entry, by which damage is reported
    // used by the picture; otherwise a later entry of the same slot replaces each of its entries
    bool isPlaced;
    bool isDamaged; // once decoded
    TileRef tile;   // null until decoded, and where it is not placed
};

PaintFileError damagedTile(int64_t slot, const char* what) {
    return PaintFileError::damaged(QStringLiteral("tile %1").arg(slot) + QLatin1String(what));
}

/// The tiles of a file, each decoded once and shared by all entries with the same bytes. Entries are added in the
/// order of the file. Streams are decoded later and in parallel; the first damaged entry in the order of the file is
/// reported.
class IncomingTiles {
public:
    IncomingTiles(std::span<const uint8_t> blob, int64_t slots) : blob_(blob), slots_(slots) {}

    /// The index of the entry's tile; nothing for an entry whose numbers are invalid.
    std::optional<std::size_t> add(const TileEntry& entry) {
        const auto bytes = storedBytes(blob_, entry);
        if (entry.i < 0 || entry.i >= slots_ || !bytes) {
            refusal_ = damagedTile(entry.i, "");
            return std::nullopt;
        }
        if (entry.c != kCodingLzfse && entry.n != kTileBytes) {
            refusal_ = damagedTile(entry.i, " length");
            return std::nullopt;
        }
        const int64_t coding = entry.c == kCodingLzfse ? kCodingLzfse : kCodingRaw;
        const auto [found, isNew] = known_.try_emplace({*bytes, coding}, tiles_.size());
        if (isNew) tiles_.push_back({*bytes, coding, entry.i, false, false, nullptr});
        return found->second;
    }

    void place(std::size_t which) { tiles_[which].isPlaced = true; }

    /// Throws for the first damaged entry of all that were added.
    void decode() {
        std::vector<TileDecoder> decoders(checkedSize(concurrency()));
        std::atomic<std::size_t> firstDamaged = tiles_.size();
        concurrentPerformByWorkers(std::ssize(decoders), std::ssize(tiles_),
                                   [this, &decoders, &firstDamaged](std::size_t worker, int64_t index) {
                                       const auto i = checkedSize(index);
                                       if (i > firstDamaged.load(std::memory_order_relaxed))
                                           return; // an earlier one is reported
                                       decodeOne(tiles_[i], decoders[worker]);
                                       if (!tiles_[i].isDamaged) return;
                                       std::size_t before = firstDamaged;
                                       while (i < before && !firstDamaged.compare_exchange_weak(before, i)) {}
                                   });
        if (firstDamaged < tiles_.size()) throw damagedTile(tiles_[firstDamaged].firstSlot, " data");
        if (refusal_) throw *refusal_;
    }

    const TileRef& operator[](std::size_t which) const { return tiles_[which].tile; }

private:
    /// Short streams are compared by content, so that a flat background of ten thousand slots becomes one shared tile
    /// again; long ones by offset, which costs nothing.
    struct Source {
        std::span<const uint8_t> bytes;
        int64_t coding;

        bool isShort() const { return bytes.size() <= kShortStream; }
        std::string_view content() const {
            return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
        }
        bool operator==(const Source& other) const {
            if (coding != other.coding || bytes.size() != other.bytes.size()) return false;
            if (bytes.data() == other.bytes.data()) return true;
            return isShort() && content() == other.content();
        }
    };
    struct SourceHash {
        std::size_t operator()(const Source& source) const {
            // Offset and length: a file may name a thousand lengths at one offset.
            if (!source.isShort())
                return std::hash<const void*>()(source.bytes.data()) +
                       source.bytes.size() * 0x9E3779B97F4A7C15u;
            return std::hash<std::string_view>()(source.content());
        }
    };

    /// A tile that is not used is only checked, so that a slot that a file fills a thousand times holds one tile.
    static void decodeOne(StoredTile& stored, TileDecoder& decoder) {
        TileRef tile;
        if (stored.coding == kCodingLzfse) {
            tile = decoder.decode(stored.bytes);
            stored.isDamaged = !tile;
        } else if (stored.isPlaced) {
            BlockPool::Block pixels = BlockPool::take();
            std::memcpy(pixels.get(), stored.bytes.data(), kTileBytes);
            tile = std::make_shared<Tile>(std::move(pixels));
        }
        if (!tile || !stored.isPlaced) return;
        tile->freeze(); // several slots may share it
        stored.tile = std::move(tile);
    }

    std::span<const uint8_t> blob_;
    int64_t slots_;
    std::vector<StoredTile> tiles_; // in order of their first entries
    std::unordered_map<Source, std::size_t, SourceHash> known_;
    std::optional<PaintFileError> refusal_;
};

struct Placement {
    std::size_t layer;
    int64_t slot;
    std::size_t tile; // in IncomingTiles
};

/// The tile of each slot, up to the first invalid entry; of two entries of one slot the later one.
std::vector<Placement> placementsOf(const std::vector<LayerEntry>& layers, IncomingTiles& tiles) {
    std::vector<Placement> placements;
    std::unordered_map<int64_t, std::size_t> placed; // in this layer, by slot
    for (std::size_t l = 0; l < layers.size(); ++l) {
        placed.clear();
        for (const TileEntry& entry : layers[l].tiles) {
            const auto tile = tiles.add(entry);
            if (!tile) return placements;
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

} // namespace

std::unique_ptr<PaintDocument> PaintFile::decode(std::span<const uint8_t> file) {
    const auto [manifest, blobOffset] = manifestOf(file);
    if (manifest.width < 1 || manifest.height < 1)
        throw PaintFileError::damaged(QStringLiteral("canvas size"));
    if (std::max(manifest.width, manifest.height) > PaintEngine::maxCanvasSide)
        throw PaintFileError::tooLarge();
    const TileGrid grid(manifest.width, manifest.height);

    IncomingTiles tiles(file.subspan(checkedSize(blobOffset)), grid.count());
    const std::vector<Placement> placements = placementsOf(manifest.layers, tiles);
    for (const Placement& place : placements) tiles.place(place.tile);
    tiles.decode();

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

} // namespace qirn
