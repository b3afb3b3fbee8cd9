#include "app/desktop/BackgroundQueue.h"

#include "platform/BackgroundThread.h"

#include <exception>
#include <memory>
#include <utility>

#include <QCoreApplication>

namespace qirn {

BackgroundQueue& BackgroundQueue::files() {
    static BackgroundQueue queue;
    static const bool isWaitedFor = (qAddPostRoutine([] { files().finish(); }), true);
    static_cast<void>(isWaitedFor);
    return queue;
}

BackgroundQueue& BackgroundQueue::ownFiles() {
    static BackgroundQueue queue;
    static const bool isWaitedFor = (qAddPostRoutine([] { ownFiles().finish(); }), true);
    static_cast<void>(isWaitedFor);
    return queue;
}

BackgroundQueue& BackgroundQueue::previews() {
    static BackgroundQueue queue;
    static const bool isWaitedFor = (qAddPostRoutine([] { previews().finish(); }), true);
    static_cast<void>(isWaitedFor);
    return queue;
}

BackgroundQueue::~BackgroundQueue() {
    const BackgroundHurry hurry;
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable()) thread_.join();
}

std::shared_future<void> BackgroundQueue::run(std::function<void()> job) {
    // Not a packaged_task: its future would keep the job, and the picture in it, alive.
    const auto result = std::make_shared<std::promise<void>>();
    std::shared_future<void> future = result->get_future().share();
    const std::lock_guard lock(mutex_);
    if (!thread_.joinable()) thread_ = std::thread([this] { work(); });
    tasks_.emplace_back([job = std::move(job), result]() mutable {
        try {
            std::exchange(job, nullptr)();
            result->set_value();
        } catch (...) {
            result->set_exception(std::current_exception());
        }
    });
    changed_.notify_all();
    return future;
}

BackgroundQueue::Pause::Pause(BackgroundQueue& queue) : queue_(queue) {
    ++queue_.pauses_;
}

BackgroundQueue::Pause::~Pause() {
    {
        const std::lock_guard lock(queue_.mutex_);
        --queue_.pauses_;
    }
    queue_.changed_.notify_all();
}

void BackgroundQueue::finish() {
    const BackgroundHurry hurry;
    std::unique_lock lock(mutex_);
    // The job that the thread has begun is its own; those behind it run here, at normal priority.
    changed_.wait(lock, [this] { return !isWorking_; });
    while (!tasks_.empty()) runFirst(lock);
}

void BackgroundQueue::runFirst(std::unique_lock<std::mutex>& lock) {
    isWorking_ = true;
    const std::function<void()> task = std::move(tasks_.front());
    tasks_.pop_front();
    lock.unlock();
    task();
    lock.lock();
    isWorking_ = false;
    changed_.notify_all();
}

void BackgroundQueue::work() {
    becomeBackgroundThread();
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return isEnding_ || (!tasks_.empty() && !isWorking_ && !isPaused()); });
        if (tasks_.empty()) return;
        runFirst(lock);
    }
}

} // namespace qirn
