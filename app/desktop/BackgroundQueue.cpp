#include "app/desktop/BackgroundQueue.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include <QCoreApplication>

namespace qirn {

namespace {

/// A thread and a mutex of the standard library, which the thread sanitizer can see into.
class Worker {
public:
    static Worker& shared() {
        static Worker worker;
        return worker;
    }

    Worker() { qAddPostRoutine(BackgroundQueue::finish); } // the application object waits for the work
    ~Worker() {
        {
            const std::lock_guard lock(mutex_);
            isEnding_ = true;
        }
        changed_.notify_all();
        if (thread_.joinable()) thread_.join();
    }

    void add(std::function<void()> task) {
        const std::lock_guard lock(mutex_);
        if (!thread_.joinable()) thread_ = std::thread([this] { work(); });
        tasks_.push_back(std::move(task));
        changed_.notify_all();
    }

    void finish() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return tasks_.empty(); });
    }

private:
    void work() {
        std::unique_lock lock(mutex_);
        for (;;) {
            changed_.wait(lock, [this] { return isEnding_ || !tasks_.empty(); });
            if (tasks_.empty()) return;
            const std::function<void()>& task = tasks_.front(); // stays where it is until it has run
            lock.unlock();
            task();
            lock.lock();
            tasks_.pop_front();
            changed_.notify_all();
        }
    }

    std::mutex mutex_;
    std::condition_variable changed_; // something to do, or nothing left
    std::deque<std::function<void()>> tasks_;
    bool isEnding_ = false;
    std::thread thread_;
};

} // namespace

std::shared_future<void> BackgroundQueue::run(std::function<void()> job) {
    // No packaged_task, whose result would keep the job, and the picture in it, for as long as itself.
    const auto result = std::make_shared<std::promise<void>>();
    std::shared_future<void> future = result->get_future().share();
    Worker::shared().add([job = std::move(job), result]() mutable {
        try {
            std::exchange(job, nullptr)();
            result->set_value();
        } catch (...) {
            result->set_exception(std::current_exception());
        }
    });
    return future;
}

void BackgroundQueue::finish() {
    Worker::shared().finish();
}

} // namespace qirn
