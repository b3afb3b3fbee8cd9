#pragma once
#include "core/PaintDocument.h"

#include <memory>

namespace qirn::bench {

inline constexpr int kWidth = 3840;
inline constexpr int kHeight = 2160; // 15 x 9 tiles

/// A 4K picture as it lies on an artist's screen: grained paper, and so many layers above it, each with strokes
/// all over, so that nearly every tile is there and none is shared. The second layer is in overlay, the top one
/// is active. Nothing but "Open" is in its history.
std::unique_ptr<PaintDocument> paintedPicture(int addedLayers);

} // namespace qirn::bench
