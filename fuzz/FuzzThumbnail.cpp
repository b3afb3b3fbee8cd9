// The preview that is read without the rest of a document. Whatever opens has the preview that its manifest names; what
// is read takes little memory, and of it any size can be made.
#include "MemoryWatch.h"
#include "formats/native/PaintFile.h"
#include "formats/native/StoredPreview.h"
#include "formats/pictures/SmallPng.h"
#include "platform/CheckedMath.h"
#include "platform/Require.h"
#include "thumbnailer/Thumbnail.h"

#include <algorithm>
#include <optional>

using namespace qirn;

namespace {

// For the pieces, a preview of the largest size with its PNG, and libpng; strings of the manifest are held while they are
// read, by a parser that doubles what it holds.
constexpr int64_t kMostMemory = int64_t{2} << 20;
constexpr int64_t kMostFromOneByte = 8;
constexpr std::size_t kLongFile = 4096;

std::shared_ptr<RGBABuffer> previewIn(std::span<const uint8_t> file) {
    const fuzz::MemoryWatch memory;
    auto preview = storedPreview([file](int64_t offset, std::span<uint8_t> target) {
        const auto rest = file.subspan(std::min(checkedSize(offset), file.size()));
        const std::size_t count = std::min(rest.size(), target.size());
        std::copy_n(rest.begin(), count, target.begin());
        return count;
    });
    memory.requireWithin(kMostMemory + kMostFromOneByte * std::ssize(file) - fuzz::kAllowance);
    return preview;
}

/// By the reader of whole manifests; nothing for one that it refuses.
std::optional<std::shared_ptr<RGBABuffer>> previewOfWhole(std::span<const uint8_t> file) {
    using namespace PaintFile;
    const int64_t length = manifestLength(file).value_or(0);
    if (length == 0 || length > std::ssize(file) - kHeaderBytes) return std::nullopt;
    const auto manifest = parseManifest(file.subspan(checkedSize(kHeaderBytes), checkedSize(length)));
    if (!manifest) return std::nullopt;
    if (!manifest->thumbnail) return nullptr;
    const auto png = storedBytes(file.subspan(checkedSize(kHeaderBytes + length)), *manifest->thumbnail);
    return png && matches(*png, manifest->thumbnail->k) ? readSmallPng(*png, kPreviewSide) : nullptr;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::span<const uint8_t> file(data, size);
    const auto preview = previewIn(file);
    if (const auto expected = previewOfWhole(file)) {
        // An entry of thousands of values, which no short file has, is not read.
        require(preview ? *expected != nullptr : !*expected || size > kLongFile);
        require(!preview || preview->fingerprint() == (*expected)->fingerprint());
    }
    if (!preview) return 0;
    const int64_t side = 1 + static_cast<int64_t>(size % 512);
    const QByteArray png = thumbnail(*preview, side);
    const auto again = readSmallPng({reinterpret_cast<const uint8_t*>(png.data()), checkedSize(png.size())},
                                    std::min(side, PaintFile::kPreviewSide));
    require(again && (side < PaintFile::kPreviewSide || again->fingerprint() == preview->fingerprint()));
    return 0;
}
