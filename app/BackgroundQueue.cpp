#include "BackgroundQueue.h"

#include <exception>
#include <memory>
#include <utility>

#include <QCoreApplication>
#include <QThreadPool>

namespace qirn {

namespace {

/// It lives as long as the application object, which waits for it.
QThreadPool& pool() {
    static QThreadPool* const pool = [] {
        auto* made = new QThreadPool(QCoreApplication::instance());
        made->setObjectName(QStringLiteral("qirn.paint.autosave"));
        made->setMaxThreadCount(1);
        made->setThreadPriority(QThread::LowPriority);
        return made;
    }();
    return *pool;
}

} // namespace

std::shared_future<void> BackgroundQueue::run(std::function<void()> job) {
    // No packaged_task, whose result would keep the job, and the picture in it, for as long as itself.
    const auto result = std::make_shared<std::promise<void>>();
    pool().start([job = std::move(job), result]() mutable {
        try {
            std::exchange(job, nullptr)();
            result->set_value();
        } catch (...) {
            result->set_exception(std::current_exception());
        }
    });
    return result->get_future().share();
}

void BackgroundQueue::finish() {
    pool().waitForDone();
}

} // namespace qirn
