#pragma once
#include "core/StoredForm.h"
#include "core/Tile.h"
#include "platform/Progress.h"

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

namespace qirn {

struct DocumentSnapshot;

/// The encoded tiles of a snapshot, each once however many slots share it.
class StoredTiles {
public:
    /// Encodes in parallel; borrows the tiles.
    StoredTiles(const DocumentSnapshot& snapshot, const Progress& progress);

    const StoredForm& operator[](const Tile& tile) const { return *forms_[places_.at(&tile)]; }

private:
    void encode(const std::vector<const Tile*>& tiles, const std::vector<std::size_t>& unknown,
                const Progress& progress);

    std::unordered_map<const Tile*, std::size_t> places_;
    std::vector<std::shared_ptr<const StoredForm>> forms_;
};

} // namespace qirn
