#pragma once
#include <functional>
#include <future>

namespace qirn {

/// The one thread of work behind the main thread's back: what is handed to it runs in that order, so that of two writes
/// of a file the later one is what stays.
namespace BackgroundQueue {

/// Hands over a job; the result is ready when it has run, and rethrows what it threw. From the main thread.
std::shared_future<void> run(std::function<void()> job);

void finish(); ///< Waits until everything handed over has run.

} // namespace BackgroundQueue

} // namespace qirn
