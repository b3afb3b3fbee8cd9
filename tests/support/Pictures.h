#pragma once
#include "core/PaintDocument.h"
#include "core/RGBABuffer.h"

#include <cstdint>
#include <memory>

#include <QString>

namespace qirn::test {

/// Fills a rectangle of a layer with one premultiplied pixel, as an edit would: through writable tiles, marked.
void paintRect(PaintDocument& doc, Layer& layer, const IRect& rect, const PixelBytes& pixel);

/// Valid premultiplied noise from a seed: transparent, opaque and in-between pixels all occur.
std::shared_ptr<RGBABuffer> noise(int64_t width, int64_t height, uint64_t seed);

/// A document of random layers with every kind of setting, the same for the same seed.
std::unique_ptr<PaintDocument> randomDocument(int64_t width, int64_t height, int layers, uint64_t seed);

/// Empty when equal, otherwise the first pixel that differs, with both values.
QString firstDifference(const RGBABuffer& a, const RGBABuffer& b);

QString text(const PixelBytes& pixel); ///< "r,g,b,a"

} // namespace qirn::test
