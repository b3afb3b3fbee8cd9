#pragma once
#include "formats/common/DecodedPicture.h"
#include "platform/Progress.h"

#include <cstdint>
#include <optional>
#include <span>

namespace qirn {

bool isTiff(std::span<const uint8_t> file);
/// The first picture of a TIFF, with its profile, upright: gray, RGB, CMYK and Lab as they are stored, what is rarer
/// through the library's own conversion. A file that ends early gives the rows that it holds.
std::optional<DecodedPicture> readTiff(std::span<const uint8_t> file, const Progress& progress = {});

} // namespace qirn
