#pragma once
#include "core/StoredForm.h"
#include "core/Tile.h"

#include <cstdint>
#include <memory>
#include <span>

namespace qirn {

// A tile's bytes as a stream of the public LZFSE format. Both directions keep their working memory from call to
// call; an object serves one thread at a time.

class TileEncoder {
public:
    TileEncoder();
    /// Blank for a tile without alpha, raw where the stream would not be smaller than the tile's own bytes.
    std::shared_ptr<const StoredForm> encode(const Tile& tile);

private:
    std::unique_ptr<uint8_t[]> stream_;
    std::unique_ptr<uint8_t[]> workspace_;
};

class TileDecoder {
public:
    TileDecoder();
    /// A tile of the stream's first `kTileBytes` bytes, not frozen; null when it is damaged or holds fewer. What
    /// stands behind the stream's end mark is not looked at.
    TileRef decode(std::span<const uint8_t> stream);

private:
    std::unique_ptr<uint8_t[]> stream_; // with guards around it
    std::size_t capacity_ = 0;          // of the stream alone
    std::unique_ptr<uint8_t[]> workspace_;
};

} // namespace qirn
