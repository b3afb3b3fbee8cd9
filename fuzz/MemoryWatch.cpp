#include "MemoryWatch.h"

#include "platform/Require.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>

#include <sanitizer/allocator_interface.h>
#include <sys/mman.h>

namespace qirn::fuzz {

namespace {

std::atomic<bool> isWatching = false;
std::atomic<int64_t> live = 0; // bytes since the watch began; what is older and freed meanwhile counts down
std::atomic<int64_t> peak = 0;
std::atomic<int64_t> touched = 0; // of large blocks that were freed

constexpr std::size_t kLargeBlock = std::size_t{16} << 20;
constexpr uintptr_t kPage = 4096;

int64_t touchedBytes(const volatile void* memory, std::size_t size) {
    const auto start = (reinterpret_cast<uintptr_t>(memory) + kPage - 1) / kPage * kPage;
    const auto end = (reinterpret_cast<uintptr_t>(memory) + size) / kPage * kPage;
    int64_t pages = 0;
    std::array<unsigned char, 4096> isThere; // a page each; nothing may be allocated here
    for (uintptr_t at = start; at < end; at += isThere.size() * kPage) {
        const std::size_t count = std::min<std::size_t>((end - at) / kPage, isThere.size());
        require(mincore(reinterpret_cast<void*>(at), count * kPage, isThere.data()) == 0);
        pages += std::count_if(isThere.begin(), isThere.begin() + count, [](auto is) { return is & 1; });
    }
    return pages * static_cast<int64_t>(kPage);
}

void allocated(const volatile void*, std::size_t size) {
    if (!isWatching.load(std::memory_order_relaxed) || size >= kLargeBlock) return;
    const int64_t now = live.fetch_add(static_cast<int64_t>(size)) + static_cast<int64_t>(size);
    int64_t before = peak.load();
    while (now > before && !peak.compare_exchange_weak(before, now)) {}
}

void freed(const volatile void* memory) {
    if (!isWatching.load(std::memory_order_relaxed) || !memory) return;
    const std::size_t size = __sanitizer_get_allocated_size(memory);
    if (size >= kLargeBlock) {
        touched += touchedBytes(memory, size);
    } else {
        live.fetch_sub(static_cast<int64_t>(size));
    }
}

} // namespace

MemoryWatch::MemoryWatch() {
    static const int installed = __sanitizer_install_malloc_and_free_hooks(allocated, freed);
    require(installed > 0 && !isWatching);
    live = 0;
    peak = 0;
    touched = 0;
    isWatching = true;
}

MemoryWatch::~MemoryWatch() {
    isWatching = false;
}

void MemoryWatch::requireWithin(int64_t resultBytes) const {
    const int64_t taken = peak + touched;
    if (taken <= kAllowance + resultBytes) return;
    std::fprintf(stderr, "The read took %lld bytes for a result of %lld.\n", static_cast<long long>(taken),
                 static_cast<long long>(resultBytes));
    require(false);
}

} // namespace qirn::fuzz
