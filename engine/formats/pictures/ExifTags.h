#pragma once
#include "formats/common/PictureBuilder.h"

#include <cstdint>
#include <optional>
#include <span>

namespace qirn {

/// What a camera noted that a picture is opened by.
struct ExifTags {
    Orientation orientation;
    std::optional<double> dpi;
};

/// From an EXIF block, which is a small TIFF ("II*" or "MM*" first), with or without "Exif\0\0" before it. What is
/// damaged is as if it were not there.
ExifTags exifTags(std::span<const uint8_t> block);

} // namespace qirn
