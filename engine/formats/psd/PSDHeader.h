#pragma once
#include "formats/common/ByteReader.h"
#include "formats/common/PrintDensity.h"

#include <cstdint>
#include <optional>
#include <span>

namespace qirn {

enum class PSDColorMode : uint16_t {
    bitmap = 0,
    gray = 1,
    indexed = 2,
    rgb = 3,
    cmyk = 4,
    multichannel = 7,
    duotone = 8,
    lab = 9,
};

/// How a Photoshop file begins:
///
///     "8BPS"     or it is none
///     u16        version: 1, or 2 for a large one (PSB), whose lengths take eight bytes
///     6 bytes    zero
///     u16        channels of the merged picture, saved ones included
///     u32, u32   height, width
///     u16, u16   bits a sample, color mode
struct PSDHeader {
    bool isLarge = false;
    int channels = 0;
    int64_t height = 0; ///< As it stands in the file, as all here.
    int64_t width = 0;
    int depth = 0;
    PSDColorMode mode = PSDColorMode::rgb;
};

/// By the first four bytes, whatever follows.
bool isPhotoshopFile(std::span<const uint8_t> file);

/// Reads the header at the start of a file; nothing where it is of another kind or version. Throws BEReader::Short.
std::optional<PSDHeader> readPSDHeader(BEReader& in);

/// What the image resources say that is of use here. The spans borrow the file's bytes.
struct PSDResources {
    static constexpr uint16_t kResolution = 1005;

    double dpi = kUnknownDpi;
    std::span<const uint8_t> profile;    ///< ICC, perhaps broken; empty when there is none.
    std::optional<int> transparentIndex; ///< Indexed: the entry that stands for no color.
    bool listsAlphas = false;            ///< The extra channels are described,
    bool namesTransparency = false;      ///< and one of them is the picture's transparency.
    /// False where the writer left the merged picture blank to make the file smaller.
    bool hasMergedPicture = true;
};

/// Reads the section of image resources, which begins with its length: blocks of "8BIM", u16 identifier, a name with its
/// length in a byte, filled up to an even number of bytes, u32 size, and so many bytes, filled up likewise. Goes on until
/// the first block that makes no sense; one too short for its content counts as missing. Throws BEReader::Short where the
/// section does not end within the file.
PSDResources readPSDResources(BEReader& in);

/// The head of a block of additional information, in a layer's record or behind all layers: "8BIM" or "8B64", a key of
/// four letters, a length and so many bytes.
struct PSDBlock {
    std::string_view key;
    int64_t size; ///< May be more than there is.
};

/// Reads the head of the block at `at` and leaves the reader at its data; nothing where none begins there, or nothing fits
/// before `end`. In large files some keys have a length of eight bytes. Throws BEReader::Short.
std::optional<PSDBlock> readPSDBlock(BEReader& in, int64_t at, int64_t end, bool isLarge);

} // namespace qirn
