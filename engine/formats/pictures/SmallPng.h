#pragma once
#include "core/RGBABuffer.h"

#include <cstdint>
#include <memory>
#include <span>

#include <QByteArray>

namespace qirn {

// Small pictures such as previews, as PNG and in sRGB, by libpng alone: without Qt Gui, profiles, or other threads.

/// Null for what is damaged or cut anywhere and for a side of more than `mostSide` pixels, which is refused before memory
/// is taken for it. Profiles and orientation are passed over.
std::shared_ptr<RGBABuffer> readSmallPng(std::span<const uint8_t> png, int64_t mostSide);

/// Quickly rather than into the fewest bytes; each pixel exact. Throws std::bad_alloc.
QByteArray smallPng(const RGBABuffer& picture);

} // namespace qirn
