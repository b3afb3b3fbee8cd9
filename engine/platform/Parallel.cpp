#include "platform/Parallel.h"

#include "platform/BackgroundThread.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <vector>

#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/partitioner.h>
#include <tbb/task_arena.h>
#ifdef QIRN_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

namespace qirn {

namespace {

/// Everything before `release` in one thread happens before everything after `acquire` in another. The library guarantees
/// this order, but the thread sanitizer does not see it; this file is compiled without the sanitizer for the same
/// reason.
struct SanitizerFence {
#ifdef QIRN_THREAD_SANITIZER
    void release() {
        __tsan_release(this);
    }
    void acquire() {
        __tsan_acquire(this);
    }
    char place = 0;
#else
    void release() {}
    void acquire() {}
#endif
};

/// Does it when the scope is left, by an exception too: a loop that was stopped has an end as well.
struct ReleaseAtEnd {
    SanitizerFence& fence;
    ~ReleaseAtEnd() { fence.release(); }
};
struct AcquireAtEnd {
    SanitizerFence& fence;
    ~AcquireAtEnd() { fence.acquire(); }
};

/// As many threads as asked for, also where the machine has fewer processors.
struct Limit {
    explicit Limit(int threads)
        : control(tbb::global_control::max_allowed_parallelism, checkedSize(threads)),
          arena(threads) {}

    tbb::global_control control;
    tbb::task_arena arena;
};

std::unique_ptr<Limit>& limit() {
    static std::unique_ptr<Limit> current;
    return current;
}

/// One index is one task, given to a thread as the partitioner says.
template <class Partitioner>
void perform(int64_t first, int64_t count, const std::function<void(int64_t)>& body) {
    if (count <= first) return;
    if (count == first + 1) return body(first);
    SanitizerFence begun, done;
    const AcquireAtEnd allDone{done};
    const auto loop = [&] {
        tbb::parallel_for(
            tbb::blocked_range<int64_t>(first, count, 1),
            [&](const tbb::blocked_range<int64_t>& range) {
                begun.acquire();
                const ReleaseAtEnd oneDone{done};
                for (int64_t i = range.begin(); i != range.end(); ++i) body(i);
            },
            Partitioner());
    };
    begun.release();
    limit() ? limit()->arena.execute(loop) : loop();
}

} // namespace

void concurrentPerform(int64_t count, const std::function<void(int64_t)>& body, const Progress& progress) {
    if (progress.isWatched()) {
        ProgressCount counted(progress, count);
        return concurrentPerform(count, [&](int64_t i) {
            body(i);
            counted.oneDone();
        });
    }
    int64_t first = 0; // what a background thread leaves to all when somebody begins to wait for it
    BackgroundRest rest;
    for (; first < count && keepsToItself(); ++first) {
        body(first);
        rest.whileHandMoves();
    }
    // A tile is large enough for a task of its own, and tiles of uneven cost are balanced best that way.
    perform<tbb::simple_partitioner>(first, count, body);
}

void concurrentPerformByWorkers(int64_t workers, int64_t count,
                                const std::function<void(std::size_t worker, int64_t index)>& body,
                                const Progress& progress) {
    ProgressCount counted(progress, count);
    std::atomic<int64_t> next = 0;
    const auto work = [&](int64_t worker) {
        const bool isAlone = keepsToItself();
        BackgroundRest rest;
        for (int64_t i; isAlone == keepsToItself() && (i = next++) < count;) {
            body(checkedSize(worker), i);
            counted.oneDone();
            rest.whileHandMoves();
        }
    };
    // Again where somebody began to wait for a background thread, or waits no more.
    while (next < count) concurrentPerform(std::min(workers, count), work);
}

void concurrentPerformAtHome(int64_t count, const std::function<int64_t(int64_t)>& homeOf,
                             const std::function<void(int64_t)>& body) {
    if (count < 1) return;
    const int64_t threads = keepsToItself() ? 1 : std::min<int64_t>(concurrency(), count);
    std::vector<std::atomic_flag> taken(checkedSize(count));
    // The only partitioner that gives an index to the same thread in every call.
    perform<tbb::static_partitioner>(0, threads, [&](int64_t thread) {
        for (const bool atHome : {true, false}) {
            for (int64_t i = 0; i < count; ++i) {
                if (atHome && homeOf(i) % threads != thread) continue;
                if (!taken[checkedSize(i)].test_and_set(std::memory_order_relaxed)) body(i);
            }
        }
    });
}

void setConcurrency(int threads) {
    limit().reset();
    if (threads > 0) limit() = std::make_unique<Limit>(threads);
}

int concurrency() {
    return static_cast<int>(tbb::global_control::active_value(tbb::global_control::max_allowed_parallelism));
}

} // namespace qirn
