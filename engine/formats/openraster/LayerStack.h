#pragma once
#include "core/IRect.h"
#include "core/Layer.h"
#include "formats/common/ImportRemarks.h"

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <vector>

#include <QByteArray>

namespace qirn {

class PaintDocument;

// The list of layers of an OpenRaster file, "stack.xml".
namespace OpenRaster {

/// What of a file does not show as it was made.
enum class Loss {
    groups,        ///< Their layers are there, and look the same.
    groupBlending, ///< Opacity or mode of a group, or blending within it, that its layers do not give alone.
    blendModes,    ///< Unknown ones, read as normal.
    clipping,      ///< To several layers; ours clip to one.
    otherLayers,   ///< Text and filters, which have no pixels.
    missingLayers, ///< Without pixels that can be read.
    damagedLayers, ///< With a part of their pixels.
};
using Losses = std::set<Loss>;
ImportRemarks remarksOf(const Losses& losses);

struct StackLayer {
    LayerSettings settings;
    QByteArray source; ///< The name of its PNG in the archive.
    int64_t x = 0;     ///< Of the PNG's corner on the canvas, at most a million away.
    int64_t y = 0;
};
struct LayerStack {
    int64_t width = 0; ///< 1 to 30,000, as the height.
    int64_t height = 0;
    double dpi = 72;
    std::vector<StackLayer> layers; ///< From the bottom; groups are dissolved.
    std::optional<int64_t> active;
    Losses losses;
};

inline constexpr int64_t kMostStackBytes = 6 << 20;

/// Nothing where it is damaged, declares entities, nests deeper than 64, has more than 32,768 layers or a tag of more than
/// 32,768 letters or 64 attributes. Prefixes of names are taken as they are written.
std::optional<LayerStack> readStack(const QByteArray& xml);

/// The name of a layer's PNG.
QByteArray sourceOf(int64_t layer);
/// `places` are where the PNG of each layer lies.
QByteArray writeStack(const PaintDocument& doc, std::span<const IRect> places);

} // namespace OpenRaster

} // namespace qirn
