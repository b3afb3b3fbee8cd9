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

// What one number offers besides its operators, by the names that lanes use too.
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
/// Past the caches, for what nobody reads soon. `to` is aligned to the vector; once all is stored, and before
/// another thread reads it, comes hwy::FlushStream().
HWY_INLINE void streamWords(Words v, uint8_t* to) {
    storeWords(v, to);
}
/// The byte that begins at bit kShift, as a word.
template <int kShift> HWY_INLINE Words byteWord(Words word) {
    return (word >> kShift) & 0xFF;
}
/// For words below 2^31.
HWY_INLINE Floats numberOf(Words word) {
    return static_cast<float>(static_cast<int32_t>(word));
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
HWY_INLINE bool isZero(Words word) {
    return word == 0;
}
HWY_INLINE Words zeroWhere(bool condition, Words word) {
    return condition ? 0 : word;
}
/// `doublesAt(i)` gives the doubles for the lanes from `i` on.
template <class DoublesAt> HWY_INLINE Floats narrowedFrom(DoublesAt doublesAt) {
    return static_cast<float>(doublesAt(0));
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
HWY_INLINE Floats floatLaneNumbers() {
    return 0;
}
/// 0 to 255; also 0 for what is no number.
HWY_INLINE Floats clampedToByte(Floats v) {
    v = v > 0 ? v : 0;
    return v < 255 ? v : 255;
}

#else

namespace hn = hwy::HWY_NAMESPACE;
using WordTag = hn::ScalableTag<uint32_t>;
using Words = hn::VFromD<WordTag>;

/// Which byte goes where so that byte kByte of each word stands alone in it. As wide as the widest vectors, so that
/// it is read where it is needed: a compiler that knows the bytes may well build them anew at each turn of a loop.
template <int kByte> struct ByteOfWord {
    alignas(64) uint8_t at[64];

    constexpr ByteOfWord() : at() {
        for (int i = 0; i < 64; ++i) at[i] = static_cast<uint8_t>(i % 4 == 0 ? i % 16 + kByte : 0x80);
    }
};
template <int kByte> inline constexpr ByteOfWord<kByte> kByteOfWord;

// Free templates, and no friends within the class: g++ compiles those without the instruction set wherever it does not
// inline them, and both sides of such a call look for the lanes in different places.

/// Yes or no for each lane of numbers of type T.
template <class T> struct LaneCondition { hn::MFromD<hn::ScalableTag<T>> m; };
template <class T> HWY_INLINE LaneCondition<T> operator!(LaneCondition<T> a) {
    return {hn::Not(a.m)};
}
template <class T> HWY_INLINE LaneCondition<T> both(LaneCondition<T> a, LaneCondition<T> b) {
    return {hn::And(a.m, b.m)};
}
template <class T> HWY_INLINE LaneCondition<T> either(LaneCondition<T> a, LaneCondition<T> b) {
    return {hn::Or(a.m, b.m)};
}
template <class T> HWY_INLINE bool anyOf(LaneCondition<T> a) {
    return !hn::AllFalse(hn::ScalableTag<T>(), a.m);
}
template <class T> HWY_INLINE bool allOf(LaneCondition<T> a) {
    return hn::AllTrue(hn::ScalableTag<T>(), a.m);
}

template <class T> struct LaneNumbers {
    using Tag = hn::ScalableTag<T>;
    hn::VFromD<Tag> v;

    HWY_INLINE explicit LaneNumbers(hn::VFromD<Tag> lanes) : v(lanes) {}
    HWY_INLINE LaneNumbers(T all) : v(hn::Set(Tag(), all)) {}
};
template <class T> HWY_INLINE LaneNumbers<T> operator+(LaneNumbers<T> a, LaneNumbers<T> b) {
    return LaneNumbers<T>(hn::Add(a.v, b.v));
}
template <class T> HWY_INLINE LaneNumbers<T> operator-(LaneNumbers<T> a, LaneNumbers<T> b) {
    return LaneNumbers<T>(hn::Sub(a.v, b.v));
}
template <class T> HWY_INLINE LaneNumbers<T> operator*(LaneNumbers<T> a, LaneNumbers<T> b) {
    return LaneNumbers<T>(hn::Mul(a.v, b.v));
}
template <class T> HWY_INLINE LaneNumbers<T> operator/(LaneNumbers<T> a, LaneNumbers<T> b) {
    return LaneNumbers<T>(hn::Div(a.v, b.v));
}
template <class T> HWY_INLINE LaneCondition<T> operator<(LaneNumbers<T> a, LaneNumbers<T> b) {
    return {hn::Lt(a.v, b.v)};
}
template <class T> HWY_INLINE LaneCondition<T> operator>(LaneNumbers<T> a, LaneNumbers<T> b) {
    return {hn::Gt(a.v, b.v)};
}
template <class T> HWY_INLINE LaneCondition<T> operator<=(LaneNumbers<T> a, LaneNumbers<T> b) {
    return {hn::Le(a.v, b.v)};
}
template <class T> HWY_INLINE LaneCondition<T> operator>=(LaneNumbers<T> a, LaneNumbers<T> b) {
    return {hn::Ge(a.v, b.v)};
}
template <class T> HWY_INLINE LaneCondition<T> operator==(LaneNumbers<T> a, LaneNumbers<T> b) {
    return {hn::Eq(a.v, b.v)};
}
template <class T> HWY_INLINE LaneCondition<T> operator!=(LaneNumbers<T> a, LaneNumbers<T> b) {
    return {hn::Ne(a.v, b.v)};
}
template <class T>
HWY_INLINE LaneNumbers<T> select(LaneCondition<T> condition, LaneNumbers<T> yes, LaneNumbers<T> no) {
    return LaneNumbers<T>(hn::IfThenElse(condition.m, yes.v, no.v));
}
// The processor's own minimum returns its second operand when they are equal or either is NaN.
template <class T> HWY_INLINE LaneNumbers<T> smaller(LaneNumbers<T> a, LaneNumbers<T> b) {
#if HWY_ARCH_X86
    return LaneNumbers<T>(hn::Min(b.v, a.v));
#else
    return select(b < a, b, a);
#endif
}
template <class T> HWY_INLINE LaneNumbers<T> larger(LaneNumbers<T> a, LaneNumbers<T> b) {
#if HWY_ARCH_X86
    return LaneNumbers<T>(hn::Max(b.v, a.v));
#else
    return select(a < b, b, a);
#endif
}
template <class T> HWY_INLINE LaneNumbers<T> absolute(LaneNumbers<T> a) {
    return LaneNumbers<T>(hn::Abs(a.v));
}
template <class T> HWY_INLINE LaneNumbers<T> squareRoot(LaneNumbers<T> a) {
    return LaneNumbers<T>(hn::Sqrt(a.v));
}
using Floats = LaneNumbers<float>;
using Doubles = LaneNumbers<double>;
inline constexpr int kLanes = HWY_LANES(float);
inline constexpr int kDoubleLanes = HWY_LANES(double);

HWY_INLINE Floats loadFloats(const float* from) {
    return Floats(hn::Load(Floats::Tag(), from));
}
HWY_INLINE void storeFloats(Floats v, float* to) {
    hn::Store(v.v, Floats::Tag(), to);
}
HWY_INLINE Floats floatLaneNumbers() {
    return Floats(hn::Iota(Floats::Tag(), 0));
}
HWY_INLINE Words loadWords(const uint8_t* from) {
    return hn::BitCast(WordTag(), hn::LoadU(hn::ScalableTag<uint8_t>(), from));
}
HWY_INLINE void storeWords(Words v, uint8_t* to) {
    hn::StoreU(hn::BitCast(hn::ScalableTag<uint8_t>(), v), hn::ScalableTag<uint8_t>(), to);
}
HWY_INLINE void streamWords(Words v, uint8_t* to) {
    hn::Stream(hn::BitCast(hn::ScalableTag<uint8_t>(), v), hn::ScalableTag<uint8_t>(), to);
}
/// The byte that begins at bit kShift, as a word.
template <int kShift> HWY_INLINE Words byteWord(Words word) {
    if constexpr (kShift == 24) {
        return hn::ShiftRight<24>(word);
    } else { // one step where a shift and a mask are two
        const hn::ScalableTag<uint8_t> bytes;
        return hn::BitCast(WordTag(), hn::TableLookupBytesOr0(hn::BitCast(bytes, word),
                                                              hn::Load(bytes, kByteOfWord<kShift / 8>.at)));
    }
}
HWY_INLINE Floats numberOf(Words word) {
    return Floats(hn::ConvertTo(Floats::Tag(), hn::BitCast(hn::ScalableTag<int32_t>(), word)));
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
#if HWY_ARCH_X86
// Highway's conversion also sees to numbers that do not fit, which takes longer than the rest of a loop.
HWY_INLINE __m128i cutOff(__m128 v) {
    return _mm_cvttps_epi32(v);
}
#if HWY_TARGET <= HWY_AVX2
HWY_INLINE __m256i cutOff(__m256 v) {
    return _mm256_cvttps_epi32(v);
}
#endif
#if HWY_TARGET <= HWY_AVX3
HWY_INLINE __m512i cutOff(__m512 v) {
    return _mm512_cvttps_epi32(v);
}
#endif
HWY_INLINE Words truncated(Floats v) {
    return Words{cutOff(v.v.raw)};
}
#else
HWY_INLINE Words truncated(Floats v) {
    return hn::BitCast(WordTag(), hn::ConvertTo(hn::ScalableTag<int32_t>(), v.v));
}
#endif
HWY_INLINE Words smaller(Words a, Words b) {
    return hn::Min(a, b);
}
HWY_INLINE Words select(LaneCondition<float> condition, Words yes, Words no) {
    return hn::IfThenElse(hn::RebindMask(WordTag(), condition.m), yes, no);
}
HWY_INLINE LaneCondition<uint32_t> isZero(Words word) {
    return {hn::Eq(word, hn::Zero(WordTag()))};
}
HWY_INLINE Words zeroWhere(LaneCondition<uint32_t> condition, Words word) {
    return hn::IfThenZeroElse(condition.m, word);
}
HWY_INLINE Floats clampedToByte(Floats v) {
    return smaller(Floats(255), larger(Floats(0), v));
}

template <class DoublesAt> HWY_INLINE Floats narrowedFrom(DoublesAt doublesAt) {
    const hn::Half<Floats::Tag> half;
    const Doubles low = doublesAt(0), high = doublesAt(kDoubleLanes);
    return Floats(hn::Combine(Floats::Tag(), hn::DemoteTo(half, high.v), hn::DemoteTo(half, low.v)));
}
HWY_INLINE void storeNarrowed(Doubles v, float* to) {
    const hn::Rebind<float, Doubles::Tag> narrow;
    hn::Store(hn::DemoteTo(narrow, v.v), narrow, to);
}
HWY_INLINE Doubles widened(const float* from) {
    return Doubles(hn::PromoteTo(Doubles::Tag(), hn::Load(hn::Rebind<float, Doubles::Tag>(), from)));
}
HWY_INLINE Doubles widened(const uint8_t* from) {
    const hn::Rebind<int32_t, Doubles::Tag> whole;
    return Doubles(hn::PromoteTo(Doubles::Tag(),
                                 hn::PromoteTo(whole, hn::LoadU(hn::Rebind<uint8_t, Doubles::Tag>(), from))));
}
HWY_INLINE Doubles laneNumbers() {
    return Doubles(hn::Iota(Doubles::Tag(), 0));
}

#endif

template <int kShift> HWY_INLINE Floats byteOf(Words word) {
    static_assert(kShift % 8 == 0);
    return numberOf(byteWord<kShift>(word));
}

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // once for each instruction set
