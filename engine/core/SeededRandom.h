#pragma once
#include <cstdint>

namespace qirn {

/// The engine's only source of randomness: Marsaglia's 64-bit xorshift (13, 7, 17), the same on every machine.
/// A stroke repaints identically because each of its draws comes from here in a fixed order.
struct SeededRandom {
    uint64_t state;

    explicit constexpr SeededRandom(uint64_t seed) : state((seed * 0x9E3779B97F4A7C15u) | 1u) {}
    /// Goes on from a state as it stands, without the scattering that a seed gets; it must not be 0.
    static constexpr SeededRandom fromState(uint64_t state) {
        SeededRandom random(0);
        random.state = state;
        return random;
    }

    constexpr uint64_t next() {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        return state;
    }
    constexpr double unit() { return static_cast<double>(next() >> 11) * 0x1p-53; } ///< 0 up to just under 1.
    constexpr double signedUnit() { return 2 * unit() - 1; } ///< -1 up to just under 1.
};

} // namespace qirn
