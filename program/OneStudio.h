#pragma once
#include "program/StudioListener.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <thread>

#include <QByteArray>
#include <QString>

class QSocketNotifier;

namespace qirn {

/// That a user has one studio on a display and over a folder of data: who holds a kernel lock in the run-time folder is it,
/// and listens on a socket beside; a later start hands over what it was to open, and ends. Where there is no such
/// folder, or nobody answers in time, each start is a studio of its own, safely by the locks beside the copies.
class OneStudio {
public:
    /// `display` tells the display from all others (DisplayArguments.h), `folder` is that of the data.
    OneStudio(const QByteArray& display, const QString& folder);
    ~OneStudio();
    OneStudio(const OneStudio&) = delete;
    OneStudio& operator=(const OneStudio&) = delete;

    /// True when the studio that is open has taken the request: there is nothing left to do. Otherwise this one is to open:
    /// as the one studio, or on its own when the other one has not answered for so long, or is of another version.
    bool handsOver(const HandOver& request,
                   std::chrono::milliseconds patience = std::chrono::milliseconds(3000));

    /// Begins to answer other starts, on a thread of its own, until the event loop does so.
    void answer();
    /// From here on the event loop answers, and `deliver` gets what was handed over, in order. What it throws means that it
    /// gets the same again later.
    void deliverTo(std::function<void(const HandOver&)> deliver);
    /// Ends it: a start that comes now is another studio. What has been taken and not delivered.
    std::list<HandOver> close() noexcept;

private:
    enum class Answer { none, refused, taken };
    bool takesLock();
    void listen();
    Answer offer(const QByteArray& message, std::chrono::steady_clock::time_point end) const;
    void serve(); // not on two threads at once
    void stopThread();

    int folder_ = -1; // the run-time folder, open; -1: none
    int lock_ = -1;
    QByteArray name_; // of lock and socket, in that folder and without their endings
    std::unique_ptr<StudioListener> listener_;
    std::list<HandOver> waiting_; // taken and not delivered
    std::thread thread_;
    std::atomic<bool> isStopping_ = false;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::function<void(const HandOver&)> deliver_;
};

} // namespace qirn
