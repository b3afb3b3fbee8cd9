#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qirn {

/// A PNG for a decoder that takes memory for whatever a chunk claims, and keeps every text: of what stands before the
/// pixels only the chunks that a picture is made of, each with all its bytes there.
struct PngChunks {
    std::vector<uint8_t> head; ///< Signature and chunks.
    std::span<const uint8_t>
        rest; ///< From the first chunk of pixels to the end of the file, which may come early.
};

/// Nothing where a chunk before the pixels claims more bytes than there are, or there are no pixels.
std::optional<PngChunks> pngChunks(std::span<const uint8_t> file);

} // namespace qirn
