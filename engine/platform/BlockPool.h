#pragma once
#include <cstdint>
#include <memory>

namespace qirn {

/// Memory in blocks of one size, that of a tile, page-aligned and recycled: the system takes longer to hand out a fresh
/// page than a brush takes to fill it. Any thread may take and give.
///
/// Freed blocks are kept for the next tile, up to `kMostSpareBytes`; beyond it, and on `trim`, memory goes back to the
/// system, in stretches of several blocks.
namespace BlockPool {

inline constexpr int kBlockBytes = 256 * 1024;
inline constexpr int64_t kMostSpareBytes = 128LL * 1024 * 1024;

struct GiveBack {
    void operator()(uint8_t* block) const;
};
/// A block of `kBlockBytes` bytes, its content unspecified; the owner's until it is let go.
using Block = std::unique_ptr<uint8_t, GiveBack>;

Block take(); ///< Throws std::bad_alloc; giving a block back asks for no memory.

/// Returns at once and has the system hand out the pages of the next few blocks in the background: a pen that comes to
/// a new tile does not wait for them. Does nothing where the system cannot.
void prepare();

/// Returns all unused memory to the system: called when a picture is closed.
void trim();

/// For tests: makes the `nth` take() from now on throw, once; 1 is the next one, 0 is none. Returns how many calls
/// were left until the one set before, 0 when it has thrown.
int64_t refuse(int64_t nth);

int64_t readyBytes(); ///< Of spare blocks whose pages are resident.
int64_t usedBytes();  ///< Of blocks that are taken.
int64_t spareBytes(); ///< Kept for later.

} // namespace BlockPool

} // namespace qirn
