#pragma once
#include "compositing/Compositor.h"
#include "core/PaintDocument.h"

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <vector>

#include <QImage>

namespace qirn {

/// `yes` shows onion-skin ghosts where they are on; the finished picture never does.
enum class ForDisplay { no, yes };

/// The one translation of a layer stack into compositor input, from the bottom.
std::vector<CompositeInput> compositeInputs(const PaintDocument& doc, ForDisplay display);
/// The same for frozen layers, always as the finished picture.
std::vector<CompositeInput> compositeInputs(std::span<const LayerState> layers);

/// The finished picture of the whole canvas.
std::shared_ptr<RGBABuffer> flattened(const PaintDocument& doc, const Progress& progress = {});
QImage flattenedImage(const PaintDocument& doc);
/// What the screen shows of some tiles; a tile without any contribution has no entry.
std::map<int64_t, QImage> displayImages(const PaintDocument& doc, std::span<const int64_t> tiles);
/// One premultiplied pixel of the finished picture; zeros outside the canvas.
PixelBytes compositePixel(const PaintDocument& doc, int64_t x, int64_t y);

} // namespace qirn
