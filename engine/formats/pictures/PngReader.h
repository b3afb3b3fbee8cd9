#pragma once
#include "formats/common/DecodedPicture.h"
#include "platform/Progress.h"

#include <cstdint>
#include <optional>
#include <span>

#include <QImage>

namespace qirn {

bool isPng(std::span<const uint8_t> file);
/// Every kind of PNG, with its profile or gamma, upright. A file that ends early gives the rows that it holds.
std::optional<DecodedPicture> readPng(std::span<const uint8_t> file, const Progress& progress = {});

/// A small picture, as previews are, of a PNG; nothing when it is damaged, claims a size that its bytes cannot hold, or
/// has a side of more than 4096 pixels.
std::optional<QImage> decodePNG(std::span<const uint8_t> png);

} // namespace qirn
