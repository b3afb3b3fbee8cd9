#pragma once
#include "formats/common/DecodedPicture.h"
#include "platform/Progress.h"

#include <cstdint>
#include <optional>
#include <span>

namespace qirn {

/// Whether the bytes begin as those of a GIF file.
bool isGif(std::span<const uint8_t> file);
/// Its first picture, on the canvas that the file tells. One that is damaged further on keeps the rows that came; of an
/// interlaced one, those that did not repeat the row above. Nothing when not one row came.
std::optional<DecodedPicture> readGif(std::span<const uint8_t> file, const Progress& progress = {});

} // namespace qirn
