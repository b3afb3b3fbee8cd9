// How a tip covers at a distance from its centre, over any 64-bit number type; like platform/Lanes.h, included once
// for each instruction set.
#include "brush/TipEdge.h"
#include "platform/Lanes.h"

#if defined(QIRN_BRUSH_TIPCOVERAGE_H) == defined(HWY_TARGET_TOGGLE)
#ifdef QIRN_BRUSH_TIPCOVERAGE_H
#undef QIRN_BRUSH_TIPCOVERAGE_H
#else
#define QIRN_BRUSH_TIPCOVERAGE_H
#endif

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {

/// A linear edge one pixel wide, centred on the radius.
template <class V> HWY_INLINE V hardCoverage(const TipEdge& tip, V dist) {
    const V a = V(tip.r) - dist + V(0.5);
    return select(a >= V(1), V(1), select(a > V(0), a, V(0)));
}

/// A smooth step from 1 at `inner` to 0 at the radius.
template <class V> HWY_INLINE V softCoverage(const TipEdge& tip, V dist) {
    const V t = (dist - V(tip.inner)) / V(tip.band);
    const V c = V(1) - t * t * (V(3) - V(2) * t);
    return select(dist <= V(tip.inner), V(1), select(dist >= V(tip.r), V(0), select(c > V(0), c, V(0))));
}

} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // once for each instruction set
