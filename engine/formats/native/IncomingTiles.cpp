#include "formats/native/IncomingTiles.h"

#include "formats/native/TileCodec.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <atomic>
#include <cstring>
#include <functional>
#include <memory>
#include <string_view>

namespace qirn {

using namespace PaintFile;

namespace {

constexpr std::size_t kShortStream = 4096; // bytes; a flat tile takes about 300

std::string_view contentOf(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

} // namespace

bool IncomingTiles::Source::isShort() const {
    return bytes.size() <= kShortStream;
}

bool IncomingTiles::Source::operator==(const Source& other) const {
    if (coding != other.coding || checksum != other.checksum || bytes.size() != other.bytes.size())
        return false;
    if (bytes.data() == other.bytes.data()) return true;
    return isShort() && contentOf(bytes) == contentOf(other.bytes);
}

std::size_t IncomingTiles::SourceHash::operator()(const Source& source) const {
    if (source.isShort()) return std::hash<std::string_view>()(contentOf(source.bytes));
    // Offset and length: a file may name a thousand lengths at one offset.
    return std::hash<const void*>()(source.bytes.data()) + source.bytes.size() * 0x9E3779B97F4A7C15u;
}

std::optional<std::size_t> IncomingTiles::add(const TileEntry& entry) {
    const auto bytes = storedBytes(blob_, entry);
    if (entry.i < 0 || entry.i >= slots_ || !bytes) {
        refusal_ = PaintFileError::damagedTile(entry.i, "");
        return std::nullopt;
    }
    if (entry.c != kCodingLzfse && entry.n != kTileBytes) {
        refusal_ = PaintFileError::damagedTile(entry.i, " length");
        return std::nullopt;
    }
    const int64_t coding = entry.c == kCodingLzfse ? kCodingLzfse : kCodingRaw;
    const Source source{*bytes, coding, entry.k};
    const auto [found, isNew] = known_.try_emplace(source, tiles_.size());
    if (isNew) tiles_.push_back({source, entry.i});
    return found->second;
}

void IncomingTiles::decode(const Progress& progress) {
    std::vector<TileDecoder> decoders(checkedSize(concurrency()));
    std::atomic<std::size_t> firstDamaged = tiles_.size();
    const auto decodeUnlessDamaged = [this, &decoders, &firstDamaged](std::size_t worker, int64_t index) {
        const auto i = checkedSize(index);
        if (i > firstDamaged.load(std::memory_order_relaxed)) return; // an earlier one is reported
        decodeOne(tiles_[i], decoders[worker]);
        if (!tiles_[i].isDamaged) return;
        std::size_t before = firstDamaged;
        while (i < before && !firstDamaged.compare_exchange_weak(before, i)) {}
    };
    concurrentPerformByWorkers(std::ssize(decoders), std::ssize(tiles_), decodeUnlessDamaged, progress);
    if (firstDamaged < tiles_.size())
        throw PaintFileError::damagedTile(tiles_[firstDamaged].firstSlot, " data");
    if (refusal_) throw *refusal_;
}

void IncomingTiles::decodeWhatCanBe(const Progress& progress) {
    std::vector<TileDecoder> decoders(checkedSize(concurrency()));
    const auto decodeOneOf = [this, &decoders](std::size_t worker, int64_t index) {
        decodeOne(tiles_[checkedSize(index)], decoders[worker]);
    };
    concurrentPerformByWorkers(std::ssize(decoders), std::ssize(tiles_), decodeOneOf, progress);
}

void IncomingTiles::decodeOne(Incoming& incoming, TileDecoder& decoder) {
    if (!matches(incoming.source.bytes, incoming.source.checksum)) {
        incoming.isDamaged = true;
        return;
    }
    TileRef tile;
    if (incoming.source.coding == kCodingLzfse) {
        tile = decoder.decode(incoming.source.bytes);
        incoming.isDamaged = !tile;
    } else if (incoming.isPlaced) {
        BlockPool::Block pixels = BlockPool::take();
        std::memcpy(pixels.get(), incoming.source.bytes.data(), kTileBytes);
        tile = std::make_shared<Tile>(std::move(pixels));
    }
    if (!tile || !incoming.isPlaced) return;
    tile->freeze(); // several slots may share it
    incoming.tile = std::move(tile);
}

} // namespace qirn
