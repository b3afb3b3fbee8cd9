#pragma once
#include <cstdint>
#include <vector>

namespace qirn {

/// What lies beyond the edges of a source: nothing, or its outermost pixels again and again.
enum class Edges { transparent, extended };

/// The reconstruction filter: an interpolating cubic (Catmull-Rom), which leaves a picture at its own size as it is
/// and keeps edges sharp. `t` is the distance from a sample; the filter reaches two samples.
template <class Number> constexpr Number cubicFilter(Number t) {
    if (t < 0) t = -t;
    if (t < 1) return (Number(1.5) * t - Number(2.5)) * t * t + 1;
    if (t < 2) return ((Number(-0.5) * t + Number(2.5)) * t - 4) * t + 2;
    return 0;
}

/// Along one axis: of which source pixels, and in what parts, each pixel of a range of target pixels is made.
///
/// The center of target pixel x lies at source coordinate `step` * (x + 0.5) + `origin`; a step above 1 shrinks and
/// widens the filter by as much, so that nothing too fine for the target is left over as moire. A negative step
/// mirrors. The parts of a pixel that lies well inside add up to 1.
class ScaleWeights {
public:
    ScaleWeights(int64_t sourceLength, double step, double origin, int64_t first, int64_t count, Edges edges);

    struct Span {
        int64_t first = 0; ///< Source pixel, always inside the source.
        int64_t count = 0;
        const float* weights = nullptr;

        int64_t end() const { return first + count; }
    };
    /// Empty for a target pixel that the source does not reach; only for pixels of the range.
    Span spanOf(int64_t target) const;
    /// All source pixels of a part of the range: weights are null.
    Span reachOf(int64_t target, int64_t count) const;

private:
    struct Entry {
        int64_t first;
        int64_t count;
        std::size_t weights;
    };
    Entry entryFor(double center, double width, Edges edges);

    int64_t sourceLength_;
    int64_t firstTarget_;
    std::vector<Entry> entries_;
    std::vector<float> weights_;
};

} // namespace qirn
