#pragma once
#include "formats/common/DecodedPicture.h"
#include "platform/Progress.h"

#include <cstdint>
#include <optional>
#include <span>

namespace qirn {

/// Whether the bytes begin as those of a BMP file.
bool isBmp(std::span<const uint8_t> file);
/// Its picture, which Qt decodes but for that of 16 bits a pixel. What Qt does not tell (size before decoding, resolution,
/// profile) is read from the headers first.
std::optional<DecodedPicture> readBmp(std::span<const uint8_t> file, const Progress& progress = {});

} // namespace qirn
