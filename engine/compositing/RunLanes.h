// Several pixels of a run side by side; like platform/lanes/Lanes.h, included once for each instruction set.
#include "compositing/BlendPixel.h"
#include "compositing/BlendRows.h"
#include "platform/lanes/Lanes.h"

#if defined(QIRN_COMPOSITING_RUNLANES_H) == defined(HWY_TARGET_TOGGLE)
#ifdef QIRN_COMPOSITING_RUNLANES_H
#undef QIRN_COMPOSITING_RUNLANES_H
#else
#define QIRN_COMPOSITING_RUNLANES_H
#endif

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

using Colors = blend::Rgb<Floats>;

HWY_INLINE Colors loadColors(const PixelRun& run, int at) {
    return {loadFloats(run.r + at), loadFloats(run.g + at), loadFloats(run.b + at)};
}

HWY_INLINE void storeColors(const Colors& c, PixelRun& run, int at) {
    storeFloats(c.r, run.r + at);
    storeFloats(c.g, run.g + at);
    storeFloats(c.b, run.b + at);
}

HWY_INLINE Pixel<Floats> loadPixels(const PixelRun& run, int at) {
    return {loadFloats(run.r + at), loadFloats(run.g + at), loadFloats(run.b + at), loadFloats(run.a + at)};
}

HWY_INLINE void storePixels(const Pixel<Floats>& p, PixelRun& run, int at) {
    storeColors({p.r, p.g, p.b}, run, at);
    storeFloats(p.a, run.a + at);
}

HWY_INLINE Pixel<Floats> pixelsOf(Words words, Floats k) {
    return {byteOf<0>(words) * k, byteOf<8>(words) * k, byteOf<16>(words) * k, byteOf<24>(words) * k};
}

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // once for each instruction set
