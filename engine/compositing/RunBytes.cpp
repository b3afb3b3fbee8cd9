#include "compositing/BlendRows.h"

#include <hwy/cache_control.h>

// Compiled once for each instruction set; the best one is chosen when the program runs.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "compositing/RunBytes.cpp"
#include <hwy/foreach_target.h>

#include "compositing/RunLanes.h"

// Loading runs from bytes and storing them as bytes.

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

HWY_ATTR void LoadBytes(PixelRun& run, TileBytes bytes, RunShape shape, float opacity) {
    const Floats k(opacity / 255);
    int i = 0;
    for (int y = 0; y < shape.rows; ++y, bytes += kTileRowBytes) {
        for (int x = 0; x < shape.width; x += kLanes, i += kLanes)
            storePixels(pixelsOf(loadWords(bytes + x * 4), k), run, i);
    }
}

HWY_INLINE Words roundedByte(Floats v) {
    return truncated(clampedToByte(v * Floats(255) + Floats(0.5f)));
}

struct PixelWords {
    Words r, g, b, a;
};
template <bool kOpaque> HWY_INLINE PixelWords roundedPixels(const PixelRun& run, int at) {
    const Colors c = loadColors(run, at);
    const PixelWords p{roundedByte(c.r), roundedByte(c.g), roundedByte(c.b), allWords(255)};
    if constexpr (kOpaque) return p;
    const Words a = roundedByte(loadFloats(run.a + at));
    return {smaller(p.r, a), smaller(p.g, a), smaller(p.b, a), a};
}

template <bool kOpaque>
HWY_INLINE void storeRows(uint8_t* out, int64_t rowBytes, const PixelRun& run, RunShape shape) {
    int i = 0;
    for (int y = 0; y < shape.rows; ++y, out += rowBytes) {
        for (int x = 0; x < shape.width; x += kLanes, i += kLanes) {
            const PixelWords p = roundedPixels<kOpaque>(run, i);
            storeWords(p.r | shiftedUp<8>(p.g) | shiftedUp<16>(p.b) | shiftedUp<24>(p.a), out + x * 4);
        }
    }
}

HWY_ATTR void StoreBytes(uint8_t* out, int64_t rowBytes, const PixelRun& run, RunShape shape) {
    run.opaque ? storeRows<true>(out, rowBytes, run, shape) : storeRows<false>(out, rowBytes, run, shape);
}

/// v / 255 rounded down, exact for v below 65,790.
HWY_INLINE Words over255(Words v) {
    return shiftedDown<23>(v * allWords(0x8081));
}

template <bool kOpaque, Through kThrough>
HWY_INLINE void storeRowsOnBoard(uint8_t* out, int64_t rowBytes, const PixelRun& run, RunShape shape,
                                 const uint32_t* const* grays) {
    const Words full = allWords(255), half = allWords(127), opaque = allWords(0xFF000000u);
    int i = 0;
    for (int y = 0; y < shape.rows; ++y, out += rowBytes) {
        const uint8_t* gray = reinterpret_cast<const uint8_t*>(grays[y]);
        for (int x = 0; x < shape.width; x += kLanes, i += kLanes) {
            PixelWords p = roundedPixels<kOpaque>(run, i);
            if constexpr (!kOpaque) {
                const Words behind = over255(loadWords(gray + x * 4) * (full - p.a) + half);
                p = {p.r + behind, p.g + behind, p.b + behind, full};
            }
            const Words shown = opaque | shiftedUp<16>(p.r) | shiftedUp<8>(p.g) | p.b;
            kThrough == Through::memory ? streamWords(shown, out + x * 4) : storeWords(shown, out + x * 4);
        }
    }
}

HWY_ATTR void StoreOnBoard(uint8_t* out, int64_t rowBytes, const PixelRun& run, RunShape shape,
                           const uint32_t* const* grays, Through through) {
    const auto store = [&]<Through kThrough>() HWY_ATTR {
        run.opaque ? storeRowsOnBoard<true, kThrough>(out, rowBytes, run, shape, grays)
                   : storeRowsOnBoard<false, kThrough>(out, rowBytes, run, shape, grays);
    };
    through == Through::memory ? store.operator()<Through::memory>() : store.operator()<Through::caches>();
}

/// Whether a test, which looks at kRunStep pixels at a time, holds for all pixels of a block.
template <class Test> HWY_INLINE bool allPixels(TileBytes bytes, RunShape shape, Test test) {
    for (int y = 0; y < shape.rows; ++y, bytes += kTileRowBytes) {
        for (int x = 0; x < shape.width; x += kRunStep) {
            if (!test(bytes + x * 4)) return false;
        }
    }
    return true;
}

HWY_ATTR bool IsBlank(TileBytes bytes, RunShape shape) {
    return allPixels(bytes, shape, [](TileBytes from) HWY_ATTR {
        Words any = loadWords(from);
        for (int i = kLanes; i < kRunStep; i += kLanes) any = any | loadWords(from + i * 4);
        return allOf(isZero(any));
    });
}

HWY_ATTR bool IsOpaque(TileBytes bytes, RunShape shape) {
    const Words opaque = allWords(0xFF000000u);
    return allPixels(bytes, shape, [opaque](TileBytes from) HWY_ATTR {
        Words all = loadWords(from) & opaque;
        for (int i = kLanes; i < kRunStep; i += kLanes) all = all & loadWords(from + i * 4);
        return allOf(isZero(all ^ opaque));
    });
}

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qirn {

HWY_EXPORT(LoadBytes);
HWY_EXPORT(StoreBytes);
HWY_EXPORT(StoreOnBoard);
HWY_EXPORT(IsBlank);
HWY_EXPORT(IsOpaque);

void loadBytes(PixelRun& run, TileBytes bytes, RunShape shape, float opacity) {
    run.opaque = false;
    HWY_DYNAMIC_DISPATCH(LoadBytes)(run, bytes, shape, opacity);
}

void storeBytes(uint8_t* out, int64_t rowBytes, const PixelRun& run, RunShape shape) {
    HWY_DYNAMIC_DISPATCH(StoreBytes)(out, rowBytes, run, shape);
}

void storeOnBoard(uint8_t* out, int64_t rowBytes, const PixelRun& run, RunShape shape,
                  const uint32_t* const* grays, Through through) {
    HWY_DYNAMIC_DISPATCH(StoreOnBoard)(out, rowBytes, run, shape, grays, through);
}

void endStreaming() {
    hwy::FlushStream();
}

bool isBlank(TileBytes bytes, RunShape shape) {
    return HWY_DYNAMIC_DISPATCH(IsBlank)(bytes, shape);
}

bool isOpaque(TileBytes bytes, RunShape shape) {
    return HWY_DYNAMIC_DISPATCH(IsOpaque)(bytes, shape);
}

} // namespace qirn
#endif
