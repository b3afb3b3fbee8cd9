#pragma once
#include "formats/common/DecodedPicture.h"
#include "platform/Progress.h"

#include <cstdint>
#include <optional>
#include <span>

namespace qirn {

bool isJpeg(std::span<const uint8_t> file);
/// Gray, YCbCr, RGB, CMYK and YCCK, with the embedded profile, upright. A file that ends early gives what it holds.
std::optional<DecodedPicture> readJpeg(std::span<const uint8_t> file, const Progress& progress = {});

} // namespace qirn
