#include "brush/PaperGrain.h"

#include "core/SeededRandom.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <vector>

namespace qirn {

namespace {

struct Octave {
    int lattice; // cells on a side
    float weight;
};
constexpr Octave kOctaves[] = {{8, 0.35f}, {32, 0.30f}, {64, 0.20f}, {128, 0.15f}};

/// Where a pixel lies between two lattice lines of its axis; the last line meets the first.
struct Place {
    int from;
    int to;
    float share; // weight of `to`, smoothed
};

Place placeOf(int pixel, int lattice) {
    const float f =
        static_cast<float>(pixel) / (static_cast<float>(PaperGrain::size) / static_cast<float>(lattice));
    const int whole = static_cast<int>(f);
    const float t = f - static_cast<float>(whole);
    const int from = whole % lattice;
    return {from, (from + 1) % lattice, t * t * (3 - 2 * t)};
}

/// Value noise: random values on lattices of growing fineness, smoothly joined and added up.
std::vector<float> makeValues() {
    std::vector<float> values(PaperGrain::size * PaperGrain::size, 0.0f);
    SeededRandom random = SeededRandom::fromState(0x51E51D0E685A197Bu);
    for (const auto& [n, weight] : kOctaves) {
        std::vector<float> lattice(checkedSize(n) * checkedSize(n));
        for (float& v : lattice) v = static_cast<float>(random.unit());
        const auto valueAt = [&lattice, size = n](int x, int y) {
            return lattice[checkedSize(y * size + x)];
        };
        float* value = values.data();
        for (int y = 0; y < PaperGrain::size; ++y) {
            const Place py = placeOf(y, n);
            for (int x = 0; x < PaperGrain::size; ++x) {
                const Place px = placeOf(x, n);
                const float a = valueAt(px.from, py.from), b = valueAt(px.to, py.from);
                const float c = valueAt(px.from, py.to), d = valueAt(px.to, py.to);
                const float top = a + px.share * (b - a);
                const float bottom = c + px.share * (d - c);
                *value++ += weight * (top + py.share * (bottom - top));
            }
        }
    }
    for (float& v : values) v = std::clamp((v - 0.5f) * 2.2f + 0.6f, 0.0f, 1.0f);
    return values;
}

} // namespace

std::span<const float> PaperGrain::values() {
    static const std::vector<float> values = makeValues();
    return values;
}

} // namespace qirn
