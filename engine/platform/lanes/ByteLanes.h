// Operations on bytes, in addition to platform/lanes/Lanes.h and under the same rules: included once for each
// instruction set, the same results on all of them.
#include "platform/lanes/Lanes.h"

#if defined(QIRN_PLATFORM_BYTELANES_H) == defined(HWY_TARGET_TOGGLE)
#ifdef QIRN_PLATFORM_BYTELANES_H
#undef QIRN_PLATFORM_BYTELANES_H
#else
#define QIRN_PLATFORM_BYTELANES_H
#endif

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

/// byte / 255, correctly rounded and without a division: 1/255 = 1/256 + 1/256 of 1/255.
template <class V> HWY_INLINE constexpr V byteOver255(V byte) {
    return byte * V(0x1p-8f) + byte * V(0x1.010102p-16f);
}

constexpr bool everyByteIsDivided() {
    for (int byte = 0; byte < 256; ++byte) {
        if (byteOver255(static_cast<float>(byte)) != static_cast<float>(byte) / 255) return false;
    }
    return true;
}
static_assert(everyByteIsDivided());

/// A value rounded to the nearest byte; clamped to 0 to 255, NaN becomes 0.
HWY_INLINE Words nearestByte(Floats v) {
    return truncated(clampedToByte(v + Floats(0.5f)));
}

#if QIRN_PLAIN_TARGET

/// One byte a lane, as a number from 0 to 255.
HWY_INLINE Floats floatsOf(const uint8_t* from) {
    return static_cast<float>(*from);
}
/// 0 where each of the four bytes is within its limits, inclusive; otherwise any other number.
HWY_INLINE Words bytesBeyond(Words word, Words lowest, Words highest) {
    Words beyond = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const uint32_t byte = word >> shift & 0xFF;
        beyond |= static_cast<uint32_t>(byte < (lowest >> shift & 0xFF) || byte > (highest >> shift & 0xFF));
    }
    return beyond;
}
/// A bit a lane, the first lane's lowest: set where the word is 0.
HWY_INLINE uint64_t zeroBits(Words words) {
    return words == 0;
}

#else

HWY_INLINE Floats floatsOf(const uint8_t* from) {
    const hn::Rebind<uint8_t, Floats::Tag> narrow;
    const hn::ScalableTag<int32_t> whole;
    return Floats(hn::ConvertTo(Floats::Tag(), hn::PromoteTo(whole, hn::LoadU(narrow, from))));
}
HWY_INLINE Words bytesBeyond(Words word, Words lowest, Words highest) {
    const hn::ScalableTag<uint8_t> bytes;
    const auto value = hn::BitCast(bytes, word);
    return hn::BitCast(WordTag(), hn::Or(hn::SaturatedSub(hn::BitCast(bytes, lowest), value),
                                         hn::SaturatedSub(value, hn::BitCast(bytes, highest))));
}
HWY_INLINE uint64_t zeroBits(Words words) {
    uint64_t bits = 0; // only the bytes that hold lanes are written
    hn::StoreMaskBits(WordTag(), hn::Eq(words, hn::Zero(WordTag())), reinterpret_cast<uint8_t*>(&bits));
    return bits;
}

#endif

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // once for each instruction set
