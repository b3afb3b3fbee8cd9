#include "compositing/CompositeInputs.h"

#include <cmath>
#include <cstring>

namespace qirn {

namespace {

constexpr double kGhostFalloff = 0.6; // strength lost with each layer of distance
constexpr float kGhostTintAmount = 0.75f;

template <class AnyLayer> CompositeInput pictureInput(const AnyLayer& layer, const TileArray& tiles) {
    return {.tiles = tiles,
            .opacity = static_cast<float>(layer.opacity),
            .mode = layer.blendMode,
            .clipping = layer.isClipping,
            .visible = layer.isVisible};
}

CompositeInput ghostInput(const Layer& layer, const OnionSkin& onion, int64_t distance) {
    CompositeInput ghost{.tiles = layer.tiles()};
    const auto steps = static_cast<double>(std::abs(distance) - 1);
    ghost.opacity = static_cast<float>(onion.opacity * std::pow(kGhostFalloff, steps));
    if (onion.tint) {
        const PaintColor& c = distance < 0 ? onion.beforeColor : onion.afterColor;
        ghost.tint =
            Tint{static_cast<float>(c.r), static_cast<float>(c.g), static_cast<float>(c.b), kGhostTintAmount};
    }
    return ghost;
}

/// The active layer always shows, in plain form; near ones are ghosts; a paper layer at the bottom stays.
std::vector<CompositeInput> onionInputs(const PaintDocument& doc) {
    const OnionSkin& onion = doc.onion;
    std::vector<CompositeInput> inputs;
    for (int64_t i = 0; i < doc.layerCount(); ++i) {
        const Layer& layer = doc.layer(i);
        const int64_t d = i - doc.activeIndex();
        if (d == 0) {
            inputs.push_back({.tiles = layer.tiles(), .opacity = static_cast<float>(layer.opacity)});
        } else if ((d < 0 && -d <= onion.before) || (d > 0 && d <= onion.after)) {
            inputs.push_back(ghostInput(layer, onion, d));
        } else if (i == 0 && layer.name == QLatin1String("Background")) {
            inputs.push_back({.tiles = layer.tiles(),
                              .opacity = static_cast<float>(layer.opacity),
                              .visible = layer.isVisible});
        }
    }
    return inputs;
}

} // namespace

std::vector<CompositeInput> compositeInputs(const PaintDocument& doc, ForDisplay display) {
    if (display == ForDisplay::yes && doc.onion.enabled && doc.layerCount() >= 2) return onionInputs(doc);
    std::vector<CompositeInput> inputs;
    for (const LayerRef& layer : doc.layers()) inputs.push_back(pictureInput(*layer, layer->tiles()));
    return inputs;
}

std::vector<CompositeInput> compositeInputs(std::span<const LayerState> layers) {
    std::vector<CompositeInput> inputs;
    for (const LayerState& layer : layers) inputs.push_back(pictureInput(layer, layer.tiles));
    return inputs;
}

std::shared_ptr<RGBABuffer> flattened(const PaintDocument& doc, const Progress& progress) {
    return Compositor::flatten(compositeInputs(doc, ForDisplay::no), doc.grid(), progress);
}

QImage flattenedImage(const PaintDocument& doc) {
    return flattened(doc)->makeImage();
}

std::map<int64_t, QImage> displayImages(const PaintDocument& doc, std::span<const int64_t> tiles) {
    return Compositor::compositeImages(tiles, compositeInputs(doc, ForDisplay::yes), doc.grid());
}

PixelBytes compositePixel(const PaintDocument& doc, int64_t x, int64_t y) {
    PixelBytes out{};
    if (!doc.grid().bounds().contains(x, y)) return out;
    const auto tile = std::make_unique_for_overwrite<uint8_t[]>(kTileBytes);
    Compositor::compositeTile(doc.grid().indexAt(x, y), compositeInputs(doc, ForDisplay::no), tile.get());
    std::memcpy(out.data(), tile.get() + placeInTile(x, y), 4);
    return out;
}

} // namespace qirn
