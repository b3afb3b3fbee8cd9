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

bool isOneOf(std::span<const std::string_view> names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}
constexpr std::string_view kColors[] = {"gAMA", "cHRM", "sRGB", "iCCP"};
constexpr std::string_view kOthers[] = {"IHDR", "PLTE", "tRNS", "eXIf", "pHYs"};

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
            if (length > kLargestChunk) continue;
            if (isOneOf(kColors, name)) chunks.colors.push_back(chunk);
            if (isOneOf(kColors, name) || isOneOf(kOthers, name)) keep(chunk);
        }
    } catch (const BEReader::Short&) {
        return std::nullopt;
    }
}

} // namespace qirn
