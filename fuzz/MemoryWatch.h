#pragma once
#include <cstdint>

namespace qirn::fuzz {

/// What a read may take beyond the picture that it gives: working memory, in proportion to the file or fixed.
inline constexpr int64_t kAllowance = int64_t{64} << 20;

/// What one byte of a file that is refused in the end may have taken besides.
inline constexpr int64_t kMostFromOneByte = 128;

/// Counts the bytes that are allocated on the heap, by every thread, while it lives; one at a time. Of the largest
/// blocks it counts what was touched, when they are freed: some decoders take all that a picture may need and then use
/// as much as there is. It works only in programs built with the address sanitizer, which tells of every allocation.
class MemoryWatch {
public:
    MemoryWatch();
    ~MemoryWatch();
    MemoryWatch(const MemoryWatch&) = delete;
    MemoryWatch& operator=(const MemoryWatch&) = delete;

    /// Stops the process when at any moment more was taken than the allowance and these bytes, which are those
    /// that the result itself needs.
    void requireWithin(int64_t resultBytes) const;
};

} // namespace qirn::fuzz
