#pragma once
#include "core/PaintDocument.h"
#include "core/RGBABuffer.h"
#include "core/selection/Selection.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <set>

#include <QString>

namespace qirn::test {

/// Fills a rectangle of a layer with one premultiplied pixel, as an edit would: through writable tiles, marked.
void paintRect(PaintDocument& doc, Layer& layer, const IRect& rect, const PixelBytes& pixel);

/// Valid premultiplied noise from a seed: transparent, opaque and in-between pixels all occur.
std::shared_ptr<RGBABuffer> noise(int64_t width, int64_t height, uint64_t seed);

/// A picture of one's own, pixel by pixel.
std::shared_ptr<RGBABuffer> pictureOf(int64_t width, int64_t height,
                                      const std::function<PixelBytes(int64_t x, int64_t y)>& pixelAt);
/// A selection of one's own, byte by byte.
SelectionRef selectionOf(int64_t width, int64_t height,
                         const std::function<int(int64_t x, int64_t y)>& valueAt);

/// One layer of these pixels; nothing is dirty.
std::unique_ptr<PaintDocument> documentOf(const RGBABuffer& pixels);

QPainterPath rectangle(double x, double y, double w, double h);

/// The tiles that a layer holds, each once.
std::set<const Tile*> tilesOf(const Layer& layer);

/// A document of random layers with every kind of setting, the same for the same seed.
std::unique_ptr<PaintDocument> randomDocument(int64_t width, int64_t height, int layers, uint64_t seed);

/// Empty when equal, otherwise the first pixel that differs, with both values.
QString firstDifference(const RGBABuffer& a, const RGBABuffer& b);

QString text(const PixelBytes& pixel); ///< "r,g,b,a"

} // namespace qirn::test
