#include "core/TileMemory.h"

#include "core/Tile.h"
#include "platform/Require.h"

#include <algorithm>
#include <bit>
#include <map>
#include <mutex>
#include <new>
#include <vector>

#include <sys/mman.h>

#if defined(__SANITIZE_ADDRESS__)
#define QIRN_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QIRN_ADDRESS_SANITIZER 1
#endif
#endif
#ifdef QIRN_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) (static_cast<void>(address), static_cast<void>(size))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) (static_cast<void>(address), static_cast<void>(size))
#endif

namespace qirn {

namespace {

constexpr std::size_t kPageBytes = 2 * 1024 * 1024;
constexpr int kBlocksInPage = static_cast<int>(kPageBytes / kTileBytes);
constexpr uint8_t kAllFree = (1u << kBlocksInPage) - 1;
static_assert(kBlocksInPage == 8);

/// The pages and which of their blocks are free, a bit a block.
class Pool {
public:
    static Pool& shared() {
        static Pool* const pool = new Pool; // outlives every static that holds a tile
        return *pool;
    }

    uint8_t* take() {
        const std::lock_guard lock(mutex_);
        if (open_.empty()) addPage();
        // The page that was given to last is the one that is likely in the caches.
        uint8_t* const page = open_.back();
        uint8_t& free = pages_.at(page);
        const int place = std::countr_zero(free);
        if (free == kAllFree) --emptyPages_;
        free = static_cast<uint8_t>(free & (free - 1));
        if (free == 0) open_.pop_back();
        ++used_;
        --spare_;
        uint8_t* const block = page + place * kTileBytes;
        ASAN_UNPOISON_MEMORY_REGION(block, kTileBytes);
        return block;
    }

    void give(uint8_t* block) {
        const std::lock_guard lock(mutex_);
        ASAN_POISON_MEMORY_REGION(block, kTileBytes);
        const auto found = std::prev(pages_.upper_bound(block));
        auto& [page, free] = *found;
        const auto place = static_cast<int>((block - page) / kTileBytes);
        require((free >> place & 1) == 0);
        if (free == 0) open_.push_back(page);
        free = static_cast<uint8_t>(free | 1u << place);
        --used_;
        ++spare_;
        if (free != kAllFree) return;
        ++emptyPages_;
        if (emptyPages_ * static_cast<int64_t>(kPageBytes) > TileMemory::kMostSpareBytes) removePage(page);
    }

    void trim() {
        const std::lock_guard lock(mutex_);
        for (auto entry = pages_.begin(); entry != pages_.end();) {
            const auto [page, free] = *entry++;
            if (free == kAllFree) {
                removePage(page);
                continue;
            }
            for (int place = 0; place < kBlocksInPage; ++place) {
                if (free >> place & 1) madvise(page + place * kTileBytes, kTileBytes, MADV_DONTNEED);
            }
        }
    }

    int64_t used() {
        const std::lock_guard lock(mutex_);
        return used_ * kTileBytes;
    }
    int64_t spare() {
        const std::lock_guard lock(mutex_);
        return spare_ * kTileBytes;
    }

private:
    void addPage() {
        // Twice the size, so that an aligned page lies within.
        void* const mapped =
            mmap(nullptr, 2 * kPageBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (mapped == MAP_FAILED) throw std::bad_alloc();
        auto* const start = static_cast<uint8_t*>(mapped);
        const auto past = reinterpret_cast<uintptr_t>(start) % kPageBytes;
        uint8_t* const page = start + (past == 0 ? 0 : kPageBytes - past);
        if (page > start) munmap(start, static_cast<std::size_t>(page - start));
        uint8_t* const behind = page + kPageBytes;
        if (behind < start + 2 * kPageBytes)
            munmap(behind, static_cast<std::size_t>(start + 2 * kPageBytes - behind));
        // No large pages: filling one takes the system up to 25 ms, which a pen feels, and opening a picture twice as long.
        ASAN_POISON_MEMORY_REGION(page, kPageBytes);
        pages_.emplace(page, kAllFree);
        open_.push_back(page);
        ++emptyPages_;
        spare_ += kBlocksInPage;
    }

    void removePage(uint8_t* page) {
        pages_.erase(page);
        std::erase(open_, page);
        --emptyPages_;
        spare_ -= kBlocksInPage;
        ASAN_UNPOISON_MEMORY_REGION(page, kPageBytes);
        munmap(page, kPageBytes);
    }

    std::mutex mutex_;
    std::map<uint8_t*, uint8_t> pages_; // by address: the free blocks
    std::vector<uint8_t*> open_;        // pages with a free block
    int64_t emptyPages_ = 0;            // pages of which nothing is in use
    int64_t used_ = 0;                  // blocks
    int64_t spare_ = 0;
};

} // namespace

void TileMemory::GiveBack::operator()(uint8_t* block) const {
    Pool::shared().give(block);
}

TileMemory::Block TileMemory::take() {
    return Block(Pool::shared().take());
}

void TileMemory::trim() {
    Pool::shared().trim();
}

int64_t TileMemory::usedBytes() {
    return Pool::shared().used();
}

int64_t TileMemory::spareBytes() {
    return Pool::shared().spare();
}

} // namespace qirn
