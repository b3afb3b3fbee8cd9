#include "formats/pictures/WebPReader.h"

#include "formats/common/PictureBuilder.h"
#include "formats/common/PrintDensity.h"
#include "formats/pictures/ExifTags.h"
#include "formats/pictures/FrameRows.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include <webp/decode.h>
#include <webp/demux.h>

namespace qirn {

namespace {

using Bytes = std::span<const uint8_t>;

constexpr double kPixelsAByte = 1 << 16; // a flat picture takes next to nothing
// The decoder drops what it made of the piece in which it meets damage, and begins a header anew with each.
constexpr std::size_t kSmallPiece = 4096;
constexpr std::size_t kMostPieces = 64;
constexpr double kDecoded = 0.8; // of the work

template <auto release> struct Releaser {
    template <class T> void operator()(T* object) const { release(object); }
};
using Demuxer = std::unique_ptr<WebPDemuxer, Releaser<WebPDemuxDelete>>;
using RowDecoder = std::unique_ptr<WebPIDecoder, Releaser<WebPIDelete>>;

/// The body of the first chunk with this name, which lies in the file; empty when there is none.
Bytes chunkOf(const WebPDemuxer* demuxer, const char* name) {
    WebPChunkIterator found{};
    Bytes body;
    if (WebPDemuxGetChunk(demuxer, name, 1, &found)) body = {found.chunk.bytes, found.chunk.size};
    WebPDemuxReleaseChunkIterator(&found);
    return body;
}

/// What the decoder made of a frame. It takes memory for the whole frame at once, but touches what it has rows for.
struct DecodedFrame {
    RowDecoder decoder;
    uint8_t* rgba = nullptr; ///< The decoder's.
    int rows = 0;            ///< That are there, from the top.
    int stride = 0;
};

DecodedFrame decoded(const WebPIterator& frame, const Progress& progress) {
    DecodedFrame result{RowDecoder(WebPINewRGB(MODE_RGBA, nullptr, 0, 0))};
    const std::size_t size = frame.fragment.size;
    const std::size_t piece = std::max(kSmallPiece, size / kMostPieces);
    VP8StatusCode status = VP8_STATUS_SUSPENDED;
    for (std::size_t end = 0; end < size && status == VP8_STATUS_SUSPENDED;) {
        end = std::min(size, end + piece);
        status = WebPIUpdate(result.decoder.get(), frame.fragment.bytes, end);
        progress.done(static_cast<int64_t>(end), static_cast<int64_t>(size));
    }
    int width = 0, height = 0;
    result.rgba = WebPIDecGetRGB(result.decoder.get(), &result.rows, &width, &height, &result.stride);
    if (!result.rgba || width != frame.width || height != frame.height) result.rows = 0;
    return result;
}

} // namespace

bool isWebP(Bytes file) {
    return file.size() >= 12 && std::memcmp(file.data(), "RIFF", 4) == 0 &&
           std::memcmp(file.data() + 8, "WEBP", 4) == 0;
}

std::optional<DecodedPicture> readWebP(Bytes file, const Progress& progress) {
    const WebPData data{file.data(), file.size()};
    WebPDemuxState state = WEBP_DEMUX_PARSING_HEADER;
    const Demuxer demuxer(WebPDemuxPartial(&data, &state));
    WebPIterator frame{}; // holds nothing that has to be given back
    if (!demuxer || !WebPDemuxGetFrame(demuxer.get(), 1, &frame)) return std::nullopt;
    const int64_t width = WebPDemuxGetI(demuxer.get(), WEBP_FF_CANVAS_WIDTH);
    const int64_t height = WebPDemuxGetI(demuxer.get(), WEBP_FF_CANVAS_HEIGHT);
    for (const auto& [w, h] :
         {std::pair(width, height), std::pair<int64_t, int64_t>(frame.width, frame.height)})
        if (!isReadableSize(w, h) || !backs(file.size(), kPixelsAByte, w, h)) return std::nullopt;
    const DecodedFrame picture = decoded(frame, progress.part(0, kDecoded));
    if (picture.rows < 1) return std::nullopt;

    const PixelLayout layout{ColorModel::rgb, SampleType::u8, true, false};
    const auto profile = ColorProfile::embedded(chunkOf(demuxer.get(), "ICCP"), layout);
    const ExifTags tags = exifTags(chunkOf(demuxer.get(), "EXIF"));
    PictureBuilder builder(width, height, profile ? *profile : ColorProfile::standard(layout),
                           tags.orientation, progress.part(kDecoded, 1));
    FrameRows rows(builder, width, height, {frame.x_offset, frame.y_offset, frame.width, frame.height}, {});
    for (int y = 0; y < picture.rows; ++y) {
        uint8_t* const row = picture.rgba + std::ptrdiff_t{y} * picture.stride;
        for (int x = 0; x < frame.width && !frame.has_alpha; ++x) row[4 * x + 3] = 255;
        rows.add(row);
    }
    if (picture.rows == frame.height) rows.finish();
    return DecodedPicture{builder.finish(), tags.dpi.value_or(kUnknownDpi)};
}

} // namespace qirn
