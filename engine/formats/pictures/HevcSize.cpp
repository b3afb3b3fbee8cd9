#include "formats/pictures/HevcSize.h"

#include "formats/common/ByteReader.h"

#include <algorithm>
#include <array>
#include <vector>

namespace qirn {

namespace {

constexpr std::array<uint8_t, 4> kBoxName{'h', 'v', 'c', 'C'};
constexpr int64_t kConfigurationBytes = 22; // before the number of arrays
constexpr uint8_t kSequenceParameters = 33; // a kind of unit
constexpr int64_t kUnitHeaderBytes = 2;

/// Reads the bits of a unit, highest first. Past the end it returns zeros and sets a flag.
class BitReader {
public:
    explicit BitReader(std::span<const uint8_t> unit) {
        // Skips emulation prevention bytes: a 3 behind two zeros is no data.
        int zeros = 0;
        for (const uint8_t byte : unit) {
            const bool isFiller = zeros >= 2 && byte == 3;
            if (!isFiller) bytes_.push_back(byte);
            zeros = byte == 0 ? zeros + 1 : 0;
        }
    }

    uint32_t bits(int count) {
        uint32_t value = 0;
        for (int i = 0; i < count; ++i, ++pos_) {
            const std::size_t byte = pos_ / 8;
            const uint32_t bit = byte < bytes_.size() ? bytes_[byte] >> (7 - pos_ % 8) & 1u : 0;
            value = value << 1 | bit;
        }
        return value;
    }
    void skip(std::size_t count) { pos_ += count; }
    /// Exponential Golomb code: as many zeros as bits follow the first 1. 0 for a number of more than 31 bits.
    uint32_t expGolomb() {
        int zeros = 0;
        while (zeros < 32 && bits(1) == 0) ++zeros;
        return zeros < 32 ? (1u << zeros) - 1 + bits(zeros) : 0;
    }
    bool isPastEnd() const { return pos_ > bytes_.size() * 8; }

private:
    std::vector<uint8_t> bytes_;
    std::size_t pos_ = 0;
};

/// Of a sequence parameter set, its header of two bytes left out.
HevcSize sizeIn(std::span<const uint8_t> unit) {
    BitReader in(unit);
    in.skip(4); // which video parameters
    const uint32_t subLayers = in.bits(3);
    in.skip(1 + 88 + 8); // nesting; profile; level
    std::array<bool, 8> hasProfile{};
    std::array<bool, 8> hasLevel{};
    for (uint32_t i = 0; i < subLayers; ++i) {
        hasProfile[i] = in.bits(1) != 0;
        hasLevel[i] = in.bits(1) != 0;
    }
    if (subLayers > 0) in.skip(2 * (8 - subLayers));
    for (uint32_t i = 0; i < subLayers; ++i) in.skip((hasProfile[i] ? 88u : 0u) + (hasLevel[i] ? 8u : 0u));
    in.expGolomb(); // which set this is
    if (in.expGolomb() == 3) in.skip(1);
    HevcSize size;
    size.width = in.expGolomb();
    size.height = in.expGolomb();
    return in.isPastEnd() ? HevcSize() : size;
}

HevcSize sizeInBox(std::span<const uint8_t> box) {
    HevcSize largest;
    try {
        BEReader in(box);
        in.skip(kConfigurationBytes);
        const int arrays = in.u8();
        for (int a = 0; a < arrays; ++a) {
            const uint8_t kind = in.u8() & 0x3F;
            const int units = in.u16();
            for (int u = 0; u < units; ++u) {
                const auto unit = in.slice(in.u16());
                if (kind != kSequenceParameters || unit.size() < kUnitHeaderBytes) continue;
                const HevcSize size = sizeIn(unit.subspan(kUnitHeaderBytes));
                if (size.width * size.height > largest.width * largest.height) largest = size;
            }
        }
    } catch (const BEReader::Short&) { // what was there counts
    }
    return largest;
}

} // namespace

HevcSize largestHevcSize(std::span<const uint8_t> file) {
    HevcSize largest;
    for (auto at = file.begin();;) {
        at = std::search(at, file.end(), kBoxName.begin(), kBoxName.end());
        if (at == file.end()) return largest;
        at += kBoxName.size();
        const HevcSize size = sizeInBox({at, file.end()});
        if (size.width * size.height > largest.width * largest.height) largest = size;
    }
}

} // namespace qirn
