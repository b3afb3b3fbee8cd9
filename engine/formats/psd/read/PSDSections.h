#pragma once
#include "formats/psd/PSDHeader.h"

#include <cstdint>
#include <optional>
#include <span>

namespace qirn {

/// What a Photoshop file says of itself up to its merged picture, in every color mode and depth and in both the
/// plain and the large (PSB) layout. The spans borrow the file's bytes.
struct PSDSections {
    PSDHeader header;
    /// Indexed: 256 reds, then greens, then blues; otherwise of no use here.
    std::span<const uint8_t> colorTable = {};
    PSDResources resources = {};

    bool hasLayers = false;
    /// The first channel behind the colors is the picture's transparency, not a channel that the user saved.
    bool hasAlpha = false;

    std::span<const uint8_t> mergedPicture = {}; ///< From the compression code to the end of the file.
};

/// Sizes are given back as they stand in the file. Throws BEReader::Short where the bytes end too early; nothing
/// for what is no Photoshop file, or one in a color mode or depth that is not among the above.
std::optional<PSDSections> psdSectionsOf(std::span<const uint8_t> file);

/// How many channels make up a color; in multichannel files as many inks as are shown.
int colorChannelsOf(const PSDHeader& header);

} // namespace qirn
