#pragma once
#include "core/IRect.h"
#include "core/PaintColor.h"
#include "platform/BlockPool.h"
#include "platform/Require.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace qirn {

inline constexpr int kTileSize = 256;                     // pixels on a side
inline constexpr int kTileRowBytes = kTileSize * 4;       // bytes from one row to the next
inline constexpr int kTilePixels = kTileSize * kTileSize; // pixels in a tile
inline constexpr int kTileBytes = kTilePixels * 4;        // bytes in a tile
static_assert(kTileBytes == BlockPool::kBlockBytes);

/// Bytes from the start of a tile to a pixel in it, told by its place in the tile or on the canvas.
constexpr int64_t placeInTile(int64_t x, int64_t y) {
    return y % kTileSize * kTileRowBytes + x % kTileSize * 4;
}

/// Whether any of neighboring pixels has an alpha other than 0.
bool hasAlpha(const uint8_t* pixels, int64_t count);
/// Gives every pixel in a part of a tile one value; `part` is in the tile's own pixels.
void fillPixels(uint8_t* tilePixels, const IRect& part, const PixelBytes& pixel);

class StoredForm;

/// 256 x 256 pixels of one layer: premultiplied 8-bit sRGB RGBA, top row first, 1024 bytes a row.
///
/// A tile has no position; its slot in a layer is its place. A tile at the right or bottom edge is full size,
/// only its part inside the canvas counts. Layers, undo states and snapshots share tiles by reference. A frozen
/// tile is immutable and may be read from any thread.
class Tile {
public:
    Tile();                                 ///< Transparent, not frozen.
    explicit Tile(const Tile& other);       ///< The other tile's pixels, not frozen.
    explicit Tile(BlockPool::Block filled); ///< Takes the block with its pixels; not frozen.
    Tile& operator=(const Tile&) = delete;
    ~Tile();

    bool isEmpty() const; ///< Every alpha is 0; color bytes are not looked at.
    /// The pixel that all pixels equal; nothing where they differ.
    std::optional<PixelBytes> onlyPixel() const;
    bool isFrozen() const { return frozen_; }
    const uint8_t* pixels() const { return pixels_.get(); }
    const uint8_t* row(int64_t y) const { return pixels() + y * kTileRowBytes; }
    std::span<const uint8_t> bytes() const { return {pixels_.get(), kTileBytes}; }

    /// The pixels for writing; stops the process on a frozen tile.
    uint8_t* writablePixels() {
        require(!frozen_);
        return pixels_.get();
    }
    uint8_t* writableRow(int64_t y) { return writablePixels() + y * kTileRowBytes; }
    /// Called by whoever makes a second reference to the tile; nothing undoes it.
    void freeze() {
        if (!frozen_) frozen_ = true; // no write if it is set already: other threads may be reading it
    }

    /// The cached encoding of a frozen tile, or null. Any thread may read and set it.
    std::shared_ptr<const StoredForm> storedForm() const { return storedForm_.load(); }
    void remember(std::shared_ptr<const StoredForm> form) const;

private:
    BlockPool::Block pixels_; // kTileBytes, page-aligned
    mutable std::atomic<std::shared_ptr<const StoredForm>> storedForm_;
    bool frozen_ = false;
};

using TileRef = std::shared_ptr<Tile>;

} // namespace qirn
