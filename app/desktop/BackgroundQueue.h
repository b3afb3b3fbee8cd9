#pragma once
#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

namespace qirn {

/// A serial queue with a thread of its own at the lowest priority: jobs run in the order in which they were added. Used
/// from the main thread. The application object waits for all jobs before it is destroyed.
class BackgroundQueue {
public:
    /// Writes to disk: in order, so that of two writes of a file the later one stays.
    static BackgroundQueue& files();
    /// The store and the user's own lists, which are small and must not wait behind a picture.
    static BackgroundQueue& ownFiles();
    /// Previews and thumbnails, which must not wait behind a file.
    static BackgroundQueue& previews();

    BackgroundQueue() = default;
    ~BackgroundQueue(); ///< Runs what is left.
    BackgroundQueue(const BackgroundQueue&) = delete;
    BackgroundQueue& operator=(const BackgroundQueue&) = delete;

    /// Adds a job. The future is ready when it has run, and rethrows what it threw.
    std::shared_future<void> run(std::function<void()> job);
    /// While one lives no job begins, unless somebody waits for it: a pen in motion has the machine to itself.
    class Pause {
    public:
        explicit Pause(BackgroundQueue& queue);
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        BackgroundQueue& queue_;
    };
    /// For a job that can be run again later, and so need not keep on. From any thread.
    bool isPaused() const { return pauses_ > 0; }

    void
    finish(); ///< Returns when all jobs have run; those that have not begun run on the calling thread, on all processors.

private:
    void work();
    void runFirst(std::unique_lock<std::mutex>& lock); // unlocked while the job runs

    std::mutex mutex_;
    std::condition_variable changed_; // something to do, or nothing left
    std::deque<std::function<void()>> tasks_;
    bool isWorking_ = false;
    bool isEnding_ = false;
    std::atomic<int> pauses_ = 0;
    std::thread thread_; // of the standard library, which the thread sanitizer can see into
};

} // namespace qirn
