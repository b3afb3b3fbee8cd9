#pragma once
#include "platform/Progress.h"

#include <atomic>
#include <cstdint>

namespace qirn {

/// Lets so many questions pass and stops the work at the next one.
class Watched : public ProgressWatcher {
public:
    explicit Watched(int64_t questions = INT64_MAX) : questions_(questions) {}

    bool goesOn(double fraction) override {
        for (double seen = largest_; fraction > seen && !largest_.compare_exchange_weak(seen, fraction);) {}
        return asked_++ < questions_;
    }
    int64_t asked() const { return asked_; }
    double largest() const { return largest_; } ///< Fraction that was told.

private:
    const int64_t questions_;
    std::atomic<int64_t> asked_ = 0;
    std::atomic<double> largest_ = 0;
};

} // namespace qirn
