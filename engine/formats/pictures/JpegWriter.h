#pragma once
#include "core/RGBABuffer.h"
#include "platform/Progress.h"

#include <optional>

#include <QByteArray>

namespace qirn {

/// A JPEG of an opaque picture: its size, its resolution, the profile of sRGB and its pixels, no other mark. Quality from 0.05 to 1, brought
/// into that range. The resolution is stored in whole dots per inch. Nothing when memory fails.
std::optional<QByteArray> jpegBytes(const RGBABuffer& picture, double quality, double dpi,
                                    const Progress& progress = {});

} // namespace qirn
