#pragma once
#include "core/Layer.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace qirn {

/// A tile to be drawn, and all slots of the new grid that get it.
struct TileJob {
    int64_t first; // the first of the slots, for which it is drawn
    std::vector<int64_t> slots;
    bool drawsAll = false; // every byte of the tile, so that it need not be cleared first
    TileRef tile;
};

/// Tiles to be drawn for a layer, each once for all slots with the same key, which holds everything that the pixels
/// depend on.
template <class Key> class TileJobs {
public:
    enum class DrawsAll { no, yes };
    void add(const Key& key, int64_t slot, DrawsAll drawsAll = DrawsAll::no) {
        const auto [place, isNew] = byKey_.try_emplace(key, jobs_.size());
        if (isNew) jobs_.push_back({slot, {}, drawsAll == DrawsAll::yes, nullptr});
        jobs_[place->second].slots.push_back(slot);
    }

    /// Runs `draw(job, pixels)` for all in parallel, and then puts what has alpha into the layer.
    template <class Draw> void run(Layer& to, Draw draw, const Progress& progress = {}) {
        const auto drawOne = [&](int64_t i) {
            TileJob& job = jobs_[checkedSize(i)];
            auto tile = job.drawsAll ? std::make_shared<Tile>(BlockPool::take()) : std::make_shared<Tile>();
            draw(job, tile->writablePixels());
            if (!tile->isEmpty()) job.tile = std::move(tile);
        };
        concurrentPerform(static_cast<int64_t>(jobs_.size()), drawOne, progress);
        for (TileJob& job : jobs_) {
            if (!job.tile) continue;
            if (job.slots.size() > 1) job.tile->freeze();
            for (int64_t slot : job.slots) to.setTile(slot, job.tile);
        }
    }

private:
    std::map<Key, std::size_t> byKey_;
    std::vector<TileJob> jobs_;
};

} // namespace qirn
