#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qirn {

/// A PNG reduced to what the picture needs, because the decoder allocates whatever a chunk claims and keeps every
/// text: before the pixels only chunks that affect them, each of them complete.
struct PngChunks {
    std::vector<uint8_t> head; ///< Signature and chunks.
    /// Those chunks among them that say what the colors mean, in the file.
    std::vector<std::span<const uint8_t>> colors;
    /// From the first chunk of pixels to the end of the file, which may come early.
    std::span<const uint8_t> rest;
};

/// Nothing where a chunk before the pixels claims more bytes than there are, or there are no pixels.
std::optional<PngChunks> pngChunks(std::span<const uint8_t> file);

} // namespace qirn
