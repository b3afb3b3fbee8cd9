#pragma once
#include "formats/common/DecodedPicture.h"
#include "platform/Progress.h"

#include <cstdint>
#include <optional>
#include <span>

namespace qirn {

bool isHeif(std::span<const uint8_t> file);
/// The main picture of a HEIC file, with its profile, upright.
std::optional<DecodedPicture> readHeif(std::span<const uint8_t> file, const Progress& progress = {});

} // namespace qirn
