#pragma once
#include "core/PaintDocument.h"

#include <chrono>
#include <cstdint>

namespace qirn::bench {

/// Seconds since it was made.
class Stopwatch {
public:
    double seconds() const { return std::chrono::duration<double>(Clock::now() - start_).count(); }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point start_ = Clock::now();
};

/// Seconds that one thread needs to copy every present tile of a picture once, one after the other: the plainest
/// thing to do with this memory on this machine, at this moment. Times are given as ratios against it, so that
/// they can be compared between machines. The middle one of several passes.
double plainPassSeconds(const PaintDocument& doc);

/// Bytes of that pass.
int64_t plainPassBytes(const PaintDocument& doc);

} // namespace qirn::bench
