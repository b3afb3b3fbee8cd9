#pragma once
#include "platform/Require.h"

#include <cstddef>
#include <cstdint>

namespace qirn {

/// Whole-number arithmetic whose overflow is a programming error: it stops the process, it never wraps.
inline int64_t checkedAdd(int64_t a, int64_t b) {
    int64_t sum = 0;
    require(!__builtin_add_overflow(a, b, &sum));
    return sum;
}

inline int64_t checkedSubtract(int64_t a, int64_t b) {
    int64_t difference = 0;
    require(!__builtin_sub_overflow(a, b, &difference));
    return difference;
}

inline int64_t checkedMultiply(int64_t a, int64_t b) {
    int64_t product = 0;
    require(!__builtin_mul_overflow(a, b, &product));
    return product;
}

/// A signed count or index as the unsigned size that the standard library takes; a negative one stops the process.
constexpr std::size_t checkedSize(int64_t count) {
    require(count >= 0);
    return static_cast<std::size_t>(count);
}

/// A finite number that fits 64 bits, with its fraction cut off; anything else stops the process.
inline int64_t checkedWhole(double value) {
    require(value >= -9.2e18 && value <= 9.2e18);
    return static_cast<int64_t>(value);
}

} // namespace qirn
