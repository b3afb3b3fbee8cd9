#pragma once
#include "core/Layer.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace qirn {

class Selection;

/// Counts the bytes of tiles that the undo states hold, each tile once however many states share it. It is told
/// of every state that comes or goes, and looks only at tile arrays and selections that no other state shares, so that
/// a commit costs what changed since the last one.
class HistoryMemory {
public:
    /// If memory runs out, throws and counts nothing. `selection` may be null.
    void add(const std::vector<LayerState>& layers, const Selection* selection);
    void remove(const std::vector<LayerState>& layers, const Selection* selection);
    void clear() { *this = {}; }
    int64_t bytes() const { return static_cast<int64_t>(tiles_.size()) * kTileBytes; } ///< Of layers.
    int64_t selectionBytes() const { return static_cast<int64_t>(masks_.size()) * kTilePixels; }

private:
    using Uses = std::unordered_map<const void*, int64_t>;
    void add(const TileArray& tiles);
    void remove(const TileArray& tiles);

    Uses arrays_;     // shared blocks of slots, with the layers that use each
    Uses tiles_;      // tiles, with the arrays and slots that name each
    Uses selections_; // with the states that hold each
    Uses masks_;      // their tiles, with the selections and slots that name each
};

} // namespace qirn
