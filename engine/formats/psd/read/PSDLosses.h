#pragma once
#include "formats/common/ImportRemarks.h"

#include <cstdint>
#include <set>
#include <span>
#include <string_view>

namespace qirn::PSDFile {

/// Features of a layered file that are lost when it is read.
enum class Loss {
    masks,
    layerEffects,
    fillOpacity,
    adjustmentLayers,
    fillLayers,
    blendModes, ///< Unknown ones, read as normal.
    blendingRanges,
    hiddenGroups,  ///< Their layers show.
    groupBlending, ///< Opacity or mode.
    colorProfile,  ///< Another one than sRGB.
};
using Losses = std::set<Loss>;

ImportRemarks remarksOf(const Losses& losses);

/// The losses that follow from the data of a layer's mask, of its blending ranges, of a block behind its name, and
/// from the profile of a file. Data that do not change the picture are no loss, nor are data that end too early.
Losses lossesOfMask(std::span<const uint8_t> data);
Losses lossesOfRanges(std::span<const uint8_t> data);
Losses lossesOfBlock(std::string_view key, std::span<const uint8_t> data);
Losses lossesOfProfile(std::span<const uint8_t> icc);

} // namespace qirn::PSDFile
