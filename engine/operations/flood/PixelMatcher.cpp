#include "operations/flood/PixelMatcher.h"

#include <algorithm>
#include <bit>

// Compiled once for each instruction set; the best one is chosen when the program runs.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "operations/flood/PixelMatcher.cpp"
#include <hwy/foreach_target.h>

#include "platform/lanes/ByteLanes.h"

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

HWY_ATTR void MatchTile(const uint8_t* pixels, uint32_t lowest, uint32_t highest, TileBits& out) {
    const Words low = allWords(lowest), high = allWords(highest);
    for (BitRow& row : out.rows) {
        for (uint64_t& word : row.words) {
            uint64_t like = 0;
            for (int i = 0; i < 64; i += kLanes, pixels += kLanes * 4)
                like |= zeroBits(bytesBeyond(loadWords(pixels), low, high)) << i;
            word = like;
        }
    }
}

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qirn {

HWY_EXPORT(MatchTile);

PixelMatcher::PixelMatcher(const PixelBytes& clicked, int64_t tolerance) {
    const int limit = static_cast<int>(std::clamp<int64_t>(tolerance, 0, 255));
    for (std::size_t i = 0; i < clicked.size(); ++i) {
        lowest_[i] = static_cast<uint8_t>(std::max(clicked[i] - limit, 0));
        highest_[i] = static_cast<uint8_t>(std::min(clicked[i] + limit, 255));
    }
}

void PixelMatcher::match(const uint8_t* pixels, TileBits& out) const {
    HWY_DYNAMIC_DISPATCH(MatchTile)
    (pixels, std::bit_cast<uint32_t>(lowest_), std::bit_cast<uint32_t>(highest_), out);
}

} // namespace qirn
#endif
