#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Run-length code of Photoshop's rows: a signed byte n, then n + 1 bytes as they are (n >= 0), or one byte that
/// stands 1 - n times (n < 0; -128 stands for nothing).
namespace qirn::PSDFile {

inline constexpr std::size_t kPackingSlack = 16;

/// Size of the buffer into which a row of so many bytes is packed. The packed row never uses the last `kPackingSlack`
/// bytes, which are overwritten with rubbish.
constexpr std::size_t packedRoom(std::size_t count) {
    return count + (count + 127) / 128 + kPackingSlack;
}

/// Writes the packed row to `out`, where `packedRoom` is; returns the end of it.
uint8_t* packBits(std::span<const uint8_t> row, uint8_t* out);
/// The same result by plain code: the reference for the function above, for rows of any length.
uint8_t* packBitsPlainly(std::span<const uint8_t> row, uint8_t* out);

/// Unpacks a row. Missing bytes become zeros, and packed bytes beyond the row are ignored. Throws BEReader::Short
/// when they end within a step that the row still needs.
void unpackBits(std::span<const uint8_t> packed, std::span<uint8_t> row);

/// A row of `expected` bytes of which only a part is wanted, from byte `from` on: writes `part` as far as the packed
/// bytes reach, returns how many bytes that is, and leaves the others as they are or 0. Walks the whole row, and throws
/// as above.
std::size_t unpackPart(std::span<const uint8_t> packed, int64_t expected, int64_t from,
                       std::span<uint8_t> part);

/// The rows of a plane, packed one by one.
struct PackedRows {
    std::vector<uint16_t> counts; ///< Packed bytes of each row.
    std::vector<uint8_t> data;    ///< All rows, one after the other.
};
PackedRows rle(std::span<const uint8_t> plane, int64_t w, int64_t h);

} // namespace qirn::PSDFile
