#pragma once
#include "core/RGBABuffer.h"
#include "platform/Progress.h"

#include <optional>

#include <QByteArray>

namespace qirn {

/// A TIFF of a picture, transparency kept, every pixel exact: LZW, the resolution in dots per inch, the profile of sRGB, no
/// tag that a reader does not need. Nothing when memory fails.
std::optional<QByteArray> tiffBytes(const RGBABuffer& picture, double dpi, const Progress& progress = {});

} // namespace qirn
