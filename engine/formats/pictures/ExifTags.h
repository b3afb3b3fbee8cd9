#pragma once
#include "formats/common/PictureBuilder.h"

#include <cstdint>
#include <optional>
#include <span>

namespace qirn {

/// The tags of a camera that matter when a picture is opened.
struct ExifTags {
    Orientation orientation;
    std::optional<double> dpi;
};

/// From an EXIF block, which is a small TIFF ("II*" or "MM*" first), with or without "Exif\0\0" before it. Damaged
/// tags count as missing.
ExifTags exifTags(std::span<const uint8_t> block);

} // namespace qirn
