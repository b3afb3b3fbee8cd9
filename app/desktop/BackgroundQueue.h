#pragma once
#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include <QUuid>

namespace qirn {

/// A queue with a thread of its own at the lowest priority. Jobs of one subject run one at a time and in the order in which
/// they were added; between subjects there is no order, so that nobody who waits for his own waits for another's. Used
/// from the main thread. The application object waits for all jobs before it is destroyed.
class BackgroundQueue {
public:
    /// Writes to disk: of a subject in order, so that of two writes of a file the later one stays.
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
    std::shared_future<void> run(std::function<void()> job, const QUuid& subject = {});
    /// The same in place of those jobs of the subject that have not begun: their promises are broken. `ended` is called
    /// once the future is ready, on the thread that ran the job, and does not throw.
    std::shared_future<void> runInstead(const QUuid& subject, std::function<void()> job,
                                        std::function<void()> ended = {});
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

    /// Returns when all jobs have run; those that have not begun run on the calling thread, on all processors.
    void finish();
    void finish(const QUuid& subject); ///< The same for one subject's.

private:
    struct Task {
        QUuid subject;
        std::function<void()> run;
    };
    using Tasks = std::deque<Task>;
    using Subject = std::optional<QUuid>; // nothing: any

    std::shared_future<void> add(const QUuid& subject, std::function<void()> job,
                                 std::function<void()> ended);
    void work();
    void finishAll(const Subject& subject);
    bool isRunning(const Subject& subject) const;
    Tasks::iterator firstToRun(const Subject& subject);                 // none of whose subject is running
    void run(Tasks::iterator task, std::unique_lock<std::mutex>& lock); // unlocked while it runs

    std::mutex mutex_;
    std::condition_variable changed_; // something to do, or something done
    Tasks tasks_;
    std::vector<QUuid> running_; // the subjects of what runs now, no one twice
    bool isEnding_ = false;
    std::atomic<int> pauses_ = 0;
    std::thread thread_; // of the standard library, which the thread sanitizer can see into
};

} // namespace qirn
