#include "shell/preferences/pen/PenReading.h"

#include <algorithm>

namespace qirn {

void EventRate::note(double time) {
    times_[count_++ % times_.size()] = time;
}

std::optional<double> EventRate::perSecond() const {
    const std::size_t held = std::min(count_, times_.size());
    if (held < 2) return std::nullopt;
    const double last = times_[(count_ - 1) % times_.size()];
    const double first = times_[(count_ - held) % times_.size()];
    if (last <= first) return std::nullopt;
    return static_cast<double>(held - 1) / (last - first);
}

} // namespace qirn
