#pragma once
#include <cstdint>
#include <span>

namespace qirn {

struct HevcSize {
    int64_t width = 0;
    int64_t height = 0;
};

/// The largest size in the sequence parameter sets of a HEIC file. The HEVC decoder allocates by these, whatever size
/// the file states elsewhere. 0 if none can be parsed.
HevcSize largestHevcSize(std::span<const uint8_t> file);

} // namespace qirn
