// The undo members of PaintDocument: a list of whole states, of which undo puts an older one back. A state names
// the same frozen tiles as the live layers do, so keeping one copies no pixels.
#include "core/PaintDocument.h"

#include "platform/CheckedMath.h"

#include <algorithm>

namespace qirn {

namespace {
// A shorter history is never trimmed by memory, so that a few huge steps can always be undone.
constexpr std::size_t kEntriesBeforeMemoryTrim = 21;
} // namespace

PaintDocument::State PaintDocument::captureState() {
    State state{grid_, {}, activeIndex_, selection, dpi};
    state.layers.reserve(layers_.size());
    for (const LayerRef& layer : layers_) state.layers.push_back(layer->captureState());
    return state;
}

void PaintDocument::commit(const QString& name) {
    history_.push_back({name, captureState()});
    try {
        memory_.add(history_.back().state.layers, history_.back().state.selection.get());
    } catch (...) {
        history_.pop_back();
        throw;
    }
    const auto undone = history_.begin() + cursor_ + 1, added = history_.end() - 1;
    for (auto entry = undone; entry != added; ++entry)
        memory_.remove(entry->state.layers, entry->state.selection.get());
    history_.erase(undone, added);
    cursor_ = static_cast<int64_t>(history_.size()) - 1;
    ++changeCount_;

    const auto limit = checkedSize(std::max<int64_t>(maxUndoSteps + 1, 2));
    while (history_.size() > limit) dropOldestEntry();
    if (history_.size() < kEntriesBeforeMemoryTrim) return;
    while (historyBytes() + memory_.selectionBytes() > maxUndoBytes && history_.size() > 2) dropOldestEntry();
}

void PaintDocument::dropOldestEntry() {
    memory_.remove(history_.front().state.layers, history_.front().state.selection.get());
    history_.erase(history_.begin());
    --cursor_;
}

void PaintDocument::perform(const QString& name, const std::function<void()>& body) {
    body();
    commit(name);
}

void PaintDocument::undo() {
    if (!canUndo()) return;
    restore(cursor_ - 1, CountsAsChange::yes);
}

void PaintDocument::redo() {
    if (!canRedo()) return;
    restore(cursor_ + 1, CountsAsChange::yes);
}

void PaintDocument::revertToLastCommit() {
    restore(cursor_, CountsAsChange::no);
}

void PaintDocument::resetHistory() {
    history_.clear();
    memory_.clear();
    history_.push_back({QStringLiteral("Open"), captureState()});
    memory_.add(history_.back().state.layers, history_.back().state.selection.get());
    cursor_ = 0;
}

std::optional<QString> PaintDocument::undoName() const {
    if (!canUndo()) return std::nullopt;
    return history_[checkedSize(cursor_)].name;
}

std::optional<QString> PaintDocument::redoName() const {
    if (!canRedo()) return std::nullopt;
    return history_[checkedSize(cursor_) + 1].name;
}

void PaintDocument::restore(int64_t entry, CountsAsChange counts) {
    const State& state = history_[checkedSize(entry)].state;
    std::vector<LayerRef> layers;
    layers.reserve(state.layers.size());
    for (const LayerState& layer : state.layers) layers.push_back(std::make_shared<Layer>(layer, state.grid));
    const bool gridChanged = !(state.grid == grid_);
    cursor_ = entry;
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
