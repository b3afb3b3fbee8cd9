// Lanes of one number, for the plain form of each loop. Their operations are documented here for both forms.
// Included by platform/lanes/Lanes.h alone, once for each instruction set.
HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

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
/// Non-temporal store, past the caches. `to` is aligned to the vector. Call hwy::FlushStream() after the last one,
/// before another thread reads the memory.
HWY_INLINE void streamWords(Words v, uint8_t* to) {
    storeWords(v, to);
}
/// The byte that begins at bit kShift, as a word.
template <int kShift> HWY_INLINE Words byteWord(Words word) {
    return (word >> kShift) & 0xFF;
}
/// The word as a float; words below 2^31.
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
/// Truncates to whole numbers; for values that fit in 32 bits.
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
/// One vector of floats from vectors of doubles: `doublesAt(i)` returns the doubles of the lanes from `i` on.
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
/// Clamped to 0 to 255; NaN becomes 0.
HWY_INLINE Floats clampedToByte(Floats v) {
    v = v > 0 ? v : 0;
    return v < 255 ? v : 255;
}

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
