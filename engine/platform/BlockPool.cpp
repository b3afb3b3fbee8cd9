#include "platform/BlockPool.h"

#include "platform/CheckedMath.h"
#include "platform/Require.h"

#include <algorithm>
#include <bit>
#include <condition_variable>
#include <map>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <sys/mman.h>

#ifndef MADV_POPULATE_WRITE
#define MADV_POPULATE_WRITE 23 // since Linux 5.14; older ones refuse it
#endif

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

using BlockPool::kBlockBytes;

namespace {

constexpr std::size_t kPageBytes = 2 * 1024 * 1024;
constexpr int kBlocksInPage = static_cast<int>(kPageBytes / kBlockBytes);
constexpr uint8_t kAllFree = (1u << kBlocksInPage) - 1;
static_assert(kBlocksInPage == 8);
// How many blocks are prepared ahead: as many as a large brush takes when it reaches a new row or column of tiles.
constexpr int64_t kPreparedBlocks = 32;

/// A bit a block.
struct PageBlocks {
    uint8_t free = kAllFree;
    uint8_t ready = 0; // free blocks that are resident: used before, or prepared
};

/// The pages and their blocks.
class Pool {
public:
    static Pool& shared() {
        static Pool* const pool = new Pool; // outlives every static that holds a tile
        return *pool;
    }

    uint8_t* take() {
        const std::lock_guard lock(mutex_);
        if (refused_ > 0 && --refused_ == 0) throw std::bad_alloc();
        if (open_.empty()) addPage();
        uint8_t* const block = detach(ready_ > 0 ? readyBlock() : anyBlock(open_.back()));
        ++used_;
        --spare_;
        ASAN_UNPOISON_MEMORY_REGION(block, kBlockBytes);
        return block;
    }

    void give(uint8_t* block) {
        const std::lock_guard lock(mutex_);
        ASAN_POISON_MEMORY_REGION(block, kBlockBytes);
        --used_;
        ++spare_;
        uint8_t* const page = attach(block);
        if (emptyPages_ * static_cast<int64_t>(kPageBytes) > BlockPool::kMostSpareBytes &&
            pages_.at(page).free == kAllFree)
            removePage(page);
    }

    void prepare() {
        const std::lock_guard lock(mutex_);
        if (ready_ >= kPreparedBlocks || !canPrepare_) return;
        try {
            if (!preparing_.joinable()) preparing_ = std::thread([this] { keepPrepared(); });
        } catch (const std::system_error&) {
            canPrepare_ = false; // no thread to be had: tiles are made when they are needed
            return;
        }
        isWanted_ = true;
        wanted_.notify_one();
    }

    void trim() {
        const std::lock_guard lock(mutex_);
        for (auto entry = pages_.begin(); entry != pages_.end();) {
            auto& [page, blocks] = *entry++;
            if (blocks.free == kAllFree) {
                removePage(page);
                continue;
            }
            ready_ -= std::popcount(blocks.ready);
            blocks.ready = 0;
            for (int place = 0; place < kBlocksInPage; ++place) {
                if (blocks.free >> place & 1) madvise(page + place * kBlockBytes, kBlockBytes, MADV_DONTNEED);
            }
        }
    }

    int64_t refuse(int64_t nth) {
        const std::lock_guard lock(mutex_);
        return std::exchange(refused_, nth);
    }
    int64_t ready() {
        const std::lock_guard lock(mutex_);
        return ready_ * kBlockBytes;
    }
    int64_t used() {
        const std::lock_guard lock(mutex_);
        return used_ * kBlockBytes;
    }
    int64_t spare() {
        const std::lock_guard lock(mutex_);
        return spare_ * kBlockBytes;
    }

private:
    /// The page of the block freed last, which is most likely still in the caches.
    uint8_t* readyBlock() {
        const auto page = std::find_if(open_.rbegin(), open_.rend(), [this](uint8_t* candidate) {
            return pages_.at(candidate).ready != 0;
        });
        return *page + std::countr_zero(pages_.at(*page).ready) * kBlockBytes;
    }
    uint8_t* anyBlock(uint8_t* page) { return page + std::countr_zero(pages_.at(page).free) * kBlockBytes; }

    /// Marks a block as not free.
    uint8_t* detach(uint8_t* block) {
        const auto found = std::prev(pages_.upper_bound(block));
        auto& [page, blocks] = *found;
        const auto bit = static_cast<uint8_t>(1u << (block - page) / kBlockBytes);
        if (blocks.free == kAllFree) --emptyPages_;
        if (blocks.ready & bit) --ready_;
        blocks.free = static_cast<uint8_t>(blocks.free & ~bit);
        blocks.ready = static_cast<uint8_t>(blocks.ready & ~bit);
        if (blocks.free == 0) std::erase(open_, page);
        return block;
    }

    /// Marks a block whose pages are resident as free; returns its page.
    uint8_t* attach(uint8_t* block) {
        const auto found = std::prev(pages_.upper_bound(block));
        auto& [page, blocks] = *found;
        const auto bit = static_cast<uint8_t>(1u << (block - page) / kBlockBytes);
        require((blocks.free & bit) == 0);
        if (blocks.free == 0) open_.push_back(page);
        blocks.free = static_cast<uint8_t>(blocks.free | bit);
        blocks.ready = static_cast<uint8_t>(blocks.ready | bit);
        ++ready_;
        if (blocks.free == kAllFree) ++emptyPages_;
        return page;
    }

    /// The thread that prepares blocks whenever they are wanted, for the life of the process.
    void keepPrepared() {
        std::unique_lock lock(mutex_);
        for (;;) {
            wanted_.wait(lock, [this] { return isWanted_; });
            while (ready_ < kPreparedBlocks && canPrepare_) {
                uint8_t* const block = unreadyBlock();
                if (!block) break;
                detach(block);
                lock.unlock();
                const bool there = madvise(block, kBlockBytes, MADV_POPULATE_WRITE) == 0;
                lock.lock();
                attach(block);
                canPrepare_ = there;
            }
            isWanted_ = false;
        }
    }

    /// A free block whose pages are not resident yet; null when the system has no more memory.
    uint8_t* unreadyBlock() {
        try {
            if (ready_ == spare_) addPage();
        } catch (const std::bad_alloc&) {
            return nullptr;
        }
        for (uint8_t* page : open_) {
            const PageBlocks& blocks = pages_.at(page);
            const auto unready = static_cast<uint8_t>(blocks.free & ~blocks.ready);
            if (unready != 0) return page + std::countr_zero(unready) * kBlockBytes;
        }
        return nullptr;
    }

    void addPage() {
        open_.reserve(pages_.size() + 1); // so that blocks can be given back where there is no memory
        // Twice the size, so that an aligned page lies within.
        void* const mapped =
            mmap(nullptr, 2 * kPageBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (mapped == MAP_FAILED) throw std::bad_alloc();
        auto* const start = static_cast<uint8_t*>(mapped);
        const auto past = reinterpret_cast<uintptr_t>(start) % kPageBytes;
        uint8_t* const page = start + (past == 0 ? 0 : kPageBytes - past);
        if (page > start) munmap(start, checkedSize(page - start));
        uint8_t* const behind = page + kPageBytes;
        if (behind < start + 2 * kPageBytes) munmap(behind, checkedSize(start + 2 * kPageBytes - behind));
        // No large pages: filling one takes the system up to 25 ms, which a pen feels, and opening a picture twice as long.
        try {
            pages_.emplace(page, PageBlocks());
        } catch (const std::bad_alloc&) {
            munmap(page, kPageBytes);
            throw;
        }
        ASAN_POISON_MEMORY_REGION(page, kPageBytes);
        open_.push_back(page);
        ++emptyPages_;
        spare_ += kBlocksInPage;
    }

    void removePage(uint8_t* page) {
        ready_ -= std::popcount(pages_.at(page).ready);
        pages_.erase(page);
        std::erase(open_, page);
        --emptyPages_;
        spare_ -= kBlocksInPage;
        ASAN_UNPOISON_MEMORY_REGION(page, kPageBytes);
        munmap(page, kPageBytes);
    }

    std::mutex mutex_;
    std::map<uint8_t*, PageBlocks> pages_; // by address
    std::vector<uint8_t*> open_;           // pages with a free block
    int64_t emptyPages_ = 0;               // pages of which nothing is in use
    int64_t used_ = 0;                     // blocks
    int64_t spare_ = 0;                    // those being prepared among them
    int64_t ready_ = 0;
    std::thread preparing_;
    std::condition_variable wanted_;
    bool isWanted_ = false;
    bool canPrepare_ = true;
    int64_t refused_ = 0; // for tests: which of the next blocks to refuse
};

} // namespace

void BlockPool::GiveBack::operator()(uint8_t* block) const {
    Pool::shared().give(block);
}

BlockPool::Block BlockPool::take() {
    return Block(Pool::shared().take());
}

void BlockPool::trim() {
    Pool::shared().trim();
}

void BlockPool::prepare() {
    Pool::shared().prepare();
}

int64_t BlockPool::refuse(int64_t nth) {
    return Pool::shared().refuse(nth);
}

int64_t BlockPool::readyBytes() {
    return Pool::shared().ready();
}

int64_t BlockPool::usedBytes() {
    return Pool::shared().used();
}

int64_t BlockPool::spareBytes() {
    return Pool::shared().spare();
}

} // namespace qirn
