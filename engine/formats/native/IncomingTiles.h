#pragma once
#include "core/Tile.h"
#include "formats/common/FormatErrors.h"
#include "formats/native/PaintFileManifest.h"
#include "platform/Progress.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace qirn {

class TileDecoder;

/// The tiles of a file, each decoded once and shared by all entries with the same bytes. Entries are added in the
/// order of the file. Streams are decoded later and in parallel; the first damaged entry in the order of the file is
/// reported.
class IncomingTiles {
public:
    /// Borrows what lies behind the manifest. `slots` is how many tiles a layer can have.
    IncomingTiles(std::span<const uint8_t> blob, int64_t slots) : blob_(blob), slots_(slots) {}

    /// The index of the entry's tile; nothing for an entry whose numbers are invalid.
    std::optional<std::size_t> add(const PaintFile::TileEntry& entry);
    /// The picture uses the tile. One that it does not use, since a later entry of the same slot replaces each of its
    /// entries, is only checked: a slot that a file fills a thousand times holds one tile.
    void place(std::size_t which) { tiles_[which].isPlaced = true; }
    /// Throws PaintFileError for the first damaged entry of all that were added.
    void decode(const Progress& progress);
    /// The same, but leaves those that are damaged null.
    void decodeWhatCanBe(const Progress& progress);

    const TileRef& operator[](std::size_t which) const { return tiles_[which].tile; }

private:
    /// A tile's bytes in the file. Short streams are compared by content, so that a flat background of ten thousand slots
    /// becomes one shared tile again; long ones by offset, which costs nothing.
    struct Source {
        std::span<const uint8_t> bytes;
        int64_t coding;
        std::optional<int64_t> checksum;

        bool isShort() const;
        bool operator==(const Source& other) const;
    };
    struct SourceHash {
        std::size_t operator()(const Source& source) const;
    };
    struct Incoming {
        Source source;
        int64_t firstSlot; // of the first entry, by which damage is reported
        bool isPlaced = false;
        bool isDamaged = false; // once decoded
        TileRef tile{};         // null until decoded, and where it is not placed
    };

    static void decodeOne(Incoming& incoming, TileDecoder& decoder);

    std::span<const uint8_t> blob_;
    int64_t slots_;
    std::vector<Incoming> tiles_; // in order of their first entries
    std::unordered_map<Source, std::size_t, SourceHash> known_;
    std::optional<PaintFileError> refusal_;
};

} // namespace qirn
