#include "BackgroundQueue.h"

#include <memory>

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
    const auto task = std::make_shared<std::packaged_task<void()>>(std::move(job));
    std::shared_future<void> result = task->get_future().share();
    pool().start([task] { (*task)(); });
    return result;
}

void BackgroundQueue::finish() {
    pool().waitForDone();
}

} // namespace qirn
