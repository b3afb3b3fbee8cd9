#include "program/exporting/Interruption.h"

#include <atomic>

namespace qirn {

namespace {

std::atomic<int> theSignal = 0;
static_assert(std::atomic<int>::is_always_lock_free);

} // namespace

Interruption::Interruption() {
    struct sigaction note {};
    note.sa_handler = [](int signal) { theSignal = signal; };
    note.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction old {};
        if (::sigaction(signal, nullptr, &old) < 0 || old.sa_handler == SIG_IGN) continue;
        ::sigaction(signal, &note, nullptr);
        before_.emplace_back(signal, old);
    }
}

Interruption::~Interruption() {
    for (const auto& [signal, old] : before_) ::sigaction(signal, &old, nullptr);
    if (const int signal = theSignal.exchange(0)) ::raise(signal);
}

bool Interruption::hasCome() {
    return theSignal != 0;
}

} // namespace qirn
