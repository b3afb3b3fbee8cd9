#pragma once
#include "core/RGBABuffer.h"
#include "platform/Progress.h"

#include <cstdint>
#include <memory>
#include <optional>

#include <QByteArray>

namespace qirn {

inline constexpr int64_t kLongestWebPSide = 16383; ///< More the format cannot say.

/// A WebP of a picture within that size, transparency kept, with the resolution and the profile of sRGB: without loss,
/// every pixel exact, or of a quality from 0.05 to 1, brought into that range. The picture is let go before the work
/// begins. Nothing when memory fails.
std::optional<QByteArray> webpBytes(std::shared_ptr<const RGBABuffer> picture, std::optional<double> quality,
                                    double dpi, const Progress& progress = {});

} // namespace qirn
