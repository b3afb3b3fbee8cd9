// Lanes as Highway's vectors: the operations of PlainLanes.h, and operators, for several numbers side by side.
// Included by platform/lanes/Lanes.h alone, once for each instruction set.
HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;
using WordTag = hn::ScalableTag<uint32_t>;
using Words = hn::VFromD<WordTag>;

/// Byte shuffle that moves byte kByte of each word to its lowest byte and clears the others. Stored as a table as
/// wide as the widest vector, because compilers rebuild a shuffle of constants in every iteration of a loop.
template <int kByte> struct ByteOfWord {
    alignas(64) uint8_t at[64];

    constexpr ByteOfWord() : at() {
        for (int i = 0; i < 64; ++i) at[i] = static_cast<uint8_t>(i % 4 == 0 ? i % 16 + kByte : 0x80);
    }
};
template <int kByte> inline constexpr ByteOfWord<kByte> kByteOfWord;

// Operators are free templates and not friends of the class: g++ compiles friends that it does not inline without the
// instruction set, and then caller and callee disagree about the registers that hold the lanes.

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
    } else { // one shuffle in place of a shift and a mask
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
// Highway's conversion also handles numbers out of range, which takes longer than the rest of a loop.
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

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
