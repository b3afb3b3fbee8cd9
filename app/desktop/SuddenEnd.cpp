#include "app/desktop/SuddenEnd.h"

#include "app/desktop/BackgroundQueue.h"
#include "platform/files/FileCalls.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <utility>

#include <QDateTime>
#include <QSocketNotifier>
#include <QThread>
#include <fcntl.h>
#include <unistd.h>

namespace qirn {

namespace {

constexpr int kSignals[] = {SIGTERM, SIGHUP, SIGINT};
constexpr unsigned long kLongestKeeping = 60; // seconds

int signalPipe = -1; // the end to write to
std::atomic<SuddenEnd*> watching = nullptr;
QtMessageHandler messagesBefore = nullptr;

/// The signal handler: async-signal-safe, so it only writes to the pipe.
void noteSignal(int number) {
    const int before = errno;
    const auto byte = static_cast<unsigned char>(number);
    [[maybe_unused]] const ssize_t written = ::write(signalPipe, &byte, 1);
    errno = before;
}

void setAction(int number, void (*action)(int)) {
    struct sigaction chosen {};
    chosen.sa_handler = action;
    chosen.sa_flags = SA_RESTART;
    sigemptyset(&chosen.sa_mask);
    ::sigaction(number, &chosen, nullptr);
}

/// A signal that the process was started to ignore, as by nohup, stays ignored.
bool isIgnored(int number) {
    struct sigaction current {};
    return ::sigaction(number, nullptr, &current) == 0 && current.sa_handler == SIG_IGN;
}

} // namespace

/// How the loss of the display is noticed.
struct SuddenEnd::Watch {
    static bool isOnItsThread() { return QThread::currentThread() == watching.load()->thread(); }
    /// X11: Qt finds the connection broken in the event loop and calls exit.
    static void atExit() {
        if (watching && isOnItsThread()) watching.load()->keepWorkOnce();
    }
    /// Wayland: Qt calls _exit, without exit handlers, right after this warning. Each of its threads prints the warning;
    /// only that of the main thread counts, unless the main thread waits for another one.
    static void readMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
        if (watching && message.startsWith(QLatin1String("The Wayland connection"))) {
            if (isOnItsThread()) {
                atExit();
            } else {
                noteSignal(SIGHUP);
                QThread::sleep(kLongestKeeping);
            }
        }
        messagesBefore(type, context, message);
    }
};

SuddenEnd::SuddenEnd(std::function<void()> keepWork) : keepWork_(std::move(keepWork)) {
    watching = this;
    // What is made before the exit handler is set is destroyed after it ran; without its calendars Qt writes no date.
    FileCalls::ofSystem();
    BackgroundQueue::files();
    BackgroundQueue::ownFiles();
    QDateTime::currentDateTime().toString(Qt::ISODate);
    static const bool atExit = std::atexit(Watch::atExit) == 0;
    Q_UNUSED(atExit)
    messagesBefore = qInstallMessageHandler(Watch::readMessage);
    if (::pipe2(signals_, O_CLOEXEC | O_NONBLOCK) != 0) return;
    signalPipe = signals_[1];
    auto* arrived = new QSocketNotifier(signals_[0], QSocketNotifier::Read, this);
    connect(arrived, &QSocketNotifier::activated, this, &SuddenEnd::endBySignal);
    for (const int number : kSignals) {
        if (!isIgnored(number)) setAction(number, noteSignal);
    }
}

SuddenEnd::~SuddenEnd() {
    for (const int number : kSignals) {
        if (!isIgnored(number)) setAction(number, SIG_DFL);
    }
    qInstallMessageHandler(messagesBefore);
    watching = nullptr;
    for (const int end : signals_) {
        if (end >= 0) ::close(end);
    }
}

void SuddenEnd::endBySignal() {
    unsigned char number = 0;
    if (::read(signals_[0], &number, 1) != 1) return;
    keepWorkOnce();
    setAction(number, SIG_DFL);
    ::raise(number); // so that the exit status tells of the signal
}

void SuddenEnd::keepWorkOnce() {
    const std::function<void()> keep = std::exchange(keepWork_, {});
    if (!keep) return;
    try {
        keep();
    } catch (const std::exception& error) {
        qWarning("Qirn Paint could not keep all work: %s", error.what());
    }
}

} // namespace qirn
