#pragma once
#include <atomic>
#include <cstdint>

namespace qirn {

/// Thrown out of an operation that its watcher stopped. What was built so far is dropped, and what the operation was given
/// is as it was. No error: nobody is told of it.
struct Cancelled {};

/// Whoever waits for a long operation.
class ProgressWatcher {
public:
    virtual ~ProgressWatcher() = default;
    /// The operation has done about this part of its work, from 0 to 1; false stops it. Called from any thread, from
    /// several at once and often, so that nothing may block in it; a smaller number may follow a larger one.
    virtual bool goesOn(double fraction) = 0;
};

/// What a long operation tells of itself, and where it learns that it is no longer wanted: after each tile or each few
/// rows, or as often as no more than a tenth of a second of work lies between. A value to be handed on; the watcher is
/// borrowed. By default nobody watches, which costs a comparison.
class Progress {
public:
    Progress() = default;
    explicit Progress(ProgressWatcher& watcher) : watcher_(&watcher) {}

    bool isWatched() const { return watcher_ != nullptr; }
    /// A step of the work, which takes from this to that part of the whole, as 0 to 1.
    Progress part(double from, double to) const {
        Progress step = *this;
        step.from_ = from_ + (to_ - from_) * from;
        step.to_ = from_ + (to_ - from_) * to;
        return step;
    }
    /// So many of the units of this work are done. Throws Cancelled.
    void done(int64_t units, int64_t of) const {
        if (!watcher_) return;
        const double part = of > 0 ? static_cast<double>(units) / static_cast<double>(of) : 1;
        if (!watcher_->goesOn(from_ + (to_ - from_) * part)) throw Cancelled();
    }

private:
    ProgressWatcher* watcher_ = nullptr;
    double from_ = 0, to_ = 1;
};

/// Counts the units of a work, which several threads may do.
class ProgressCount {
public:
    ProgressCount(const Progress& progress, int64_t units) : progress_(progress), units_(units) {}

    /// One more is done. Throws Cancelled.
    void oneDone() {
        if (progress_.isWatched()) progress_.done(++done_, units_);
    }

private:
    Progress progress_;
    int64_t units_;
    std::atomic<int64_t> done_ = 0;
};

} // namespace qirn
