#include "platform/BackgroundThread.h"

#include <atomic>
#include <thread>

#include <sys/resource.h>
#include <unistd.h>

namespace qirn {

namespace {

constexpr int kLowestPriority = 19;
constexpr std::chrono::milliseconds kLook(4); // at what the hand does, while a thread rests
thread_local bool isBackground = false;
std::atomic<int> hurries = 0;
std::atomic<int> hands = 0;

} // namespace

void becomeBackgroundThread() {
    isBackground = true;
    // Linux holds a priority for each thread; without it the work is done all the same.
    static_cast<void>(setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), kLowestPriority));
}

BackgroundHurry::BackgroundHurry() {
    ++hurries;
}
BackgroundHurry::~BackgroundHurry() {
    --hurries;
}

HandInMotion::HandInMotion() {
    ++hands;
}
HandInMotion::~HandInMotion() {
    --hands;
}

void BackgroundRest::whileHandMoves() {
    using Clock = std::chrono::steady_clock;
    while (hands > 0 && left_ > left_.zero() && keepsToItself()) {
        const Clock::time_point before = Clock::now();
        std::this_thread::sleep_for(kLook);
        left_ -= Clock::now() - before;
    }
}

bool keepsToItself() {
    return isBackground && hurries == 0;
}

} // namespace qirn
