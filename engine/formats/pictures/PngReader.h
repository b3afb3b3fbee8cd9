#pragma once
#include "formats/common/DecodedPicture.h"
#include "formats/common/PictureBuilder.h"
#include "platform/Progress.h"

#include <cstdint>
#include <optional>
#include <span>

namespace qirn {

bool isPng(std::span<const uint8_t> file);
/// Every kind of PNG, with its profile or gamma, upright. A file that ends early gives the rows that it holds.
std::optional<DecodedPicture> readPng(std::span<const uint8_t> file, const Progress& progress = {});
/// The same as a layer of a canvas, neither turned nor with a resolution; null where the other gives nothing.
LayerRef readPngOnto(const OnCanvas& place, std::span<const uint8_t> file, const Progress& progress = {});

} // namespace qirn
