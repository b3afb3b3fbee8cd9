#include "core/history/UndoHistory.h"

#include "platform/CheckedMath.h"

#include <algorithm>

namespace qirn {

namespace {
// A shorter history is never trimmed by memory, so that a few huge steps can always be undone.
constexpr std::size_t kEntriesBeforeMemoryTrim = 21;
} // namespace

void UndoHistory::add(HistoryEntry entry, const Limits& limits) {
    entries_.push_back(std::move(entry));
    try {
        memory_.add(entries_.back().state.layers, entries_.back().state.selection.get());
    } catch (...) {
        entries_.pop_back();
        throw;
    }
    const auto undone = entries_.begin() + cursor_ + 1, added = entries_.end() - 1;
    for (auto gone = undone; gone != added; ++gone)
        memory_.remove(gone->state.layers, gone->state.selection.get());
    entries_.erase(undone, added);
    cursor_ = static_cast<int64_t>(entries_.size()) - 1;

    const auto most = checkedSize(std::max<int64_t>(limits.steps + 1, 2));
    while (entries_.size() > most) dropOldest();
    if (entries_.size() < kEntriesBeforeMemoryTrim) return;
    while (memory_.bytes() + memory_.selectionBytes() > limits.bytes && entries_.size() > 2) dropOldest();
}

void UndoHistory::dropOldest() {
    memory_.remove(entries_.front().state.layers, entries_.front().state.selection.get());
    entries_.erase(entries_.begin());
    --cursor_;
}

const DocumentState& UndoHistory::state(int64_t steps) const {
    return entries_[checkedSize(cursor_ + steps)].state;
}

std::optional<QString> UndoHistory::undoName() const {
    if (!canUndo()) return std::nullopt;
    return entries_[checkedSize(cursor_)].name;
}

std::optional<QString> UndoHistory::redoName() const {
    if (!canRedo()) return std::nullopt;
    return entries_[checkedSize(cursor_) + 1].name;
}

} // namespace qirn
