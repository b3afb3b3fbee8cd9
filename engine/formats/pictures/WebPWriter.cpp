#include "formats/pictures/WebPWriter.h"

#include "formats/common/ByteReader.h"
#include "formats/common/SrgbIccProfile.h"
#include "formats/common/StraightPixels.h"
#include "platform/Bytes.h"
#include "platform/Parallel.h"
#include "platform/Require.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <utility>

#include <webp/encode.h>
#include <webp/mux.h>

namespace qirn {

namespace {

// Of 0 to 9. On a painted 4K picture 0 takes a quarter of the time for a file half as large again, 3 twice the time for one
// 10% smaller.
constexpr int kLosslessEffort = 1;
constexpr double kPictureReady = 0.05, kEncoded = 0.98; // of the work

/// What the library's callbacks need; no exception may pass it.
struct Work {
    const Progress& progress;
    QByteArray file;
    bool isCancelled = false;
};

int tellProgress(int percent, const WebPPicture* picture) {
    auto& work = *static_cast<Work*>(picture->user_data);
    try {
        work.progress.done(percent, 100);
    } catch (const Cancelled&) {
        work.isCancelled = true;
    }
    return work.isCancelled ? 0 : 1;
}

int append(const uint8_t* bytes, std::size_t count, const WebPPicture* picture) {
    try {
        static_cast<Work*>(picture->custom_ptr)
            ->file.append(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(count));
        return 1;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

template <auto release> struct Releaser {
    template <class T> void operator()(T* object) const { release(object); }
};

/// EXIF's directory of the resolution alone, as the format has no other place for it.
QByteArray exifOf(double dpi) {
    constexpr uint16_t kXResolution = 282, kYResolution = 283, kUnit = 296;
    constexpr uint16_t kShort = 3, kFraction = 5, kInches = 2;
    constexpr uint32_t kDirectoryAt = 8, kEntries = 3, kFractionsAt = kDirectoryAt + 2 + 12 * kEntries + 4;
    constexpr uint32_t kParts = 1000; // of a dot
    const auto dots = static_cast<uint32_t>(std::lround(std::clamp(dpi, 1.0, 1e5) * kParts));
    BEWriter out;
    out.bytes(QByteArray("MM\0*", 4));
    out.u32(kDirectoryAt);
    out.u16(kEntries);
    const auto entry = [&out](uint16_t tag, uint16_t type, uint32_t value) {
        out.u16(tag);
        out.u16(type);
        out.u32(1); // one number
        out.u32(value);
    };
    entry(kXResolution, kFraction, kFractionsAt);
    entry(kYResolution, kFraction, kFractionsAt + 8);
    entry(kUnit, kShort, uint32_t{kInches} << 16);
    out.u32(0); // no further directory
    for (int direction = 0; direction < 2; ++direction) {
        out.u32(dots % kParts == 0 ? dots / kParts : dots);
        out.u32(dots % kParts == 0 ? 1 : kParts);
    }
    return out.take();
}

/// The picture as the library has it: straight, in numbers of 32 bits.
bool fill(WebPPicture& target, const RGBABuffer& picture) {
    target.use_argb = 1;
    target.width = static_cast<int>(picture.width());
    target.height = static_cast<int>(picture.height());
    if (!WebPPictureAlloc(&target)) return false;
    concurrentPerform(picture.height(), [&](int64_t y) {
        const uint8_t* in = picture.row(y);
        uint32_t* out = target.argb + y * target.argb_stride;
        for (int64_t x = 0; x < picture.width(); ++x, in += 4, ++out) {
            const uint32_t alpha = in[3];
            *out = alpha << 24;
            for (int c = 0; c < 3; ++c)
                *out |= uint32_t{in[3] == 255 ? in[c] : straight(in[c], in[3])} << (16 - 8 * c);
        }
    });
    return true;
}

bool choose(WebPConfig& config, std::optional<double> quality) {
    if (!WebPConfigInit(&config)) return false;
    config.thread_level = 1;
    if (!quality) {
        config.exact = 1;
        return WebPConfigLosslessPreset(&config, kLosslessEffort) != 0;
    }
    // In this order, so that NaN becomes the lowest.
    config.quality = static_cast<float>(std::min(std::max(0.05, *quality), 1.0) * 100);
    config.use_sharp_yuv = 1; // thin colored lines keep their color, though it is stored at half resolution
    return true;
}

WebPData dataOf(std::span<const uint8_t> bytes) {
    return {bytes.data(), bytes.size()};
}

} // namespace

std::optional<QByteArray> webpBytes(std::shared_ptr<const RGBABuffer> source, std::optional<double> quality,
                                    double dpi, const Progress& progress) {
    require(std::max(source->width(), source->height()) <= kLongestWebPSide);
    const Progress encoding = progress.part(kPictureReady, kEncoded);
    Work work{encoding, {}};
    WebPConfig config;
    WebPPicture picture;
    if (!choose(config, quality) || !WebPPictureInit(&picture)) return std::nullopt;
    const std::unique_ptr<WebPPicture, Releaser<WebPPictureFree>> release(&picture);
    if (!fill(picture, *source)) throw std::bad_alloc();
    source.reset();
    picture.progress_hook = tellProgress;
    picture.user_data = &work;
    picture.writer = append;
    picture.custom_ptr = &work;
    const bool isDone = WebPEncode(&config, &picture) != 0;
    if (work.isCancelled) throw Cancelled();
    constexpr WebPEncodingError kNoMemory[] = {
        VP8_ENC_ERROR_OUT_OF_MEMORY, VP8_ENC_ERROR_BITSTREAM_OUT_OF_MEMORY, VP8_ENC_ERROR_BAD_WRITE};
    if (!isDone && std::ranges::find(kNoMemory, picture.error_code) != std::end(kNoMemory))
        throw std::bad_alloc();
    if (!isDone) return std::nullopt;
    WebPPictureFree(&picture);

    const std::unique_ptr<WebPMux, Releaser<WebPMuxDelete>> mux(WebPMuxNew());
    const QByteArray exif = exifOf(dpi);
    const WebPData image = dataOf(bytesOf(work.file)), profile = dataOf(srgbIccProfile()),
                   resolution = dataOf(bytesOf(exif));
    WebPData assembled{};
    const bool isWhole = mux && WebPMuxSetImage(mux.get(), &image, 0) == WEBP_MUX_OK &&
                         WebPMuxSetChunk(mux.get(), "ICCP", &profile, 0) == WEBP_MUX_OK &&
                         WebPMuxSetChunk(mux.get(), "EXIF", &resolution, 0) == WEBP_MUX_OK &&
                         WebPMuxAssemble(mux.get(), &assembled) == WEBP_MUX_OK;
    const std::unique_ptr<WebPData, Releaser<WebPDataClear>> clear(&assembled);
    if (!isWhole) return std::nullopt;
    work.file =
        QByteArray(reinterpret_cast<const char*>(assembled.bytes), static_cast<qsizetype>(assembled.size));
    progress.done(1, 1);
    return std::move(work.file);
}

} // namespace qirn
