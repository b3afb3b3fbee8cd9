#pragma once
#include "platform/Progress.h"

#include <functional>
#include <vector>

#include <QObject>
#include <QString>

class QEventLoop;

namespace qirn {

/// What lies over the window while long work runs: how far it is, and a way to cancel it. Asked on the main thread.
class LongTaskCover {
public:
    virtual ~LongTaskCover() = default;
    virtual void rise(const QString& what, const std::function<void()>& cancel) = 0;
    virtual void showDone(double fraction) = 0; ///< 0 to 1, never less than before.
    virtual void fall() = 0;
    virtual bool isPart(const QObject& receiver) const = 0; ///< It takes this one's keys and presses.
};

/// Work that may take long, off the main thread and waited for, with a window that goes on painting.
///
/// Work that is done in a few hundredths of a second is waited for as if it were called. After that events are handled,
/// but none of the user's: those of the first 0.3 seconds come afterwards, and then the cover rises, has the keyboard
/// alone, and whatever else is pressed, dropped or closed is lost. Timers and queued calls run all the while; those
/// that touch documents ask `isRunning` or go through `afterwards`. One task at a time, on the main thread.
class LongTask : public QObject {
    Q_OBJECT
public:
    /// Where the cover is; borrowed. Null, as where there is no window: all work is done inline.
    void setCover(LongTaskCover* cover) { cover_ = cover; }

    /// Runs `work`, which touches nothing of the main thread's but what it is given for itself: a snapshot or a draft. What
    /// it throws is thrown here. False when the user has cancelled it. `what` names it in a line.
    bool run(const QString& what, const std::function<void(const Progress&)>& work);
    bool isRunning() const { return isRunning_; }
    /// Calls `call`: now, or in the turn of the main loop after the task that runs.
    void afterwards(std::function<void()> call);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Job;
    void waitCovered(Job& job, QEventLoop& waiting, const QString& what);
    void endWaiting() noexcept; // the window takes input again, however the wait has ended

    LongTaskCover* cover_ = nullptr;
    bool isRunning_ = false;
    std::vector<std::function<void()>> waiting_;
};

} // namespace qirn
