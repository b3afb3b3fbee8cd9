#pragma once
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace qirn {

/// The four channels of a pixel as a vector of floats from 0 to 255. Every operation works on each channel by itself,
/// so the results are those of scalar code.
using FloatPixel = float __attribute__((vector_size(16)));

// Compilers vectorize the arithmetic well but not always the conversions, so these use intrinsics where SSE2 has
// them.

inline FloatPixel readPixel(const uint8_t* bytes) {
#ifdef __SSE2__
    int32_t packed;
    std::memcpy(&packed, bytes, 4);
    const __m128i zero = _mm_setzero_si128();
    return _mm_cvtepi32_ps(_mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(packed), zero), zero));
#else
    uint8_t __attribute__((vector_size(4))) packed;
    std::memcpy(&packed, bytes, 4);
    return __builtin_convertvector(packed, FloatPixel);
#endif
}

/// Adds a half and truncates, for values from 0 to under 255.5.
inline void writePixel(uint8_t* bytes, FloatPixel pixel) {
#ifdef __SSE2__
    const __m128i whole = _mm_cvttps_epi32(pixel + 0.5f);
    const int32_t packed = _mm_cvtsi128_si32(_mm_packus_epi16(_mm_packs_epi32(whole, whole), whole));
#else
    using Whole = int32_t __attribute__((vector_size(16)));
    using Packed = uint8_t __attribute__((vector_size(4)));
    const Packed packed = __builtin_convertvector(__builtin_convertvector(pixel + 0.5f, Whole), Packed);
#endif
    std::memcpy(bytes, &packed, 4);
}

inline FloatPixel loadPixel(const float* channels) {
    FloatPixel pixel;
    std::memcpy(&pixel, channels, sizeof pixel);
    return pixel;
}

inline void storePixel(float* channels, FloatPixel pixel) {
    std::memcpy(channels, &pixel, sizeof pixel);
}

/// The smaller of each channel and a limit that all share.
inline FloatPixel limited(FloatPixel pixel, float limit) {
    const FloatPixel limits{limit, limit, limit, limit};
    return limits < pixel ? limits : pixel;
}

} // namespace qirn
