#include "formats/native/TileCodec.h"

#include "formats/native/PaintFileManifest.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include <lzfse.h>

namespace qirn {

namespace {

constexpr std::size_t kStreamCapacity =
    0x41000; // an incompressible tile gives a stream that is slightly longer
// The decoder reads a few bytes beyond both ends of a malformed stream; what it writes stays within the tile.
constexpr std::size_t kGuardBytes = 64;
// No valid stream of a tile is this long; a longer one is refused before it is copied.
constexpr std::size_t kLongestStream = 4 * std::size_t{kTileBytes};

} // namespace

TileEncoder::TileEncoder()
    : stream_(std::make_unique_for_overwrite<uint8_t[]>(kStreamCapacity)),
      workspace_(std::make_unique_for_overwrite<uint8_t[]>(lzfse_encode_scratch_size())) {}

std::shared_ptr<const StoredForm> TileEncoder::encode(const Tile& tile) {
    using Coding = StoredForm::Coding;
    if (tile.isEmpty()) return std::make_shared<const StoredForm>(Coding::blank, std::vector<uint8_t>(), 0);
    const std::size_t length =
        lzfse_encode_buffer(stream_.get(), kStreamCapacity, tile.pixels(), kTileBytes, workspace_.get());
    if (length < 1 || length >= kTileBytes)
        return std::make_shared<const StoredForm>(Coding::raw, std::vector<uint8_t>(),
                                                  PaintFile::checksumOf(tile.bytes()));
    std::vector<uint8_t> stream(stream_.get(), stream_.get() + length);
    const int64_t checksum = PaintFile::checksumOf(stream);
    return std::make_shared<const StoredForm>(Coding::lzfse, std::move(stream), checksum);
}

TileDecoder::TileDecoder()
    : workspace_(std::make_unique_for_overwrite<uint8_t[]>(lzfse_decode_scratch_size())) {}

TileRef TileDecoder::decode(std::span<const uint8_t> stream) {
    const std::size_t length = std::min(stream.size(), kLongestStream);
    if (!stream_ || length > capacity_) {
        capacity_ = std::max<std::size_t>(length, kTileBytes);
        stream_ = std::make_unique_for_overwrite<uint8_t[]>(capacity_ + 2 * kGuardBytes);
        std::memset(stream_.get(), 0, kGuardBytes);
    }
    uint8_t* const in = stream_.get() + kGuardBytes;
    std::memcpy(in, stream.data(), length);
    std::memset(in + length, 0, kGuardBytes);
    BlockPool::Block pixels = BlockPool::take();
    if (lzfse_decode_buffer(pixels.get(), kTileBytes, in, length, workspace_.get()) != kTileBytes)
        return nullptr;
    return std::make_shared<Tile>(std::move(pixels));
}

} // namespace qirn
