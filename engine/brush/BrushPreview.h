#pragma once
#include "brush/BrushSettings.h"
#include "core/PaintColor.h"

#include <cstdint>

#include <QImage>

namespace qirn {

/// A sample stroke of a brush, painted by the real engine on a picture of its own.
namespace BrushPreview {

/// Of `width` x `height` logical pixels with `scale` pixels of the image each, the brush's lengths included. Transparent
/// around the stroke; brushes that need something to work on get a bed of paint. The same arguments give the same
/// pixels. May be called on any thread.
QImage render(const BrushSettings& brush, int64_t width, int64_t height, const PaintColor& color,
              double scale = 1);

} // namespace BrushPreview

} // namespace qirn
