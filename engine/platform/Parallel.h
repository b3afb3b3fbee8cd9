#pragma once
#include <cstdint>
#include <functional>

namespace qirn {

/// Runs `body(0)` to `body(count - 1)`, each once and in any order, on all cores; returns when the last is
/// done. The bodies must not depend on each other. A count below 1 does nothing.
void concurrentPerform(int64_t count, const std::function<void(int64_t)>& body);

/// How many threads `concurrentPerform` may use from here on; 0 means every processor. For measurements and
/// for the tests that show that a result does not depend on it.
void setConcurrency(int threads);
int concurrency();

} // namespace qirn
