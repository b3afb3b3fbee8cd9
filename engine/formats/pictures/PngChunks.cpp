#include "formats/pictures/PngChunks.h"

#include "formats/common/ByteReader.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <string_view>

namespace qirn {

namespace {

constexpr int64_t kSignatureBytes = 8;
constexpr int64_t kFrameBytes = 12; // length, name and checksum
constexpr int64_t kLargestChunk = 16 << 20;

bool isNeeded(std::string_view name) {
    constexpr std::string_view kNeeded[] = {"IHDR", "PLTE", "tRNS", "gAMA", "cHRM",
                                            "sRGB", "iCCP", "eXIf", "pHYs"};
    return std::find(std::begin(kNeeded), std::end(kNeeded), name) != std::end(kNeeded);
}

} // namespace

std::optional<PngChunks> pngChunks(std::span<const uint8_t> file) {
    PngChunks chunks;
    const auto keep = [&](std::span<const uint8_t> bytes) {
        chunks.head.insert(chunks.head.end(), bytes.begin(), bytes.end());
    };
    try {
        BEReader in(file);
        keep(in.slice(kSignatureBytes));
        for (;;) {
            const int64_t at = in.pos();
            const int64_t length = in.u32();
            const auto letters = in.slice(4);
            const std::string_view name(reinterpret_cast<const char*>(letters.data()), letters.size());
            if (name == "IDAT") {
                chunks.rest = file.subspan(checkedSize(at));
                return chunks;
            }
            in.moveTo(at);
            const auto chunk = in.slice(length + kFrameBytes);
            if (isNeeded(name) && length <= kLargestChunk) keep(chunk);
        }
    } catch (const BEReader::Short&) {
        return std::nullopt;
    }
}

} // namespace qirn
