#pragma once
#include "core/DirtyTiles.h"
#include "core/Layer.h"
#include "core/OnionSkin.h"
#include "core/TileGrid.h"
#include "core/history/UndoHistory.h"
#include "platform/CheckedMath.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <QString>

namespace qirn {

class Selection;

/// The engine's picture: canvas geometry, the stack of layers, the selection, the tiles that must be shown
/// again, and the undo history. It belongs to the main thread.
///
/// Every edit follows one order: change tiles through `Layer::writableTile` or fields directly, mark what is
/// dirty, and when the user's action is over call `commit` once. The stack is never empty, the active index is
/// always one of its layers, and every layer has the document's grid.
class PaintDocument {
public:
    /// A new picture; each side is raised to at least 1. Without a background it has one empty "Layer 1"; with
    /// one, a "Background" of that color (left without tiles when its alpha is 0) below an active "Layer 1".
    PaintDocument(int64_t width, int64_t height, double dpi, std::optional<PaintColor> background);
    /// A picture rebuilt from parts whose grid is that of the size. An empty list becomes one empty "Layer 1";
    /// otherwise `active` must be the index of a layer.
    PaintDocument(int64_t width, int64_t height, double dpi, std::vector<LayerRef> layers, int64_t active);
    PaintDocument(const PaintDocument&) = delete;
    PaintDocument& operator=(const PaintDocument&) = delete;

    double dpi = 72;                            ///< A label for print; it scales nothing.
    OnionSkin onion;                            ///< A view setting: kept in files, not in undo states.
    std::shared_ptr<const Selection> selection; ///< Null: everything is selected.
    std::function<void()> onGridChange;         ///< Called after the canvas got another size or shape.

    // The stack; index 0 is the bottom.
    const TileGrid& grid() const { return grid_; }
    const std::vector<LayerRef>& layers() const { return layers_; }
    int64_t layerCount() const { return static_cast<int64_t>(layers_.size()); }
    int64_t activeIndex() const { return activeIndex_; }
    Layer& activeLayer() const { return *layers_[checkedSize(activeIndex_)]; }
    Layer& layer(int64_t index) const; ///< A bad index stops the process.
    std::optional<int64_t> indexOf(const QUuid& id) const;
    void setActiveIndex(int64_t index); ///< Clamped to the stack.
    /// Inserts a layer of this grid at an index that is clamped, and makes it active. Not dirty by itself.
    void insertLayer(LayerRef layer, int64_t at);
    /// Replaces all layers; `layers` is not empty and all of this grid.
    void replaceLayers(std::vector<LayerRef> layers, int64_t active);
    /// The same for a canvas of another size; calls `onGridChange`.
    void replaceCanvas(const TileGrid& grid, std::vector<LayerRef> layers, int64_t active);
    /// Fills every tile of a layer of this grid, also beyond the canvas edge, and marks everything dirty.
    void fillLayer(Layer& layer, const PaintColor& color);

    /// A copy to be worked on elsewhere, as on another thread, at the cost of a few words a layer: it shares the tiles,
    /// frozen, and has neither a history nor a listener.
    std::unique_ptr<PaintDocument> draft();
    /// Becomes what a draft of it has become since, as one edit: uncommitted, with what is dirty marked. Calls
    /// `onGridChange` where the canvas has another size. Nothing has changed meanwhile.
    void take(PaintDocument&& draft);

    uint64_t fingerprint() const; ///< Size, order, pixels and settings of the layers; nothing of the view.

    // The tiles that the screen must show again.
    void markDirty(const IRect& rect);
    void markAllDirty();                     ///< Allocates nothing.
    std::vector<int64_t> takeDirtyTiles();   ///< Sorted; leaves none.
    std::vector<DirtyTile> takeDirtyParts(); ///< The same with the part of each tile that changed.

    // Undo history: whole states that share their tiles with each other and with the live layers.
    using State = DocumentState;
    using HistoryEntry = qirn::HistoryEntry;
    int64_t maxUndoSteps = 100;
    int64_t maxUndoBytes = 1'500'000'000; ///< Of tile memory held by the history, selections included.

    // If memory runs out, each of these throws and leaves the history as it was.
    State captureState(); ///< Freezes every tile; copies no pixels.
    void commit(const QString& name);
    /// Whether a commit would make a step that differs from the last one; the active layer alone makes none. Compares tiles by
    /// identity: pixels that were written anew count as another picture, whatever they are.
    bool differsFromLastCommit() const;
    void perform(const QString& name, const std::function<void()>& body);
    void undo(); ///< Nothing at the start of the history.
    void redo(); ///< Nothing at its end.
    /// Discards uncommitted changes; does not count as a change. Needs only a few words of memory a layer, so that it
    /// works when memory has run out.
    void revertToLastCommit();
    void resetHistory(); ///< One entry named "Open"; the change count stays.
    bool canUndo() const { return history_.canUndo(); }
    bool canRedo() const { return history_.canRedo(); }
    std::optional<QString> undoName() const { return history_.undoName(); }
    std::optional<QString> redoName() const { return history_.redoName(); }
    int64_t undoDepth() const { return history_.undoDepth(); }
    const std::vector<HistoryEntry>& history() const { return history_.entries(); } ///< Oldest first.
    int64_t historyBytes() const { return history_.layerBytes(); } ///< Of layers' tiles, each once.
    /// Rises with every commit, undo and redo, and only then; a changed count means unsaved work.
    int64_t changeCount() const { return changeCount_; }

private:
    PaintDocument(const State& state, const OnionSkin& onion); // without a history
    enum class CountsAsChange { no, yes };
    void restore(int64_t steps, CountsAsChange counts);

    TileGrid grid_;
    std::vector<LayerRef> layers_;
    int64_t activeIndex_ = 0;
    DirtyTiles dirty_;
    bool allDirty_ = false; // all tiles are dirty, whatever `dirty_` lists
    UndoHistory history_;
    int64_t changeCount_ = 0;
};

} // namespace qirn
