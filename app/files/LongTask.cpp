#include "app/files/LongTask.h"

#include "app/desktop/Failures.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <future>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QScopeGuard>
#include <QTimer>

namespace qirn {

namespace {

using namespace std::chrono_literals;

constexpr auto kAtOnce = 30ms;  // as long as nobody sees that the window stands still
constexpr auto kUnseen = 300ms; // before the cover rises
constexpr auto kShownEvery = 50ms;

/// What a person does to the window. What a widget does not accept Qt may turn into another event or hand to the parent.
bool isInput(QEvent::Type type) {
    constexpr QEvent::Type kInput[] = {QEvent::MouseButtonPress,
                                       QEvent::MouseButtonRelease,
                                       QEvent::MouseButtonDblClick,
                                       QEvent::MouseMove,
                                       QEvent::Wheel,
                                       QEvent::KeyPress,
                                       QEvent::KeyRelease,
                                       QEvent::ShortcutOverride,
                                       QEvent::Shortcut,
                                       QEvent::InputMethod,
                                       QEvent::TabletPress,
                                       QEvent::TabletMove,
                                       QEvent::TabletRelease,
                                       QEvent::TouchBegin,
                                       QEvent::TouchUpdate,
                                       QEvent::TouchEnd,
                                       QEvent::NativeGesture,
                                       QEvent::ContextMenu,
                                       QEvent::DragEnter,
                                       QEvent::DragMove,
                                       QEvent::Drop,
                                       QEvent::Close,
                                       QEvent::Quit};
    return std::find(std::begin(kInput), std::end(kInput), type) != std::end(kInput);
}

/// Offers that are not taken, which whoever made them has to know.
bool isOffer(QEvent::Type type) {
    return type == QEvent::DragEnter || type == QEvent::DragMove || type == QEvent::Drop ||
           type == QEvent::Close || type == QEvent::Quit;
}

} // namespace

/// The work on its thread, and what both threads know of it.
class LongTask::Job : public ProgressWatcher {
public:
    Job(const std::function<void(const Progress&)>& work, QEventLoop& waiting)
        : thread_([this, &work, &waiting] {
              try {
                  work(Progress(*this));
                  done_.set_value();
              } catch (...) {
                  done_.set_exception(std::current_exception());
              }
              QMetaObject::invokeMethod(&waiting, &QEventLoop::quit, Qt::QueuedConnection);
          }) {}
    ~Job() override {
        cancel(); // where the application ends first
        thread_.join();
    }

    bool goesOn(double fraction) override {
        for (double seen = fraction_; fraction > seen && !fraction_.compare_exchange_weak(seen, fraction);) {}
        return !isCancelled_;
    }
    double fraction() const { return fraction_; }
    void cancel() { isCancelled_ = true; }
    bool isDone(std::chrono::milliseconds patience = 0ms) {
        return result_.wait_for(patience) == std::future_status::ready;
    }
    void takeResult() { result_.get(); } ///< Waits for it; throws what the work threw.

private:
    std::atomic<double> fraction_ = 0;
    std::atomic<bool> isCancelled_ = false;
    std::promise<void> done_;
    std::future<void> result_ = done_.get_future();
    std::thread thread_; // last, since it uses the others
};

bool LongTask::run(const QString& what, const std::function<void(const Progress&)>& work) {
    QEventLoop waiting;
    std::optional<Job> job;
    try {
        if (cover_ && !isRunning_) job.emplace(work, waiting);
    } catch (const std::system_error&) {
        // No thread is to be had: the window stands still.
    }
    if (!job) {
        work({});
        return true;
    }
    if (!job->isDone(kAtOnce)) {
        isRunning_ = true;
        const auto end = qScopeGuard([this] { endWaiting(); });
        qApp->installEventFilter(this);
        QTimer later;
        later.setSingleShot(true);
        connect(&later, &QTimer::timeout, &waiting, &QEventLoop::quit);
        later.start(kUnseen - kAtOnce);
        waiting.exec(QEventLoop::ExcludeUserInputEvents);
        if (!job->isDone()) waitCovered(*job, waiting, what);
    }
    try {
        job->takeResult();
        return true;
    } catch (const Cancelled&) {
        return false;
    }
}

void LongTask::waitCovered(Job& job, QEventLoop& waiting, const QString& what) {
    const auto fall = qScopeGuard([this] { contained([this] { cover_->fall(); }); });
    cover_->rise(what, [&job] { job.cancel(); });
    QTimer showing;
    connect(&showing, &QTimer::timeout, this, [&] { cover_->showDone(job.fraction()); });
    showing.start(kShownEvery);
    waiting.exec();
}

void LongTask::endWaiting() noexcept {
    qApp->removeEventFilter(this);
    isRunning_ = false;
    contained([this] { // what is not handed on for want of memory goes with the next
        for (; !waiting_.empty(); waiting_.erase(waiting_.begin()))
            QMetaObject::invokeMethod(this, waiting_.front(), Qt::QueuedConnection);
    });
}

void LongTask::afterwards(std::function<void()> call) {
    if (!isRunning_) return call();
    waiting_.push_back(std::move(call));
}

bool LongTask::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (!isInput(type) || cover_->isPart(*watched)) return false;
    // A window passes what it gets on to its widgets, of which some may be the cover's.
    if (watched->isWindowType() && !isOffer(type)) return false;
    event->setAccepted(!isOffer(type));
    return true;
}

} // namespace qirn
