#pragma once
#include "platform/Progress.h"

#include <cstddef>
#include <cstdint>
#include <functional>

namespace qirn {

/// Runs `body(0)` to `body(count - 1)`, each once and in any order, on all cores; returns when the last is
/// done. The bodies must not depend on each other. A count below 1 does nothing. Each body is a unit of the progress; an
/// exception, as that of a cancel, ends the loop, and passes when the bodies that run are done.
void concurrentPerform(int64_t count, const std::function<void(int64_t)>& body,
                       const Progress& progress = {});

/// Like concurrentPerform for work that repeats on the same memory: indices with the same home run on the same thread
/// in every call, if it is free, whose caches still hold what they touched. Homes are any numbers from 0 up.
void concurrentPerformAtHome(int64_t count, const std::function<int64_t(int64_t)>& homeOf,
                             const std::function<void(int64_t)>& body);

/// The same with at most `workers` bodies at a time. Each is told its worker number, from 0; no two with the same
/// number run at once, so that each worker can have working memory of its own.
void concurrentPerformByWorkers(int64_t workers, int64_t count,
                                const std::function<void(std::size_t worker, int64_t index)>& body,
                                const Progress& progress = {});

/// How many threads `concurrentPerform` may use from here on, more than the machine has processors too; 0 means every
/// processor. While nothing runs; for measurements and for the tests that show that a result does not depend on it.
void setConcurrency(int threads);
int concurrency();

} // namespace qirn
