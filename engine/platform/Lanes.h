// Several 32-bit floats side by side that read like one: the number type that hot loops are written over.
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
#include <cstdint>
#include <cstring>

#define QIRN_PLAIN_TARGET (HWY_TARGET == HWY_EMU128 || HWY_TARGET == HWY_SCALAR)

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {

// What `float` offers besides its operators, by the names that lanes use too.
HWY_INLINE float select(bool condition, float yes, float no) {
    return condition ? yes : no;
}
/// The first where neither is smaller, as where one is no number.
HWY_INLINE float smaller(float a, float b) {
    return b < a ? b : a;
}
HWY_INLINE float larger(float a, float b) {
    return a < b ? b : a;
}
HWY_INLINE float absolute(float a) {
    return std::fabs(a);
}
HWY_INLINE float squareRoot(float a) {
    return std::sqrt(a);
}
HWY_INLINE double select(bool condition, double yes, double no) {
    return condition ? yes : no;
}
HWY_INLINE double squareRoot(double a) {
    return std::sqrt(a);
}
HWY_INLINE bool both(bool a, bool b) {
    return a && b;
}
HWY_INLINE bool either(bool a, bool b) {
    return a || b;
}

#if QIRN_PLAIN_TARGET

inline constexpr int kLanes = 1;
inline constexpr int kDoubleLanes = 1;
using Floats = float;
using Doubles = double;
using Words = uint32_t; ///< One 32-bit word a lane.

HWY_INLINE Floats loadFloats(const float* from) {
    return *from;
}
HWY_INLINE void storeFloats(Floats v, float* to) {
    *to = v;
}
HWY_INLINE Words loadWords(const uint8_t* from) {
    Words word;
    std::memcpy(&word, from, 4);
    return word;
}
HWY_INLINE void storeWords(Words v, uint8_t* to) {
    std::memcpy(to, &v, 4);
}
template <int kShift> HWY_INLINE Floats byteOf(Words word) {
    return static_cast<float>(static_cast<int32_t>((word >> kShift) & 0xFF));
}
template <int kShift> HWY_INLINE Words shiftedUp(Words word) {
    return word << kShift;
}
template <int kShift> HWY_INLINE Words shiftedDown(Words word) {
    return word >> kShift;
}
HWY_INLINE Words allWords(uint32_t word) {
    return word;
}
/// The fraction is cut off; for values that fit.
HWY_INLINE Words truncated(Floats v) {
    return static_cast<uint32_t>(static_cast<int32_t>(v));
}
HWY_INLINE Words smaller(Words a, Words b) {
    return b < a ? b : a;
}
HWY_INLINE Words select(bool condition, Words yes, Words no) {
    return condition ? yes : no;
}
HWY_INLINE bool anyOf(bool condition) {
    return condition;
}
HWY_INLINE Doubles loadDoubles(const double* from) {
    return *from;
}
HWY_INLINE void storeDoubles(Doubles v, double* to) {
    *to = v;
}
HWY_INLINE void storeNarrowed(Doubles v, float* to) {
    *to = static_cast<float>(v);
}
HWY_INLINE Doubles widened(const float* from) {
    return static_cast<double>(*from);
}
HWY_INLINE Doubles widened(const uint8_t* from) {
    return static_cast<double>(*from);
}
/// 0, 1, 2 and so on, a number a lane.
HWY_INLINE Doubles laneNumbers() {
    return 0;
}
/// 0 to 255; also 0 for what is no number.
HWY_INLINE Floats clampedToByte(Floats v) {
    v = v > 0 ? v : 0;
    return v < 255 ? v : 255;
}

#else

namespace hn = hwy::HWY_NAMESPACE;
using FloatTag = hn::ScalableTag<float>;
using WordTag = hn::ScalableTag<uint32_t>;
inline constexpr int kLanes = HWY_LANES(float);

struct Floats {
    hn::VFromD<FloatTag> v;

    HWY_INLINE explicit Floats(hn::VFromD<FloatTag> lanes) : v(lanes) {}
    HWY_INLINE Floats(float all) : v(hn::Set(FloatTag(), all)) {}
};
struct Condition {
    hn::MFromD<FloatTag> m;
};

using DoubleTag = hn::ScalableTag<double>;
inline constexpr int kDoubleLanes = HWY_LANES(double);
struct Doubles {
    hn::VFromD<DoubleTag> v;

    HWY_INLINE explicit Doubles(hn::VFromD<DoubleTag> lanes) : v(lanes) {}
    HWY_INLINE Doubles(double all) : v(hn::Set(DoubleTag(), all)) {}
};
struct DoubleCondition {
    hn::MFromD<DoubleTag> m;
};
using Words = hn::VFromD<WordTag>;

HWY_INLINE Floats operator+(Floats a, Floats b) {
    return Floats(hn::Add(a.v, b.v));
}
HWY_INLINE Floats operator-(Floats a, Floats b) {
    return Floats(hn::Sub(a.v, b.v));
}
HWY_INLINE Floats operator*(Floats a, Floats b) {
    return Floats(hn::Mul(a.v, b.v));
}
HWY_INLINE Floats operator/(Floats a, Floats b) {
    return Floats(hn::Div(a.v, b.v));
}
HWY_INLINE Condition operator<(Floats a, Floats b) {
    return {hn::Lt(a.v, b.v)};
}
HWY_INLINE Condition operator>(Floats a, Floats b) {
    return {hn::Gt(a.v, b.v)};
}
HWY_INLINE Condition operator<=(Floats a, Floats b) {
    return {hn::Le(a.v, b.v)};
}
HWY_INLINE Condition operator>=(Floats a, Floats b) {
    return {hn::Ge(a.v, b.v)};
}
HWY_INLINE Condition operator==(Floats a, Floats b) {
    return {hn::Eq(a.v, b.v)};
}
HWY_INLINE Condition operator!=(Floats a, Floats b) {
    return {hn::Ne(a.v, b.v)};
}
HWY_INLINE Condition operator!(Condition a) {
    return {hn::Not(a.m)};
}
HWY_INLINE Condition both(Condition a, Condition b) {
    return {hn::And(a.m, b.m)};
}
HWY_INLINE Condition either(Condition a, Condition b) {
    return {hn::Or(a.m, b.m)};
}
HWY_INLINE Floats select(Condition condition, Floats yes, Floats no) {
    return Floats(hn::IfThenElse(condition.m, yes.v, no.v));
}
// The processor's own minimum gives its second operand where neither is smaller, or where one is no number.
HWY_INLINE Floats smaller(Floats a, Floats b) {
#if HWY_ARCH_X86
    return Floats(hn::Min(b.v, a.v));
#else
    return select(b < a, b, a);
#endif
}
HWY_INLINE Floats larger(Floats a, Floats b) {
#if HWY_ARCH_X86
    return Floats(hn::Max(b.v, a.v));
#else
    return select(a < b, b, a);
#endif
}
HWY_INLINE Floats absolute(Floats a) {
    return Floats(hn::Abs(a.v));
}
HWY_INLINE Floats squareRoot(Floats a) {
    return Floats(hn::Sqrt(a.v));
}
HWY_INLINE Floats loadFloats(const float* from) {
    return Floats(hn::Load(FloatTag(), from));
}
HWY_INLINE void storeFloats(Floats v, float* to) {
    hn::Store(v.v, FloatTag(), to);
}
HWY_INLINE Words loadWords(const uint8_t* from) {
    return hn::BitCast(WordTag(), hn::LoadU(hn::ScalableTag<uint8_t>(), from));
}
HWY_INLINE void storeWords(Words v, uint8_t* to) {
    hn::StoreU(hn::BitCast(hn::ScalableTag<uint8_t>(), v), hn::ScalableTag<uint8_t>(), to);
}
template <int kShift> HWY_INLINE Floats byteOf(Words word) {
    const hn::ScalableTag<int32_t> whole;
    Words byte = word;
    if constexpr (kShift > 0) byte = hn::ShiftRight<kShift>(byte);
    if constexpr (kShift < 24) byte = hn::And(byte, hn::Set(WordTag(), 0xFF));
    return Floats(hn::ConvertTo(FloatTag(), hn::BitCast(whole, byte)));
}
template <int kShift> HWY_INLINE Words shiftedUp(Words word) {
    return hn::ShiftLeft<kShift>(word);
}
template <int kShift> HWY_INLINE Words shiftedDown(Words word) {
    return hn::ShiftRight<kShift>(word);
}
HWY_INLINE Words allWords(uint32_t word) {
    return hn::Set(WordTag(), word);
}
HWY_INLINE Words truncated(Floats v) {
    return hn::BitCast(WordTag(), hn::ConvertTo(hn::ScalableTag<int32_t>(), v.v));
}
HWY_INLINE Words smaller(Words a, Words b) {
    return hn::Min(a, b);
}
HWY_INLINE Floats clampedToByte(Floats v) {
    return smaller(Floats(255), larger(Floats(0), v));
}

HWY_INLINE Words select(Condition condition, Words yes, Words no) {
    return hn::IfThenElse(hn::RebindMask(WordTag(), condition.m), yes, no);
}
HWY_INLINE bool anyOf(Condition condition) {
    return !hn::AllFalse(FloatTag(), condition.m);
}

HWY_INLINE Doubles operator+(Doubles a, Doubles b) {
    return Doubles(hn::Add(a.v, b.v));
}
HWY_INLINE Doubles operator-(Doubles a, Doubles b) {
    return Doubles(hn::Sub(a.v, b.v));
}
HWY_INLINE Doubles operator*(Doubles a, Doubles b) {
    return Doubles(hn::Mul(a.v, b.v));
}
HWY_INLINE Doubles operator/(Doubles a, Doubles b) {
    return Doubles(hn::Div(a.v, b.v));
}
HWY_INLINE DoubleCondition operator>(Doubles a, Doubles b) {
    return {hn::Gt(a.v, b.v)};
}
HWY_INLINE DoubleCondition operator<=(Doubles a, Doubles b) {
    return {hn::Le(a.v, b.v)};
}
HWY_INLINE DoubleCondition operator>=(Doubles a, Doubles b) {
    return {hn::Ge(a.v, b.v)};
}
HWY_INLINE Doubles select(DoubleCondition condition, Doubles yes, Doubles no) {
    return Doubles(hn::IfThenElse(condition.m, yes.v, no.v));
}
HWY_INLINE Doubles squareRoot(Doubles a) {
    return Doubles(hn::Sqrt(a.v));
}
HWY_INLINE Doubles loadDoubles(const double* from) {
    return Doubles(hn::Load(DoubleTag(), from));
}
HWY_INLINE void storeDoubles(Doubles v, double* to) {
    hn::Store(v.v, DoubleTag(), to);
}
HWY_INLINE void storeNarrowed(Doubles v, float* to) {
    const hn::Rebind<float, DoubleTag> narrow;
    hn::Store(hn::DemoteTo(narrow, v.v), narrow, to);
}
HWY_INLINE Doubles widened(const float* from) {
    return Doubles(hn::PromoteTo(DoubleTag(), hn::Load(hn::Rebind<float, DoubleTag>(), from)));
}
HWY_INLINE Doubles widened(const uint8_t* from) {
    const hn::Rebind<int32_t, DoubleTag> whole;
    return Doubles(
        hn::PromoteTo(DoubleTag(), hn::PromoteTo(whole, hn::Load(hn::Rebind<uint8_t, DoubleTag>(), from))));
}
HWY_INLINE Doubles laneNumbers() {
    return Doubles(hn::Iota(DoubleTag(), 0));
}

#endif

} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // once for each instruction set
