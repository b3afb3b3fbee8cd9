#include "formats/psd/PackBits.h"

#include "formats/common/ByteReader.h"
#include "platform/Bytes.h"
#include "platform/CheckedMath.h"
#include "platform/Require.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace qirn {

namespace {

constexpr std::size_t kLongestStep = 128;    // bytes of one run or one literal stretch
constexpr int64_t kRoomyStep = kLongestStep; // blocks fill it exactly
constexpr std::size_t kLongestMask = 32768;
constexpr std::size_t kCopiedAtOnce = PSDFile::kPackingSlack;

/// A bit for each byte of a row, set where the next byte is equal: runs are then found 64 bytes at a time. The bit of
/// the last byte is 0.
class EqualNeighbors {
public:
    explicit EqualNeighbors(std::span<const uint8_t> row) {
        const std::size_t pairs = row.size() - 1;
        std::size_t word = 0;
        for (; word * 64 + 64 <= pairs; ++word) words_[word] = equal64(row.data() + word * 64);
        uint64_t rest = 0;
        for (std::size_t i = word * 64; i < pairs; ++i) rest |= uint64_t{row[i] == row[i + 1]} << (i % 64);
        words_[word] = rest;
        words_[word + 1] = 0; // read but not used
    }

    /// The bits of 64 bytes from any byte on; those beyond the row are 0.
    uint64_t from(std::size_t at) const {
        const std::size_t word = at / 64, bit = at % 64;
        // Two shifts, since a shift by 64 is undefined.
        return words_[word] >> bit | words_[word + 1] << 1 << (63 - bit);
    }

private:
    /// Bit i: byte i equals byte i + 1.
#ifdef __SSE2__
    static uint64_t equal64(const uint8_t* bytes) {
        uint64_t bits = 0;
        for (int i = 0; i < 64; i += 16) {
            const auto load = [&](int at) {
                return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + at));
            };
            const int equal = _mm_movemask_epi8(_mm_cmpeq_epi8(load(i), load(i + 1)));
            bits |= static_cast<uint64_t>(static_cast<uint32_t>(equal)) << i;
        }
        return bits;
    }
#else
    static uint64_t equal64(const uint8_t* bytes) {
        uint64_t bits = 0;
        for (int i = 0; i < 64; i += 8) bits |= equal8(bytes + i) << i;
        return bits;
    }
    static uint64_t equal8(const uint8_t* bytes) {
        uint64_t these = 0, next = 0;
        std::memcpy(&these, bytes, 8);
        std::memcpy(&next, bytes + 1, 8);
        uint64_t difference = these ^ next;
        if constexpr (std::endian::native == std::endian::big) difference = __builtin_bswap64(difference);
        // The top bit of every byte that is not 0, then those eight bits brought together.
        constexpr uint64_t kLow7 = 0x7F7F7F7F7F7F7F7F;
        const uint64_t equal = ~(((difference & kLow7) + kLow7) | difference) & ~kLow7;
        return (equal >> 7) * 0x0102040810204080 >> 56;
    }
#endif

    std::array<uint64_t, kLongestMask / 64 + 2> words_;
};

/// How many of the equal bytes at `at` make one run.
std::size_t runAt(const EqualNeighbors& equal, std::size_t at) {
    std::size_t run = 1;
    while (run < kLongestStep) {
        const auto more = static_cast<std::size_t>(std::countr_one(equal.from(at + run - 1)));
        run += more;
        if (more < 64) break;
    }
    return std::min(run, kLongestStep);
}

/// Where three equal bytes begin, as bits; the last bit cannot tell.
uint64_t triplesOf(uint64_t pairs) {
    return pairs & (pairs >> 1);
}

/// How many bytes from `at` on come before three equal ones; `left` bytes are there.
std::size_t literalsAt(const EqualNeighbors& equal, std::size_t at, std::size_t left) {
    const std::size_t most = std::min(left, kLongestStep);
    for (std::size_t count = 0; count < most; count += 63) {
        if (const uint64_t triples = triplesOf(equal.from(at + count)))
            return std::min(most, count + static_cast<std::size_t>(std::countr_zero(triples)));
    }
    return most;
}

uint8_t* writeRun(uint8_t byte, std::size_t count, uint8_t* out) {
    *out++ = static_cast<uint8_t>(1 - static_cast<int>(count));
    *out++ = byte;
    return out;
}

uint8_t* writeLiterals(const uint8_t* bytes, std::size_t count, uint8_t* out) {
    *out++ = static_cast<uint8_t>(count - 1);
    std::memcpy(out, bytes, count);
    return out + count;
}

/// The same for bytes of which 128 can be read: whole blocks, as most stretches are shorter than one.
uint8_t* writeLiteralsByBlocks(const uint8_t* bytes, std::size_t count, uint8_t* out) {
    *out++ = static_cast<uint8_t>(count - 1);
    for (std::size_t at = 0; at < count; at += kCopiedAtOnce)
        std::memcpy(out + at, bytes + at, kCopiedAtOnce);
    return out + count;
}

void copyStep(uint8_t* out, const uint8_t* in, int64_t count, bool isRun) {
    if (isRun) {
        std::memset(out, *in, checkedSize(count));
    } else {
        std::memcpy(out, in, checkedSize(count));
    }
}

/// The same where a whole step could be read and written. Up to a block less one byte is written behind it.
void copyByBlocks(uint8_t* out, const uint8_t* in, int64_t count, bool isRun) {
    for (int64_t at = 0; at < count; at += kCopiedAtOnce) {
        if (isRun) {
            std::memset(out + at, *in, kCopiedAtOnce);
        } else {
            std::memcpy(out + at, in + at, kCopiedAtOnce);
        }
    }
}

/// A row of equal bytes.
uint8_t* packFlat(uint8_t byte, std::size_t n, uint8_t* out) {
    for (; n > kLongestStep; n -= kLongestStep) out = writeRun(byte, kLongestStep, out);
    return n > 1 ? writeRun(byte, n, out) : writeLiterals(&byte, 1, out);
}

} // namespace

uint8_t* PSDFile::packBits(std::span<const uint8_t> row, uint8_t* out) {
    const std::size_t n = row.size();
    if (n == 0 || n > kLongestMask) return packBitsPlainly(row, out);
    const uint8_t* const bytes = row.data();
    if (allAlike(bytes, static_cast<int64_t>(n))) return packFlat(bytes[0], n, out);
    const EqualNeighbors equal(row);
    const std::size_t roomy =
        n - std::min(n, kLongestStep); // up to here whole blocks may be read and written
    for (std::size_t i = 0; i < n;) {
        // The common step, without unpredictable branches: literals, often none, and the run behind them, as far as
        // 64 bits show.
        uint64_t pairs = equal.from(i);
        std::size_t known = 64; // of the pairs
        while (i < roomy) {
            const uint64_t runs = triplesOf(pairs) | (pairs & 1);
            if (runs == 0) break;
            const auto literals = static_cast<std::size_t>(std::countr_zero(runs));
            const auto more = static_cast<std::size_t>(std::countr_one(pairs >> literals));
            if (literals + more >= known) break;
            *out = static_cast<uint8_t>(literals - 1);
            std::memcpy(out + 1, bytes + i, kCopiedAtOnce);
            for (std::size_t at = kCopiedAtOnce; at < literals; at += kCopiedAtOnce)
                std::memcpy(out + 1 + at, bytes + i + at, kCopiedAtOnce);
            out += literals + (literals != 0);
            i += literals;
            out = writeRun(bytes[i], more + 1, out);
            i += more + 1;
            known -= literals + more + 1;
            pairs = pairs >> literals >> more >> 1;
        }
        if (known < 64 || i == n) continue;
        if (pairs & 1) {
            const std::size_t run = runAt(equal, i);
            out = writeRun(bytes[i], run, out);
            i += run;
        } else {
            const std::size_t count = literalsAt(equal, i, n - i);
            out = i < roomy ? writeLiteralsByBlocks(bytes + i, count, out)
                            : writeLiterals(bytes + i, count, out);
            i += count;
        }
    }
    return out;
}

uint8_t* PSDFile::packBitsPlainly(std::span<const uint8_t> row, uint8_t* out) {
    const std::size_t n = row.size();
    for (std::size_t i = 0; i < n;) {
        std::size_t count = 1;
        while (count < kLongestStep && i + count < n && row[i + count] == row[i]) ++count;
        if (count > 1) {
            out = writeRun(row[i], count, out);
        } else {
            const auto threeEqual = [&](std::size_t at) {
                return at + 2 < n && row[at] == row[at + 1] && row[at] == row[at + 2];
            };
            while (count < kLongestStep && i + count < n && !threeEqual(i + count)) ++count;
            out = writeLiterals(row.data() + i, count, out);
        }
        i += count;
    }
    return out;
}

std::size_t PSDFile::unpackPart(std::span<const uint8_t> packed, int64_t expected, int64_t from,
                                std::span<uint8_t> part) {
    const auto length = static_cast<int64_t>(part.size());
    require(from >= 0 && from + length <= expected);
    const uint8_t* in = packed.data();
    const uint8_t* const end = in + packed.size();
    int64_t at = -from; // in `part`
    const int64_t rowEnd = expected - from;
    while (in < end && at < rowEnd) {
        const auto step = static_cast<int8_t>(*in++);
        if (step == -128) continue;
        const bool isRun = step < 0;
        const int64_t count = isRun ? 1 - step : step + 1;
        if (end - in < (isRun ? 1 : count)) throw BEReader::Short();
        if (at >= 0 && length - at >= kRoomyStep && end - in >= kRoomyStep) {
            copyByBlocks(part.data() + at, in, count, isRun);
        } else {
            const int64_t first = std::max<int64_t>(at, 0), last = std::min(at + count, length);
            if (first < last)
                copyStep(part.data() + first, in + (isRun ? 0 : first - at), last - first, isRun);
        }
        in += isRun ? 1 : count;
        at += count;
    }
    const int64_t reach = std::clamp<int64_t>(at, 0, length);
    std::fill_n(part.begin() + reach, std::min<int64_t>(kCopiedAtOnce, length - reach), uint8_t{0});
    return checkedSize(reach);
}

void PSDFile::unpackBits(std::span<const uint8_t> packed, std::span<uint8_t> row) {
    const std::size_t reach = unpackPart(packed, static_cast<int64_t>(row.size()), 0, row);
    std::fill(row.begin() + static_cast<std::ptrdiff_t>(reach), row.end(), uint8_t{0});
}

PSDFile::PackedRows PSDFile::rle(std::span<const uint8_t> plane, int64_t w, int64_t h) {
    require(w >= 0 && h >= 0 && static_cast<int64_t>(plane.size()) == w * h);
    const auto width = checkedSize(w);
    PackedRows packed;
    std::vector<uint8_t> row(packedRoom(width));
    for (std::size_t y = 0; y < checkedSize(h); ++y) {
        const uint8_t* end = packBits(plane.subspan(y * width, width), row.data());
        packed.counts.push_back(static_cast<uint16_t>(end - row.data()));
        packed.data.insert(packed.data.end(), std::as_const(row).data(), end);
    }
    return packed;
}

} // namespace qirn
