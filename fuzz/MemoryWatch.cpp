#include "MemoryWatch.h"

#include "platform/Require.h"

#include <atomic>
#include <cstdio>

#include <sanitizer/allocator_interface.h>

namespace qirn::fuzz {

namespace {

std::atomic<bool> isWatching = false;
std::atomic<int64_t> live = 0; // bytes since the watch began; what is older and freed meanwhile counts down
std::atomic<int64_t> peak = 0;

void allocated(const volatile void*, std::size_t size) {
    if (!isWatching.load(std::memory_order_relaxed)) return;
    const int64_t now = live.fetch_add(static_cast<int64_t>(size)) + static_cast<int64_t>(size);
    int64_t before = peak.load();
    while (now > before && !peak.compare_exchange_weak(before, now)) {}
}

void freed(const volatile void* memory) {
    if (!isWatching.load(std::memory_order_relaxed) || !memory) return;
    live.fetch_sub(static_cast<int64_t>(__sanitizer_get_allocated_size(memory)));
}

} // namespace

MemoryWatch::MemoryWatch() {
    static const int installed = __sanitizer_install_malloc_and_free_hooks(allocated, freed);
    require(installed > 0 && !isWatching);
    live = 0;
    peak = 0;
    isWatching = true;
}

MemoryWatch::~MemoryWatch() {
    isWatching = false;
}

void MemoryWatch::requireWithin(int64_t resultBytes) const {
    if (peak <= kAllowance + resultBytes) return;
    std::fprintf(stderr, "The read took %lld bytes for a result of %lld.\n", static_cast<long long>(peak),
                 static_cast<long long>(resultBytes));
    require(peak <= kAllowance + resultBytes);
}

} // namespace qirn::fuzz
