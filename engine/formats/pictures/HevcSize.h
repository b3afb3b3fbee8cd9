#pragma once
#include <cstdint>
#include <span>

namespace qirn {

struct HevcSize {
    int64_t width = 0;
    int64_t height = 0;
};

/// The size, of most pixels, that the parameter sets in a HEIC file's boxes tell the HEVC decoder. It takes memory by
/// them, whatever the file says of its picture elsewhere. 0 when there is none that can be understood.
HevcSize largestHevcSize(std::span<const uint8_t> file);

} // namespace qirn
