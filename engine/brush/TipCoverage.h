// The coverage of a tip at a distance from its center, over any 64-bit number type; like platform/lanes/Lanes.h,
// included once for each instruction set.
#include "brush/TipEdge.h"
#include "platform/lanes/Lanes.h"

#if defined(QIRN_BRUSH_TIPCOVERAGE_H) == defined(HWY_TARGET_TOGGLE)
#ifdef QIRN_BRUSH_TIPCOVERAGE_H
#undef QIRN_BRUSH_TIPCOVERAGE_H
#else
#define QIRN_BRUSH_TIPCOVERAGE_H
#endif

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

/// A linear edge one pixel wide, centerd on the radius.
template <class V> HWY_INLINE V hardCoverage(const TipEdge& tip, V dist) {
    const V a = V(tip.r) - dist + V(0.5);
    return smaller(V(1), larger(V(0), a));
}

/// A smooth step from 1 at `inner` to 0 at the radius.
template <class V> HWY_INLINE V softCoverage(const TipEdge& tip, V dist) {
    const V t = smaller(V(1), larger(V(0), (dist - V(tip.inner)) / V(tip.band)));
    return larger(V(0), V(1) - t * t * (V(3) - V(2) * t));
}

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // once for each instruction set
