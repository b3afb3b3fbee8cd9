#pragma once
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

/// What a Photoshop file says of itself up to its merged picture, in every colour mode and depth and in both the
/// plain and the large (PSB) layout. The spans borrow the file's bytes.
struct PSDSections {
    bool isLarge = false; ///< Version 2: longer length fields.
    int channels = 0;     ///< Of the merged picture, saved channels included.
    int64_t width = 0;
    int64_t height = 0;
    int depth = 0; ///< Bits a sample: 1, 8, 16 or 32.
    PSDColorMode mode = PSDColorMode::rgb;

    std::span<const uint8_t>
        colorTable; ///< Indexed: 256 reds, then greens, then blues; otherwise of no use here.
    double dpi = 72;
    std::span<const uint8_t> profile;    ///< ICC, perhaps broken; empty when there is none.
    std::optional<int> transparentIndex; ///< Indexed: the entry that stands for no colour.

    bool hasLayers = false;
    /// False where the writer left the merged picture blank to make the file smaller.
    bool hasMergedPicture = true;
    /// The first channel behind the colours is the picture's transparency, not a channel that the user saved.
    bool hasAlpha = false;

    std::span<const uint8_t> mergedPicture; ///< From the compression code to the end of the file.
};

/// Sizes are given back as they stand in the file. Throws BEReader::Short where the bytes end too early; nothing
/// for what is no Photoshop file, or one in a colour mode or depth that is not among the above.
std::optional<PSDSections> psdSectionsOf(std::span<const uint8_t> file);

/// How many channels make up a colour; in multichannel files as many inks as are shown.
int colorChannelsOf(const PSDSections& sections);

} // namespace qirn
