#include "formats/TileCodec.h"

#include <algorithm>
#include <cstring>

#include <lzfse.h>

namespace qirn {

namespace {

constexpr std::size_t kStreamCapacity =
    0x41000; // a stream that is no gain may be a little longer than a tile
// The decoder reads a few bytes beyond both ends of what it is given when a stream is malformed.
constexpr std::size_t kGuardBytes = 64;
// No stream of a tile is nearly as long; an entry that claims more is not copied for nothing.
constexpr std::size_t kLongestStream = 4 * std::size_t{kTileBytes};

} // namespace

TileEncoder::TileEncoder() : stream_(kStreamCapacity), workspace_(lzfse_encode_scratch_size()) {}

std::shared_ptr<const StoredForm> TileEncoder::encode(const Tile& tile) {
    using Coding = StoredForm::Coding;
    const auto form = [](Coding coding, std::vector<uint8_t> bytes = {}) {
        return std::make_shared<const StoredForm>(coding, std::move(bytes));
    };
    if (tile.isEmpty()) return form(Coding::blank);
    const std::size_t length =
        lzfse_encode_buffer(stream_.data(), stream_.size(), tile.pixels(), kTileBytes, workspace_.data());
    if (length < 1 || length >= kTileBytes) return form(Coding::raw);
    return form(Coding::lzfse, std::vector<uint8_t>(stream_.data(), stream_.data() + length));
}

TileDecoder::TileDecoder() : pixels_(kTileBytes + 2 * kGuardBytes), workspace_(lzfse_decode_scratch_size()) {}

TileRef TileDecoder::decode(std::span<const uint8_t> stream) {
    const std::size_t length = std::min(stream.size(), kLongestStream);
    stream_.assign(length + 2 * kGuardBytes, 0);
    std::memcpy(stream_.data() + kGuardBytes, stream.data(), length);
    uint8_t* pixels = pixels_.data() + kGuardBytes;
    const std::size_t decoded =
        lzfse_decode_buffer(pixels, kTileBytes, stream_.data() + kGuardBytes, length, workspace_.data());
    if (decoded != kTileBytes) return nullptr;
    auto tile = std::make_shared<Tile>();
    std::memcpy(tile->writablePixels(), pixels, kTileBytes);
    return tile;
}

} // namespace qirn
