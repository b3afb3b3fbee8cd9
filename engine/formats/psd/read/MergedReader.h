#pragma once
#include "formats/common/DecodedPicture.h"
#include "formats/common/ImportRemarks.h"
#include "platform/Progress.h"

#include <cstdint>
#include <optional>
#include <span>

/// The merged picture that a Photoshop file keeps beside its layers, for files whose layers are not read: any depth
/// and color mode, plain and large (PSB) files, all four ways of packing.
namespace qirn::MergedReader {

/// Nothing for what is no such file, for one wider or higher than 30,000 pixels, and for a damaged one: whatever is
/// missing of the picture, none of it is given. Throws PSDFile::PSDError for a sound file that was saved without a
/// merged picture.
std::optional<DecodedPicture> decode(std::span<const uint8_t> file, const Progress& progress = {});

/// Why a file whose layers are not read opens as one. `feature` is what the reader of layers does not understand, empty for
/// damage. None for a file that was made as one picture and comes as it is.
ImportRemarks remarks(std::span<const uint8_t> file, const QString& feature);

} // namespace qirn::MergedReader
