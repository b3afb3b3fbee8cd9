#pragma once
#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

namespace qirn {

/// A thread of work behind the main thread's back, at the lowest priority: what is handed to it runs in that order. Used
/// from the main thread. The application object waits for what was handed over before it goes.
class BackgroundQueue {
public:
    /// What goes to disk: of two writes of a file the later one is what stays.
    static BackgroundQueue& files();
    /// Previews and thumbnails, which wait for no file.
    static BackgroundQueue& previews();

    BackgroundQueue() = default;
    ~BackgroundQueue(); ///< Runs what is left.
    BackgroundQueue(const BackgroundQueue&) = delete;
    BackgroundQueue& operator=(const BackgroundQueue&) = delete;

    /// Hands over a job; the result is ready when it has run, and rethrows what it threw.
    std::shared_future<void> run(std::function<void()> job);
    void
    finish(); ///< Returns when everything handed over has run; jobs that have not begun run here, on all processors.

private:
    void work();
    void runFirst(std::unique_lock<std::mutex>& lock); // unlocked while the job runs

    std::mutex mutex_;
    std::condition_variable changed_; // something to do, or nothing left
    std::deque<std::function<void()>> tasks_;
    bool isWorking_ = false;
    bool isEnding_ = false;
    std::thread thread_; // of the standard library, which the thread sanitizer can see into
};

} // namespace qirn
