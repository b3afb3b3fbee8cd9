#include "operations/painting/RowPainter.h"

#include <cstring>

// Compiled once for each instruction set; the best one is chosen when the program runs.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "operations/painting/RowPainter.cpp"
#include <hwy/foreach_target.h>

#include "operations/painting/PaintFormulas.h"

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

template <class Lay>
HWY_ATTR void paintBlocks(const FlatPaint& paint, const CoverageRow& coverage, uint8_t* row) {
    const StraightColor color{Floats(paint.r), Floats(paint.g), Floats(paint.b)};
    const Floats strength(paint.strength);
    const Floats fully = Floats(255) * strength / Floats(255);
    const Words solid = opaquePixels(color);
    const bool hides = paint.hides();
    const Lay lay;
    for (int block = 0; block < kTileSize; block += kPaintBlock) {
        uint64_t covered[kPaintBlock / 8];
        std::memcpy(covered, coverage.data() + block, sizeof covered);
        if ((covered[0] | covered[1]) == 0) continue;
        const bool isFull = (covered[0] & covered[1]) == ~uint64_t{0};
        for (int x = block; x < block + kPaintBlock; x += kLanes) {
            uint8_t* pixels = row + x * 4;
            if (isFull) {
                storeWords(hides ? solid : lay(loadWords(pixels), fully, color), pixels);
                continue;
            }
            const Floats c = floatsOf(coverage.data() + x);
            const Words before = loadWords(pixels);
            const Words painted = lay(before, c * strength / Floats(255), color);
            storeWords(select(c > Floats(0), painted, before), pixels);
        }
    }
}

HWY_ATTR void PaintFlatRow(const FlatPaint& paint, const CoverageRow& coverage, uint8_t* row) {
    paint.lock == AlphaLock::yes ? paintBlocks<PaintWithinAlpha>(paint, coverage, row)
                                 : paintBlocks<PaintOver>(paint, coverage, row);
}

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qirn {

// Not in the header: as an inline function each file of hot loops would bring its own.
bool FlatPaint::hides() const {
    return strength == 1 && lock == AlphaLock::no;
}

HWY_EXPORT(PaintFlatRow);

void paintRow(const FlatPaint& paint, const CoverageRow& coverage, uint8_t* row) {
    HWY_DYNAMIC_DISPATCH(PaintFlatRow)(paint, coverage, row);
}

} // namespace qirn
#endif
