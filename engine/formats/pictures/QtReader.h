#pragma once
#include "formats/common/DecodedPicture.h"

#include <cstdint>
#include <optional>
#include <span>

namespace qirn {

// The formats that Qt decodes, first picture each. What Qt does not tell (size before decoding, resolution, profile,
// orientation) is read from the file's blocks first.

bool isGif(std::span<const uint8_t> file);
std::optional<DecodedPicture> readGif(std::span<const uint8_t> file);

bool isBmp(std::span<const uint8_t> file);
std::optional<DecodedPicture> readBmp(std::span<const uint8_t> file);

bool isWebP(std::span<const uint8_t> file);
std::optional<DecodedPicture> readWebP(std::span<const uint8_t> file);

} // namespace qirn
