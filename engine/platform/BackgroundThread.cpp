#include "platform/BackgroundThread.h"

#include <atomic>

#include <sys/resource.h>
#include <unistd.h>

namespace qirn {

namespace {

constexpr int kLowestPriority = 19;
thread_local bool isBackground = false;
std::atomic<int> hurries = 0;

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

bool keepsToItself() {
    return isBackground && hurries == 0;
}

} // namespace qirn
