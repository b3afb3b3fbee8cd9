// Several floats or doubles side by side that read like one: the number types that hot loops are written over.
//
// A source file that uses it is compiled once for each instruction set (Highway's foreach_target), and so is this
// header: everything here lives in the namespace of the instruction set. Where the processor offers none, `Floats`
// is plain `float`, the loops go pixel by pixel, and the bytes are the same: no operation here approximates, and
// none is fused.
#include <hwy/highway.h>

#if defined(QIRN_PLATFORM_LANES_H) == defined(HWY_TARGET_TOGGLE)
#ifdef QIRN_PLATFORM_LANES_H
#undef QIRN_PLATFORM_LANES_H
#else
#define QIRN_PLATFORM_LANES_H
#endif

#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstring>

#define QIRN_PLAIN_TARGET (HWY_TARGET == HWY_EMU128 || HWY_TARGET == HWY_SCALAR)

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

// The functions of a single number, by the same names as those of lanes.
template <std::floating_point T> HWY_INLINE T select(bool condition, T yes, T no) {
    return condition ? yes : no;
}
/// Returns a when they are equal or either is NaN.
template <std::floating_point T> HWY_INLINE T smaller(T a, T b) {
    return b < a ? b : a;
}
template <std::floating_point T> HWY_INLINE T larger(T a, T b) {
    return a < b ? b : a;
}
template <std::floating_point T> HWY_INLINE T absolute(T a) {
    return std::fabs(a);
}
template <std::floating_point T> HWY_INLINE T squareRoot(T a) {
    return std::sqrt(a);
}
HWY_INLINE bool both(bool a, bool b) {
    return a && b;
}
HWY_INLINE bool either(bool a, bool b) {
    return a || b;
}
HWY_INLINE bool anyOf(bool condition) {
    return condition;
}
HWY_INLINE bool allOf(bool condition) {
    return condition;
}

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if QIRN_PLAIN_TARGET
#include "platform/lanes/PlainLanes.h"
#else
#include "platform/lanes/VectorLanes.h"
#endif

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

template <int kShift> HWY_INLINE Floats byteOf(Words word) {
    static_assert(kShift % 8 == 0);
    return numberOf(byteWord<kShift>(word));
}

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // once for each instruction set
