#pragma once
#include "core/BlendMode.h"
#include "core/PaintColor.h"
#include "core/RGBABuffer.h"
#include "core/TileArray.h"
#include "core/TileGrid.h"
#include "platform/Progress.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>

#include <QImage>

namespace qirn {

/// Moves a layer's color towards another one; coverage stays.
struct Tint {
    float r, g, b; ///< Straight, 0 to 1.
    float amount;  ///< 0 to 1.
};

/// What the compositor needs of one layer; a list of them stands in stack order, from the bottom.
struct CompositeInput {
    TileArray tiles{}; ///< Shared, not copied.
    float opacity = 1;
    BlendMode mode = BlendMode::normal;
    bool clipping = false; ///< Clipped to the nearest input below that is not.
    bool visible = true;
    std::optional<Tint> tint{};
};

/// Makes finished pixels of layer inputs, one tile at a time, in 32-bit floats with premultiplied alpha. It has
/// no state and knows nothing of documents. No input's tiles may be written while it runs.
namespace Compositor {

enum class Atop { no, yes }; ///< With `yes` the backdrop's coverage decides what shows and stays as it is.

/// Writes `kTileBytes` bytes of premultiplied RGBA. False when no input had anything to show in this tile; all
/// bytes are then 0.
bool compositeTile(int64_t index, std::span<const CompositeInput> layers, uint8_t* out);

/// One image for each tile to which an input contributed, cut to the canvas edge; in parallel.
std::map<int64_t, QImage> compositeImages(std::span<const int64_t> tiles,
                                          std::span<const CompositeInput> layers, const TileGrid& grid);

/// The finished picture of the whole canvas; in parallel.
std::shared_ptr<RGBABuffer> flatten(std::span<const CompositeInput> layers, const TileGrid& grid,
                                    const Progress& progress = {});

/// One premultiplied source color (r, g, b, a) onto one accumulator pixel of four floats: the reference for
/// every faster loop.
void blendPixel(float* pixel, const float source[4], BlendMode mode, Atop atop);

/// One pixel through the same arithmetic, bytes in and out, all premultiplied.
PixelBytes blendBytes(const PixelBytes& backdrop, const PixelBytes& source, BlendMode mode, float opacity);

} // namespace Compositor

} // namespace qirn
