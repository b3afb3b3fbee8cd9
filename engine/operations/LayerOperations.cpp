#include "operations/LayerOperations.h"

#include "compositing/CompositeInputs.h"
#include "compositing/Compositor.h"
#include "core/selection/SelectedPixels.h"
#include "core/selection/Selection.h"
#include "operations/TileJobs.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace qirn {

namespace {

QString freeLayerName(const PaintDocument& doc) {
    for (int64_t n = doc.layerCount();; ++n) {
        const QString name = QStringLiteral("Layer %1").arg(n);
        const auto& layers = doc.layers();
        const bool taken =
            std::any_of(layers.begin(), layers.end(), [&](const LayerRef& l) { return l->name == name; });
        if (!taken) return name;
    }
}

/// Clears the pixels of a tile that lie beyond the canvas edge.
void clearBeyond(const IRect& part, uint8_t* pixels) {
    for (int64_t y = 0; y < kTileSize; ++y) {
        const int64_t kept = y < part.h ? part.w : 0;
        std::memset(pixels + placeInTile(0, y) + kept * 4, 0, checkedSize(kTileSize - kept) * 4);
    }
}

/// Slots in which all layers have the same tiles, as over flat paper, share one finished tile.
LayerRef finishedPictureAsLayer(const PaintDocument& doc, const QString& name, const Progress& progress) {
    const TileGrid& grid = doc.grid();
    const std::vector<CompositeInput> inputs = compositeInputs(doc, ForDisplay::no);
    // The tiles of all layers in one slot, and the size of its part of the canvas.
    using Key = std::pair<std::vector<const Tile*>, std::array<int64_t, 2>>;
    TileJobs<Key> jobs;
    std::vector<const Tile*> seen(inputs.size());
    for (int64_t slot = 0; slot < grid.count(); ++slot) {
        std::transform(inputs.begin(), inputs.end(), seen.begin(), [slot](const CompositeInput& input) {
            return input.visible ? input.tiles.at(slot) : nullptr;
        });
        if (std::none_of(seen.begin(), seen.end(), [](const Tile* tile) { return tile; })) continue;
        const IRect part = grid.rectOf(slot);
        jobs.add({seen, {part.w, part.h}}, slot);
    }
    auto layer = std::make_shared<Layer>(name, grid);
    const auto draw = [&](const TileJob& job, uint8_t* pixels) {
        if (Compositor::compositeTile(job.first, inputs, pixels)) clearBeyond(grid.rectOf(job.first), pixels);
    };
    jobs.run(*layer, draw, progress);
    return layer;
}

} // namespace

LayerRef addLayer(PaintDocument& doc, std::optional<QString> name, std::optional<int64_t> at) {
    auto layer = std::make_shared<Layer>(name ? *name : freeLayerName(doc), doc.grid());
    doc.insertLayer(layer, at.value_or(doc.activeIndex() + 1));
    return layer;
}

void insertLayer(PaintDocument& doc, LayerRef layer, int64_t at) {
    doc.insertLayer(std::move(layer), at);
    doc.markAllDirty();
}

LayerRef duplicateLayer(PaintDocument& doc, int64_t index) {
    Layer& source = doc.layer(index);
    LayerSettings settings = source.settings();
    settings.name += QStringLiteral(" copy");
    settings.isLocked = false;
    auto copy = std::make_shared<Layer>(settings, doc.grid(), QUuid::createUuid());
    copy->shareTilesOf(source);
    insertLayer(doc, copy, index + 1);
    return copy;
}

void deleteLayer(PaintDocument& doc, int64_t index) {
    const int64_t count = doc.layerCount();
    if (index < 0 || index >= count) return;
    if (count == 1) {
        doc.layer(0).removeAllTiles();
        doc.markAllDirty();
        return;
    }
    std::vector<LayerRef> rest = doc.layers();
    rest.erase(rest.begin() + index);
    int64_t active = doc.activeIndex();
    if (active > count - 2)
        active = count - 2;
    else if (active > index)
        --active;
    doc.replaceLayers(std::move(rest), active);
}

void moveLayer(PaintDocument& doc, int64_t from, int64_t to) {
    if (from < 0 || from >= doc.layerCount()) return;
    to = std::clamp<int64_t>(to, 0, doc.layerCount() - 1);
    if (to == from) return;
    const QUuid active = doc.activeLayer().id;
    std::vector<LayerRef> layers = doc.layers();
    const LayerRef moved = layers[checkedSize(from)];
    layers.erase(layers.begin() + from);
    layers.insert(layers.begin() + to, moved);
    doc.replaceLayers(std::move(layers), 0);
    doc.setActiveIndex(doc.indexOf(active).value_or(0));
}

void mergeDown(PaintDocument& doc, int64_t index, const Progress& progress) {
    if (index < 1 || index >= doc.layerCount()) return;
    const Layer& upper = doc.layer(index);
    Layer& lower = doc.layer(index - 1);
    const CompositeInput inputs[] = {
        {.tiles = lower.tiles()},
        {.tiles = upper.tiles(),
         .opacity = static_cast<float>(upper.opacity),
         .mode = upper.blendMode,
         .clipping = upper.isClipping && !lower.isClipping,
         .visible = upper.isVisible},
    };
    TileJobs<std::array<const Tile*, 2>> jobs;
    upper.tiles().forEachTile([&](int64_t slot, const Tile& tile) {
        jobs.add({lower.tile(slot), &tile}, slot);
    });
    // Coverage only grows: where the result is blank, the old tile is too.
    const auto draw = [&](const TileJob& job, uint8_t* pixels) {
        Compositor::compositeTile(job.first, inputs, pixels);
    };
    jobs.run(lower, draw, progress);
    std::vector<LayerRef> layers = doc.layers();
    layers.erase(layers.begin() + index);
    doc.replaceLayers(std::move(layers), index - 1);
}

void mergeVisible(PaintDocument& doc, const Progress& progress) {
    const std::vector<LayerRef>& layers = doc.layers();
    const auto visible = [](const LayerRef& layer) { return layer->isVisible; };
    if (std::count_if(layers.begin(), layers.end(), visible) < 2) return;
    const LayerRef topmost = *std::find_if(layers.rbegin(), layers.rend(), visible);
    const LayerRef merged = finishedPictureAsLayer(doc, QStringLiteral("Merged"), progress);
    std::vector<LayerRef> stack;
    int64_t active = 0;
    for (const LayerRef& layer : layers) {
        if (layer == topmost) {
            active = static_cast<int64_t>(stack.size());
            stack.push_back(merged);
        } else if (!layer->isVisible) {
            stack.push_back(layer);
        }
    }
    doc.replaceLayers(std::move(stack), active);
}

void flattenImage(PaintDocument& doc, const Progress& progress) {
    doc.replaceLayers({finishedPictureAsLayer(doc, QStringLiteral("Background"), progress)}, 0);
}

void clearLayer(PaintDocument& doc, Layer& layer) {
    if (!doc.selection) {
        layer.removeAllTiles();
        doc.markAllDirty();
        return;
    }
    const Selection& selection = *doc.selection;
    for (int64_t index : doc.grid().tilesIn(selection.bounds())) {
        if (!layer.tile(index) || selection.tiles().isAbsent(index)) continue;
        const IRect part = doc.grid().rectOf(index);
        Tile& tile = layer.writableTile(index);
        for (int64_t y = 0; y < part.h; ++y)
            removeSelected(tile.writableRow(y), selection.row(index, y), part.w);
    }
    doc.markDirty(selection.bounds());
}

} // namespace qirn
