#pragma once
#include "program/HandOver.h"

#include <chrono>
#include <list>

namespace qirn {

/// The ear of the studio that is open: takes what other starts of the same user hand over. It never waits: `serve` is
/// called when `descriptor` can be read. Whoever is slow, sends no end or anything else than a hand-over, or comes when
/// many are being heard, is let go, and opens its files itself.
class StudioListener {
public:
    explicit StudioListener(int socket); ///< Listening; owned from here on.
    ~StudioListener();
    StudioListener(const StudioListener&) = delete;
    StudioListener& operator=(const StudioListener&) = delete;

    int descriptor() const { return events_; }
    /// What has been handed over since: none, one or more. Where memory is out it throws, and loses nothing that it has
    /// agreed to take: from then on no memory is asked for.
    std::list<HandOver> serve();
    /// Hears nobody any more; the last that was handed over. Nothing is lost: who has not come so far knows it.
    std::list<HandOver> close() noexcept;

    static constexpr std::size_t kMostPeers = 16;
    std::chrono::milliseconds patience{5000}; ///< With each; longer than a start waits.

private:
    struct Peer {
        int socket = -1;
        std::chrono::steady_clock::time_point end;
        QByteArray received;
        std::list<HandOver> offered; // one, from when it was told that it is taken
    };
    enum class Heard { more, all, nonsense };
    void accept();
    void hear(Peer& peer);
    Heard advance(Peer& peer, QByteArrayView bytes);
    void letGo(std::list<Peer>::iterator peer);

    int socket_;
    int events_; // an epoll of the socket and the peers
    std::list<Peer> peers_;
    std::list<HandOver> taken_;
};

/// Whether the process at the other end belongs to the same user.
bool isOfSameUser(int socket);

} // namespace qirn
