#include "core/PaintDocument.h"

#include "core/PaintEngine.h"
#include "platform/CheckedMath.h"

#include <algorithm>

namespace qirn {

PaintDocument::PaintDocument(int64_t width, int64_t height, double resolution,
                             std::optional<PaintColor> background)
    : dpi(resolution),
      grid_(std::max<int64_t>(width, 1), std::max<int64_t>(height, 1)) {
    if (background) {
        layers_.push_back(std::make_shared<Layer>(QStringLiteral("Background"), grid_));
        if (background->a > 0) fillLayer(*layers_[0], *background);
    }
    layers_.push_back(std::make_shared<Layer>(QStringLiteral("Layer 1"), grid_));
    activeIndex_ = layerCount() - 1;
    resetHistory();
}

PaintDocument::PaintDocument(int64_t width, int64_t height, double resolution, std::vector<LayerRef> layers,
                             int64_t active)
    : dpi(resolution),
      grid_(width, height),
      layers_(std::move(layers)),
      activeIndex_(active) {
    if (layers_.empty()) {
        layers_.push_back(std::make_shared<Layer>(QStringLiteral("Layer 1"), grid_));
        activeIndex_ = 0;
    }
    require(activeIndex_ >= 0 && activeIndex_ < layerCount());
    for (const LayerRef& layer : layers_) require(layer->grid() == grid_);
    resetHistory();
}

PaintDocument::PaintDocument(const State& state, const OnionSkin& skin)
    : dpi(state.dpi),
      onion(skin),
      selection(state.selection),
      grid_(state.grid),
      activeIndex_(state.active) {
    for (const LayerState& layer : state.layers) layers_.push_back(std::make_shared<Layer>(layer, grid_));
}

Layer& PaintDocument::layer(int64_t index) const {
    require(index >= 0 && index < layerCount());
    return *layers_[checkedSize(index)];
}

std::optional<int64_t> PaintDocument::indexOf(const QUuid& id) const {
    for (std::size_t i = 0; i < layers_.size(); ++i) {
        if (layers_[i]->id == id) return static_cast<int64_t>(i);
    }
    return std::nullopt;
}

void PaintDocument::setActiveIndex(int64_t index) {
    activeIndex_ = std::clamp<int64_t>(index, 0, layerCount() - 1);
}

void PaintDocument::insertLayer(LayerRef layer, int64_t at) {
    require(layer->grid() == grid_);
    const int64_t place = std::clamp<int64_t>(at, 0, layerCount());
    layers_.insert(layers_.begin() + place, std::move(layer));
    activeIndex_ = place;
    // Empty as it may be, ghosts depend on the active layer, and what was clipped to the one below is clipped to it now.
    const bool isClippedTo = place + 1 < layerCount() && this->layer(place + 1).isClipping;
    if (onion.enabled || isClippedTo) markAllDirty();
}

void PaintDocument::replaceLayers(std::vector<LayerRef> layers, int64_t active) {
    require(!layers.empty());
    for (const LayerRef& layer : layers) require(layer->grid() == grid_);
    layers_ = std::move(layers);
    setActiveIndex(active);
    markAllDirty();
}

void PaintDocument::replaceCanvas(const TileGrid& grid, std::vector<LayerRef> layers, int64_t active) {
    grid_ = grid;
    replaceLayers(std::move(layers), active);
    if (onGridChange) onGridChange();
    markAllDirty(); // again, in case the listener took the dirty tiles
}

void PaintDocument::fillLayer(Layer& layer, const PaintColor& color) {
    require(layer.grid() == grid_);
    const PixelBytes pixel = color.premultiplied();
    auto tile = std::make_shared<Tile>();
    fillPixels(tile->writablePixels(), {0, 0, kTileSize, kTileSize}, pixel);
    // Every slot would hold the same bytes, so all share one frozen tile until one of them is painted on.
    tile->freeze();
    for (int64_t index = 0; index < grid_.count(); ++index) layer.setTile(index, tile);
    markAllDirty();
}

std::unique_ptr<PaintDocument> PaintDocument::draft() {
    return std::unique_ptr<PaintDocument>(new PaintDocument(captureState(), onion));
}

void PaintDocument::take(PaintDocument&& draft) {
    const bool gridChanged = !(draft.grid_ == grid_);
    grid_ = draft.grid_;
    layers_ = std::move(draft.layers_);
    activeIndex_ = draft.activeIndex_;
    selection = std::move(draft.selection);
    dpi = draft.dpi;
    if (gridChanged && onGridChange) onGridChange();
    if (gridChanged || draft.allDirty_) markAllDirty();
    for (const DirtyTile& tile : draft.takeDirtyParts()) markDirty(tile.part);
}

uint64_t PaintDocument::fingerprint() const {
    using PaintEngine::fnvStep;
    uint64_t h = fnvStep(PaintEngine::fnvStart, static_cast<uint64_t>(grid_.width));
    h = fnvStep(h, static_cast<uint64_t>(grid_.height));
    for (const LayerRef& layer : layers_) h = fnvStep(h, layer->fingerprint());
    return h;
}

void PaintDocument::markDirty(const IRect& rect) {
    if (allDirty_) return;
    for (int64_t index : grid_.tilesIn(rect)) dirty_.add(index, grid_.rectOf(index).intersection(rect));
}

void PaintDocument::markAllDirty() {
    dirty_.clear(); // it may list tiles that this canvas does not have
    allDirty_ = true;
}

std::vector<int64_t> PaintDocument::takeDirtyTiles() {
    std::vector<int64_t> indices;
    for (const DirtyTile& tile : takeDirtyParts()) indices.push_back(tile.index);
    return indices;
}

std::vector<DirtyTile> PaintDocument::takeDirtyParts() {
    if (!allDirty_) return dirty_.take();
    std::vector<DirtyTile> all;
    all.reserve(checkedSize(grid_.count()));
    for (int64_t index = 0; index < grid_.count(); ++index) all.push_back({index, grid_.rectOf(index)});
    allDirty_ = false;
    return all;
}

PaintDocument::State PaintDocument::captureState() {
    State state{grid_, {}, activeIndex_, selection, dpi};
    state.layers.reserve(layers_.size());
    for (const LayerRef& layer : layers_) state.layers.push_back(layer->captureState());
    return state;
}

void PaintDocument::commit(const QString& name) {
    history_.add({name, captureState()}, {.steps = maxUndoSteps, .bytes = maxUndoBytes});
    ++changeCount_;
}

bool PaintDocument::differsFromLastCommit() const {
    const State& state = history_.state(0);
    const auto isSame = [](const LayerRef& layer, const LayerState& before) {
        return layer->id == before.id && layer->settings() == before &&
               layer->tiles().identity() == before.tiles.identity();
    };
    return !(grid_ == state.grid) || dpi != state.dpi || selection != state.selection ||
           !std::equal(layers_.begin(), layers_.end(), state.layers.begin(), state.layers.end(), isSame);
}

void PaintDocument::perform(const QString& name, const std::function<void()>& body) {
    body();
    commit(name);
}

void PaintDocument::undo() {
    if (canUndo()) restore(-1, CountsAsChange::yes);
}

void PaintDocument::redo() {
    if (canRedo()) restore(+1, CountsAsChange::yes);
}

void PaintDocument::revertToLastCommit() {
    const QUuid inHand = activeLayer().id;
    restore(0, CountsAsChange::no);
    if (const auto index = indexOf(inHand))
        setActiveIndex(*index); // choosing a layer is no change to be reverted
}

void PaintDocument::resetHistory() {
    UndoHistory fresh;
    fresh.add({QStringLiteral("Open"), captureState()}, {.steps = maxUndoSteps, .bytes = maxUndoBytes});
    history_ = std::move(fresh);
}

void PaintDocument::restore(int64_t steps, CountsAsChange counts) {
    const State& state = history_.state(steps);
    std::vector<LayerRef> layers;
    layers.reserve(state.layers.size());
    for (const LayerState& layer : state.layers) layers.push_back(std::make_shared<Layer>(layer, state.grid));
    const bool gridChanged = !(state.grid == grid_);
    history_.move(steps);
    grid_ = state.grid;
    dpi = state.dpi;
    layers_ = std::move(layers);
    selection = state.selection;
    setActiveIndex(state.active);
    if (counts == CountsAsChange::yes) ++changeCount_;
    if (gridChanged && onGridChange) onGridChange();
    markAllDirty();
}

} // namespace qirn
