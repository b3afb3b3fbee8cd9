#pragma once
#include <cstdint>
#include <cstring>

namespace qirn {

/// The four channels of a pixel, in one register on processors that have them. Each channel is computed as a
/// single float would be, so that all machines agree to the bit.
using Float4 [[gnu::vector_size(16)]] = float;

inline Float4 loadFloats(const float* from) {
    Float4 v;
    std::memcpy(&v, from, sizeof v);
    return v;
}

inline void storeFloats(float* to, Float4 v) {
    std::memcpy(to, &v, sizeof v);
}

/// Four neighbouring pixels of four bytes, on a scale of 0 to 255.
struct FourPixels {
    Float4 pixel[4];

    explicit FourPixels(const uint8_t* from) {
        using Bytes [[gnu::vector_size(16)]] = uint8_t;
        using Words [[gnu::vector_size(16)]] = uint16_t;
        using Ints [[gnu::vector_size(16)]] = int32_t;
        Bytes bytes;
        std::memcpy(&bytes, from, sizeof bytes);
        // Widened by laying zeros between, with which every processor of this width is quick.
        const Bytes zero{};
        const auto low = reinterpret_cast<Words>(
            __builtin_shufflevector(bytes, zero, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
        const auto high = reinterpret_cast<Words>(__builtin_shufflevector(
            bytes, zero, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31));
        const Words none{};
        const auto ints = [](Words w) { return __builtin_convertvector(reinterpret_cast<Ints>(w), Float4); };
        pixel[0] = ints(__builtin_shufflevector(low, none, 0, 8, 1, 9, 2, 10, 3, 11));
        pixel[1] = ints(__builtin_shufflevector(low, none, 4, 12, 5, 13, 6, 14, 7, 15));
        pixel[2] = ints(__builtin_shufflevector(high, none, 0, 8, 1, 9, 2, 10, 3, 11));
        pixel[3] = ints(__builtin_shufflevector(high, none, 4, 12, 5, 13, 6, 14, 7, 15));
    }
};

} // namespace qirn
