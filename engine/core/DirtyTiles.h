#pragma once
#include <cstdint>
#include <vector>

namespace qirn {

/// The set of tiles whose image on screen is out of date. Adding one again and again costs nothing.
class DirtyTiles {
public:
    void add(int64_t index);
    void setAll(int64_t count);  ///< Every index below `count`, in place of what was there.
    std::vector<int64_t> take(); ///< Sorted from small to large; leaves none.

private:
    std::vector<int64_t> listed_; // each once, in order of arrival
    std::vector<bool> present_;   // by index
};

} // namespace qirn
