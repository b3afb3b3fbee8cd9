#include "platform/resample/ScaleWeights.h"

#include "platform/CheckedMath.h"
#include "platform/Require.h"

#include <algorithm>
#include <cmath>

namespace qirn {

namespace {
// From this width on the samples of the filter add up to the width to within float precision, so they need no
// normalizing.
constexpr double kWideFilter = 4096;
} // namespace

ScaleWeights::ScaleWeights(int64_t sourceLength, double step, double origin, int64_t first, int64_t count,
                           Edges edges)
    : sourceLength_(sourceLength),
      firstTarget_(first) {
    const double width = std::max(1.0, std::fabs(step));
    entries_.reserve(checkedSize(std::max<int64_t>(count, 0)));
    for (int64_t x = first; x < first + count; ++x) {
        // In units in which the centers of the source pixels are whole numbers.
        entries_.push_back(entryFor(step * (static_cast<double>(x) + 0.5) + origin - 0.5, width, edges));
    }
}

ScaleWeights::Entry ScaleWeights::entryFor(double center, double width, Edges edges) {
    const double reach = 2 * width;
    const auto last = static_cast<double>(sourceLength_ - 1);
    const Entry nothing{0, 0, weights_.size()};
    if (edges == Edges::transparent && !(center > -reach && center < last + reach)) return nothing;
    const double begin = std::floor(center - reach) + 1, end = std::ceil(center + reach);
    const auto weight = [&](double i) { return cubicFilter((i - center) / width); };
    const auto inside = [&](double i) { return static_cast<int64_t>(std::clamp(i, 0.0, last)); };

    double sum = width;
    if (width < kWideFilter || edges == Edges::extended) {
        sum = 0;
        for (double i = begin; i < end; ++i) sum += weight(i);
    }
    Entry entry{inside(begin), inside(end - 1) + 1 - inside(begin), weights_.size()};
    weights_.resize(entry.weights + checkedSize(entry.count));
    const auto add = [&](double i, int64_t at) {
        weights_[entry.weights + checkedSize(at - entry.first)] += static_cast<float>(weight(i) / sum);
    };
    if (edges == Edges::extended) {
        for (double i = begin; i < end; ++i) add(i, inside(i));
    } else {
        for (int64_t i = entry.first; i < entry.first + entry.count; ++i) add(static_cast<double>(i), i);
    }
    // At scale 1 a target pixel is its source pixel.
    while (entry.count > 0 && weights_.back() == 0) {
        weights_.pop_back();
        --entry.count;
    }
    while (entry.count > 0 && weights_[entry.weights] == 0) {
        ++entry.weights;
        ++entry.first;
        --entry.count;
    }
    return entry;
}

ScaleWeights::Span ScaleWeights::spanOf(int64_t target) const {
    const auto index = checkedSize(target - firstTarget_);
    require(index < entries_.size());
    const Entry& entry = entries_[index];
    return {entry.first, entry.count, weights_.data() + entry.weights};
}

ScaleWeights::Span ScaleWeights::reachOf(int64_t target, int64_t count) const {
    int64_t first = sourceLength_, end = 0;
    for (int64_t x = target; x < target + count; ++x) {
        const Span span = spanOf(x);
        if (span.count == 0) continue;
        first = std::min(first, span.first);
        end = std::max(end, span.end());
    }
    if (first >= end) return {};
    return {first, end - first, nullptr};
}

} // namespace qirn
