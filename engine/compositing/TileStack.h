#pragma once
#include "compositing/BlendRows.h"
#include "compositing/Compositor.h"

#include <cstdint>
#include <span>
#include <vector>

namespace qirn {

/// The visible inputs of one tile, blended run by run. It borrows the inputs and belongs to one thread.
class TileStack {
public:
    TileStack(int64_t index, std::span<const CompositeInput> layers);

    bool isEmpty() const { return groups_.empty(); } ///< No input has anything to show in the tile.

    /// The finished pixels of the block whose top left corner is at (x, y) in the tile.
    void blend(PixelRun& acc, int x, int y, RunShape shape);

private:
    /// One input that shows in the tile, with those clipped to it that do, in order.
    struct Group {
        const CompositeInput* base;
        std::vector<const CompositeInput*> clipped;
    };
    /// A run's place within the tile.
    struct TileRun;

    static std::vector<Group> groupsIn(int64_t index, std::span<const CompositeInput> layers);
    static bool laysBytes(const Group& group);
    static void blendGroup(PixelRun& acc, const TileRun& run, const Group& group, bool accEmpty);
    bool findShowing(const TileRun& run);

    const int64_t index_;
    const std::vector<Group> groups_;
    // Of the current run:
    std::vector<const Group*> showing_; // from the top
    std::vector<ByteLayer> plain_;      // layers that are blended in one pass
};

} // namespace qirn
