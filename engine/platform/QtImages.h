#pragma once
#include <cstdint>

#include <QImage>

namespace qirn {

/// A read-only image over premultiplied RGBA bytes without row padding. It borrows them: copy it to keep it.
QImage imageOver(const uint8_t* pixels, int width, int height);

/// The same picture as premultiplied sRGB RGBA bytes; null when memory fails.
QImage inPixelFormat(const QImage& image);

} // namespace qirn
