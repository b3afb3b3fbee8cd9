#pragma once
#include "core/Layer.h"
#include "core/TileGrid.h"
#include "core/history/HistoryMemory.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <QString>

namespace qirn {

class Selection;

/// A whole document as it stood after a step: all that undo puts back. It names the same frozen tiles as the live layers
/// do, so keeping one copies no pixels.
struct DocumentState {
    TileGrid grid;
    std::vector<LayerState> layers;
    int64_t active = 0;
    std::shared_ptr<const Selection> selection;
    double dpi = 72;
};

struct HistoryEntry {
    QString name; ///< What was done to reach the state.
    DocumentState state;
};

/// The steps of a document that can be undone and redone: a list of states, empty at first, then always with a current
/// one.
class UndoHistory {
public:
    struct Limits {
        int64_t steps;
        /// Of tile memory, selections included; a history of 20 steps is never cut for its sake.
        int64_t bytes;
    };
    /// Appends a state behind the current one, if there is one, and makes it current; undone states go, and the oldest
    /// beyond the limits. Where memory runs out it throws and leaves the history as it was.
    void add(HistoryEntry entry, const Limits& limits);
    /// So many steps after the current one; it must be there.
    const DocumentState& state(int64_t steps) const;
    void move(int64_t steps) { cursor_ += steps; } ///< Makes that state the current one.

    bool canUndo() const { return cursor_ > 0; }
    bool canRedo() const { return cursor_ + 1 < static_cast<int64_t>(entries_.size()); }
    std::optional<QString> undoName() const;
    std::optional<QString> redoName() const;
    int64_t undoDepth() const { return cursor_; }
    const std::vector<HistoryEntry>& entries() const { return entries_; } ///< Oldest first.
    int64_t layerBytes() const { return memory_.bytes(); }                ///< Of layers' tiles, each once.

private:
    void dropOldest();

    std::vector<HistoryEntry> entries_;
    int64_t cursor_ = -1; // the entry that the picture equals
    HistoryMemory memory_;
};

} // namespace qirn
