#include "app/desktop/BackgroundQueue.h"

#include "platform/BackgroundThread.h"

#include <algorithm>
#include <exception>
#include <iterator>
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

std::shared_future<void> BackgroundQueue::run(std::function<void()> job, const QUuid& subject) {
    const std::lock_guard lock(mutex_);
    return add(subject, std::move(job), {});
}

std::shared_future<void> BackgroundQueue::runInstead(const QUuid& subject, std::function<void()> job,
                                                     std::function<void()> ended) {
    Tasks dropped; // destroyed after the lock is let go: there may be a picture in each
    const std::lock_guard lock(mutex_);
    const auto first = std::stable_partition(tasks_.begin(), tasks_.end(),
                                             [&](const Task& task) { return task.subject != subject; });
    std::move(first, tasks_.end(), std::back_inserter(dropped));
    tasks_.erase(first, tasks_.end());
    return add(subject, std::move(job), std::move(ended));
}

std::shared_future<void> BackgroundQueue::add(const QUuid& subject, std::function<void()> job,
                                              std::function<void()> ended) {
    // Not a packaged_task: its future would keep the job, and the picture in it, alive.
    const auto result = std::make_shared<std::promise<void>>();
    std::shared_future<void> future = result->get_future().share();
    running_.reserve(2); // this thread and its own: taking a job asks for no memory
    if (!thread_.joinable()) thread_ = std::thread([this] { work(); });
    tasks_.push_back({subject, [job = std::move(job), result, ended = std::move(ended)]() mutable {
                          try {
                              std::exchange(job, nullptr)();
                              result->set_value();
                          } catch (...) {
                              result->set_exception(std::current_exception());
                          }
                          if (ended) ended();
                      }});
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
    finishAll({});
}

void BackgroundQueue::finish(const QUuid& subject) {
    finishAll(subject);
}

void BackgroundQueue::finishAll(const Subject& subject) {
    const BackgroundHurry hurry;
    std::unique_lock lock(mutex_);
    const auto isLeft = [&] {
        return isRunning(subject) || std::ranges::any_of(tasks_, [&](const Task& task) {
                   return !subject || task.subject == *subject;
               });
    };
    // What the thread has begun is its own; what is behind it runs here, at normal priority.
    while (isLeft()) {
        const auto next = firstToRun(subject);
        if (next != tasks_.end())
            run(next, lock);
        else
            changed_.wait(lock);
    }
}

bool BackgroundQueue::isRunning(const Subject& subject) const {
    return subject ? std::ranges::find(running_, *subject) != running_.end() : !running_.empty();
}

BackgroundQueue::Tasks::iterator BackgroundQueue::firstToRun(const Subject& subject) {
    return std::ranges::find_if(tasks_, [&](const Task& task) {
        return (!subject || task.subject == *subject) && !isRunning(task.subject);
    });
}

void BackgroundQueue::run(Tasks::iterator task, std::unique_lock<std::mutex>& lock) {
    const Task taken = std::move(*task);
    tasks_.erase(task);
    running_.push_back(taken.subject);
    lock.unlock();
    taken.run();
    lock.lock();
    std::erase(running_, taken.subject);
    changed_.notify_all();
}

void BackgroundQueue::work() {
    becomeBackgroundThread();
    std::unique_lock lock(mutex_);
    for (;;) {
        auto next = tasks_.end();
        changed_.wait(lock, [&] {
            next = isPaused() && !isEnding_ ? tasks_.end() : firstToRun({});
            return next != tasks_.end() || (isEnding_ && tasks_.empty());
        });
        if (next == tasks_.end()) return;
        run(next, lock);
    }
}

} // namespace qirn
