#include "program/StudioListener.h"

#include "core/PaintEngine.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <utility>

#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace qirn {

namespace {

constexpr std::size_t kAtOnce = 64 * 1024; // bytes of one peer, so that nobody keeps the others waiting

void watch(int events, int socket) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = socket;
    ::epoll_ctl(events, EPOLL_CTL_ADD, socket, &event);
}

} // namespace

bool isOfSameUser(int socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::geteuid();
}

StudioListener::StudioListener(int socket) : socket_(socket), events_(::epoll_create1(EPOLL_CLOEXEC)) {
    watch(events_, socket_);
}

StudioListener::~StudioListener() {
    close();
}

std::list<HandOver> StudioListener::serve() {
    std::array<epoll_event, kMostPeers + 1> events{};
    const int count = ::epoll_wait(events_, events.data(), static_cast<int>(events.size()), 0);
    for (int i = 0; i < count; ++i) {
        const int ready = events[static_cast<std::size_t>(i)].data.fd;
        const auto peer = std::ranges::find(peers_, ready, &Peer::socket);
        if (peer != peers_.end())
            hear(*peer);
        else if (ready == socket_)
            accept();
    }
    const auto now = std::chrono::steady_clock::now();
    for (auto peer = peers_.begin(); peer != peers_.end();) {
        const auto next = std::next(peer);
        if (peer->socket < 0 || peer->end <= now) letGo(peer);
        peer = next;
    }
    return std::exchange(taken_, {});
}

std::list<HandOver> StudioListener::close() noexcept {
    while (!peers_.empty()) letGo(peers_.begin());
    for (int* file : {&socket_, &events_})
        if (*file >= 0) ::close(std::exchange(*file, -1));
    return std::exchange(taken_, {});
}

void StudioListener::accept() {
    std::list<Peer> next(1); // asks for its memory before it comes
    Peer& peer = next.front();
    peer.socket = ::accept4(socket_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (peer.socket < 0) return;
    if (peers_.size() >= kMostPeers || !isOfSameUser(peer.socket)) {
        ::close(peer.socket);
        return;
    }
    peer.end = std::chrono::steady_clock::now() + patience;
    watch(events_, peer.socket);
    peers_.splice(peers_.end(), next);
}

void StudioListener::hear(Peer& peer) {
    std::array<char, kAtOnce> bytes;
    const ssize_t count = ::recv(peer.socket, bytes.data(), bytes.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (count > 0 && advance(peer, {bytes.data(), count}) == Heard::more) return;
    ::close(std::exchange(peer.socket, -1));
}

StudioListener::Heard StudioListener::advance(Peer& peer, QByteArrayView bytes) {
    if (!peer.offered.empty()) {
        if (bytes.size() != 1 || bytes.front() != HandOver::kTaken) return Heard::nonsense;
        taken_.splice(taken_.end(), peer.offered);
        return Heard::all;
    }
    peer.received += bytes;
    const auto size = static_cast<std::size_t>(peer.received.size());
    const std::size_t wanted = HandOver::lengthOf(peer.received).value_or(HandOver::kMostBytes);
    if (wanted > HandOver::kMostBytes || size > wanted) return Heard::nonsense;
    if (size < wanted) return Heard::more;
    auto request = HandOver::decoded(peer.received);
    if (!request) return Heard::nonsense;
    const bool isTaken = request->version == PaintEngine::version;
    if (isTaken) peer.offered.push_back(std::move(*request));
    const char answer = isTaken ? HandOver::kTakes : HandOver::kRefuses;
    const bool isTold = ::send(peer.socket, &answer, 1, MSG_NOSIGNAL) == 1;
    return isTold && isTaken ? Heard::more : Heard::all;
}

void StudioListener::letGo(std::list<Peer>::iterator peer) {
    if (peer->socket >= 0) {
        // From here on it cannot send that it agrees; what it has sent before is read.
        ::shutdown(peer->socket, SHUT_RD);
        if (!peer->offered.empty()) hear(*peer);
        if (peer->socket >= 0) ::close(peer->socket);
    }
    peers_.erase(peer);
}

} // namespace qirn
