#include "program/OneStudio.h"

#include "app/desktop/Failures.h"
#include "platform/files/FilePath.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include <QCryptographicHash>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace qirn {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto kBetweenTries = 50ms;
constexpr int kWaitingStarts = 64;
constexpr qsizetype kNameDigits = 16;

/// The user's run-time folder, where nobody else can put anything; -1 where there is none of that kind.
int openRuntimeFolder() {
    QByteArray path = qgetenv("XDG_RUNTIME_DIR");
    if (path.isEmpty()) {
        // Without what Qt has to say about it on standard error.
        const QtMessageHandler usual =
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        path = bytesOfPath(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation));
        qInstallMessageHandler(usual);
    }
    if (!path.startsWith('/')) return -1;
    const int folder = ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    struct stat facts {};
    if (folder < 0) return -1;
    if (::fstat(folder, &facts) == 0 && facts.st_uid == ::geteuid() && (facts.st_mode & 07777) == 0700)
        return folder;
    ::close(folder);
    return -1;
}

/// The address of a socket in that folder, whose own path may be too long for one.
sockaddr_un addressIn(int folder, const QByteArray& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray path = "/proc/self/fd/" + QByteArray::number(folder) + '/' + name;
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()) + 1);
    return address;
}

class Socket {
public:
    Socket() : file_(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {}
    ~Socket() {
        if (file_ >= 0) ::close(file_);
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    int file() const { return file_; }
    int release() { return std::exchange(file_, -1); }

private:
    int file_;
};

/// False where nothing happened in time.
bool waitFor(int file, short what, Clock::time_point end) {
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (left <= 0ms) return false;
        pollfd wanted{file, what, 0};
        const int count = ::poll(&wanted, 1, static_cast<int>(left.count()));
        if (count > 0) return true;
        if (count < 0 && errno != EINTR) return false;
    }
}

bool sendAll(int socket, const QByteArray& bytes, Clock::time_point end) {
    for (qsizetype sent = 0; sent < bytes.size();) {
        const ssize_t count = ::send(socket, bytes.constData() + sent,
                                     static_cast<std::size_t>(bytes.size() - sent), MSG_NOSIGNAL);
        if (count > 0)
            sent += count;
        else if (errno != EAGAIN && errno != EINTR)
            return false;
        else if (!waitFor(socket, POLLOUT, end))
            return false;
    }
    return true;
}

} // namespace

OneStudio::OneStudio(const QByteArray& display, const QString& folder) : folder_(openRuntimeFolder()) {
    const QString real = QFileInfo(folder).canonicalFilePath();
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(display + '\0' + bytesOfPath(real.isEmpty() ? folder : real));
    name_ = "qirn-paint-" + hash.result().toHex().first(kNameDigits);
}

OneStudio::~OneStudio() {
    close();
}

bool OneStudio::handsOver(const HandOver& request, std::chrono::milliseconds patience) {
    const auto message = request.encoded();
    const auto end = Clock::now() + patience;
    while (folder_ >= 0) {
        if (takesLock()) {
            listen();
            return false;
        }
        if (lock_ < 0 || !message) return false;
        const Answer answer = offer(*message, end);
        if (answer != Answer::none) return answer == Answer::taken;
        if (Clock::now() + kBetweenTries >= end) return false;
        std::this_thread::sleep_for(kBetweenTries);
    }
    return false;
}

bool OneStudio::takesLock() {
    if (lock_ < 0)
        lock_ = ::openat(folder_, (name_ + ".lock").constData(),
                         O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
    if (lock_ < 0) return false;
    if (::flock(lock_, LOCK_EX | LOCK_NB) == 0) return true;
    if (errno != EWOULDBLOCK && errno != EINTR) ::close(std::exchange(lock_, -1)); // there are no locks
    return false;
}

void OneStudio::listen() {
    const QByteArray name = name_ + ".socket";
    ::unlinkat(folder_, name.constData(), 0); // of one that was killed
    Socket socket;
    const sockaddr_un address = addressIn(folder_, name);
    const auto* general = reinterpret_cast<const sockaddr*>(&address);
    if (::bind(socket.file(), general, sizeof address) == 0 && ::listen(socket.file(), kWaitingStarts) == 0)
        listener_ = std::make_unique<StudioListener>(socket.release());
    else
        ::close(std::exchange(lock_, -1)); // others shall not wait for it
}

OneStudio::Answer OneStudio::offer(const QByteArray& message, Clock::time_point end) const {
    const Socket socket;
    const sockaddr_un address = addressIn(folder_, name_ + ".socket");
    if (::connect(socket.file(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        !isOfSameUser(socket.file()) || !sendAll(socket.file(), message, end) ||
        !waitFor(socket.file(), POLLIN, end))
        return Answer::none;
    char answer = 0;
    if (::recv(socket.file(), &answer, 1, 0) != 1) return Answer::none;
    if (answer == HandOver::kRefuses) return Answer::refused;
    const bool isTaken =
        answer == HandOver::kTakes && sendAll(socket.file(), QByteArray(1, HandOver::kTaken), end);
    return isTaken ? Answer::taken : Answer::none;
}

// --- The studio that is open

void OneStudio::answer() {
    if (!listener_) return;
    // Without memory, or without threads, others wait for the event loop, and in the end open their files themselves.
    contained([this] {
        thread_ = std::thread([this] {
            while (!isStopping_) {
                waitFor(listener_->descriptor(), POLLIN, Clock::now() + kBetweenTries);
                if (!contained([this] { serve(); })) std::this_thread::sleep_for(kBetweenTries);
            }
        });
    });
}

void OneStudio::serve() {
    waiting_.splice(waiting_.end(), listener_->serve());
}

void OneStudio::stopThread() {
    isStopping_ = true;
    if (thread_.joinable()) thread_.join();
}

void OneStudio::deliverTo(std::function<void(const HandOver&)> deliver) {
    stopThread();
    if (!listener_) return;
    deliver_ = std::move(deliver);
    notifier_ = std::make_unique<QSocketNotifier>(listener_->descriptor(), QSocketNotifier::Read);
    const auto hear = [this] {
        contained([this] { serve(); });
        contained([this] {
            for (; !waiting_.empty(); waiting_.pop_front()) deliver_(waiting_.front());
        });
    };
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), hear);
    hear();
}

std::list<HandOver> OneStudio::close() noexcept {
    stopThread();
    notifier_.reset();
    if (listener_) {
        contained([this] { ::unlinkat(folder_, (name_ + ".socket").constData(), 0); });
        waiting_.splice(waiting_.end(), listener_->close());
        listener_.reset();
    }
    for (int* file : {&lock_, &folder_})
        if (*file >= 0) ::close(std::exchange(*file, -1));
    return std::exchange(waiting_, {});
}

} // namespace qirn
