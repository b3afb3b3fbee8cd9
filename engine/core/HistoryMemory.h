#pragma once
#include "core/Layer.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace qirn {

/// Counts the bytes of tiles that the undo states hold, each tile once however many states share it. It is told
/// of every state that comes or goes, and looks only at tile arrays that no other state shares, so that a commit
/// costs what changed since the last one.
class HistoryMemory {
public:
    void add(const std::vector<LayerState>& layers);
    void remove(const std::vector<LayerState>& layers);
    void clear();
    int64_t bytes() const { return static_cast<int64_t>(tiles_.size()) * kTileBytes; }

private:
    std::unordered_map<const void*, int64_t> arrays_; // shared blocks of slots, with the layers that use each
    std::unordered_map<const Tile*, int64_t> tiles_;  // tiles, with the arrays and slots that name each
};

} // namespace qirn
