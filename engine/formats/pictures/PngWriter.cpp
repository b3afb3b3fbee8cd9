#include "formats/pictures/PngWriter.h"

#include "core/PaintEngine.h"
#include "formats/common/ByteReader.h"
#include "formats/common/StraightPixels.h"
#include "platform/Bytes.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"
#include "platform/QtImages.h"
#include "platform/Require.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>
#include <vector>

#include <zlib.h>

namespace qirn {

namespace {

using Bytes = std::vector<uint8_t>;

constexpr double kMetersPerInch = 0.0254;
// On a painted 4K picture Deflate's usual level 6 takes four times as long for a file 4% smaller, and level 2 three
// quarters of the time for one 3% larger.
constexpr int kLevel = 4;
// Size of independently compressed blocks of filtered bytes: large, because each starts with an empty window.
constexpr int64_t kBandBytes = 1 << 20;

enum class Filter : uint8_t { none, sub, up, average, paeth };
constexpr std::size_t kFilterCount = 5;

bool isOpaque(const PictureRows& picture) {
    std::atomic<bool> isOpaque = true;
    concurrentPerform(picture.height, [&](int64_t y) {
        if (!isOpaque) return;
        Bytes room(checkedSize(picture.width * 4));
        const uint8_t* row = picture.row(y, room.data());
        for (int64_t x = 0; x < picture.width && isOpaque; ++x) {
            if (row[x * 4 + 3] != 255) isOpaque = false;
        }
    });
    return isOpaque;
}

/// The picture's rows as PNG stores them: straight, with three or four bytes a pixel.
class StraightRows {
public:
    StraightRows(const PictureRows& picture, PngAlpha alpha)
        : picture_(picture),
          channels_(alpha == PngAlpha::whereNeeded && isOpaque(picture) ? 3 : 4) {}

    int channels() const { return channels_; }
    int64_t rowBytes() const { return picture_.width * channels_; }

    /// `room` has four bytes for each pixel.
    void read(int64_t y, uint8_t* room, uint8_t* out) const {
        const uint8_t* in = picture_.row(y, room);
        for (int64_t x = 0; x < picture_.width; ++x, in += 4, out += channels_) {
            for (int c = 0; c < 3; ++c) out[c] = in[3] == 255 ? in[c] : straight(in[c], in[3]);
            if (channels_ == 4) out[3] = in[3];
        }
    }

private:
    const PictureRows& picture_;
    int channels_;
};

int paeth(int left, int above, int corner) {
    const int fromLeft = std::abs(above - corner);
    const int fromAbove = std::abs(left - corner);
    const int fromCorner = std::abs(left + above - 2 * corner);
    if (fromLeft <= fromAbove && fromLeft <= fromCorner) return left;
    return fromAbove <= fromCorner ? above : corner;
}

template <Filter filter> int predicted(int left, int above, int corner) {
    switch (filter) {
    case Filter::none:
        return 0;
    case Filter::sub:
        return left;
    case Filter::up:
        return above;
    case Filter::average:
        return (left + above) / 2;
    case Filter::paeth:
        return paeth(left, above, corner);
    }
}

/// A filtered row, and the sum of its bytes' magnitudes, taken as signed numbers.
template <Filter filter>
int64_t applyFilter(const uint8_t* row, const uint8_t* above, int64_t count, int channels, uint8_t* out) {
    int64_t sum = 0;
    for (int64_t i = 0; i < count; ++i) {
        const int left = i < channels ? 0 : row[i - channels];
        const int corner = i < channels ? 0 : above[i - channels];
        const auto rest = static_cast<int8_t>(row[i] - predicted<filter>(left, above[i], corner));
        sum += std::abs(rest);
        out[i] = static_cast<uint8_t>(rest);
    }
    return sum;
}

using ApplyFilter = int64_t (*)(const uint8_t*, const uint8_t*, int64_t, int, uint8_t*);
constexpr std::array<ApplyFilter, kFilterCount> kFilters{
    applyFilter<Filter::none>, applyFilter<Filter::sub>, applyFilter<Filter::up>,
    applyFilter<Filter::average>, applyFilter<Filter::paeth>};

/// The rows of a band, each behind the number of the filter with the smallest sum.
Bytes filtered(const StraightRows& rows, int64_t top, int64_t count) {
    const auto rowBytes = checkedSize(rows.rowBytes());
    Bytes result;
    result.reserve((rowBytes + 1) * checkedSize(count));
    Bytes room(checkedSize(rows.rowBytes() / rows.channels() * 4));
    Bytes above(rowBytes);
    Bytes row(rowBytes);
    Bytes best(rowBytes);
    Bytes trial(rowBytes);
    if (top > 0) rows.read(top - 1, room.data(), above.data());
    for (int64_t y = top; y < top + count; ++y) {
        rows.read(y, room.data(), row.data());
        int64_t least = std::numeric_limits<int64_t>::max();
        std::size_t chosen = 0;
        for (std::size_t f = 0; f < kFilterCount; ++f) {
            const int64_t sum =
                kFilters[f](row.data(), above.data(), rows.rowBytes(), rows.channels(), trial.data());
            if (sum >= least) continue;
            least = sum;
            chosen = f;
            best.swap(trial);
        }
        result.push_back(static_cast<uint8_t>(chosen));
        result.insert(result.end(), best.begin(), best.end());
        above.swap(row);
    }
    return result;
}

struct Band {
    Bytes stream; // of a Deflate stream that ends on a byte, so that the next can follow
    uLong sum = 0;
    int64_t rawBytes = 0;
};

Band compressed(const Bytes& raw, bool isLast) {
    z_stream stream{};
    if (deflateInit2(&stream, kLevel, Z_DEFLATED, -MAX_WBITS, 9, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
    const std::unique_ptr<z_stream, int (*)(z_stream*)> end(&stream, deflateEnd);
    Band band;
    constexpr std::size_t kFlushBytes = 16;
    band.stream.resize(deflateBound(&stream, static_cast<uLong>(raw.size())) + kFlushBytes);
    stream.next_in = const_cast<Bytef*>(raw.data()); // the library only reads
    stream.avail_in = static_cast<uInt>(raw.size());
    stream.next_out = band.stream.data();
    stream.avail_out = static_cast<uInt>(band.stream.size());
    const int state = deflate(&stream, isLast ? Z_FINISH : Z_SYNC_FLUSH);
    require(state == (isLast ? Z_STREAM_END : Z_OK) && stream.avail_in == 0);
    band.stream.resize(band.stream.size() - stream.avail_out);
    band.stream.shrink_to_fit();
    band.sum = adler32(adler32(0, nullptr, 0), raw.data(), static_cast<uInt>(raw.size()));
    band.rawBytes = static_cast<int64_t>(raw.size());
    return band;
}

void addChunk(BEWriter& out, const char* type, std::span<const uint8_t> body) {
    const std::span name(reinterpret_cast<const uint8_t*>(type), 4);
    out.u32(static_cast<uint32_t>(body.size()));
    out.bytes(name);
    out.bytes(body);
    const uLong sum = crc32(crc32(0, nullptr, 0), name.data(), 4);
    // Null would make the library restart the checksum.
    out.u32(
        static_cast<uint32_t>(body.empty() ? sum : crc32(sum, body.data(), static_cast<uInt>(body.size()))));
}

void addHeader(BEWriter& out, const PictureRows& picture, int channels, double dpi) {
    constexpr std::array<uint8_t, 8> signature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    out.bytes(signature);
    BEWriter header;
    header.u32(static_cast<uint32_t>(picture.width));
    header.u32(static_cast<uint32_t>(picture.height));
    header.u8(8);                     // bits a channel
    header.u8(channels == 3 ? 2 : 6); // RGB, with alpha
    header.zeros(3);                  // the only compression, the only filters, not interlaced
    addChunk(out, "IHDR", bytesOf(header.data()));
    constexpr std::array<uint8_t, 1> perceptual{
        0}; // what converts to another space is to keep the impression
    addChunk(out, "sRGB", perceptual);
    const double perMeter = std::round(dpi / kMetersPerInch);
    if (!(perMeter >= 1 && perMeter <= std::numeric_limits<int32_t>::max())) return;
    BEWriter density;
    density.u32(static_cast<uint32_t>(perMeter));
    density.u32(static_cast<uint32_t>(perMeter));
    density.u8(1); // dots a metre
    addChunk(out, "pHYs", bytesOf(density.data()));
}

} // namespace

PictureRows rowsOf(const QImage& picture) {
    require(picture.format() == PaintEngine::imageFormat && !picture.isNull());
    return {picture.width(), picture.height(),
            [&picture](int64_t y, uint8_t*) { return picture.constScanLine(static_cast<int>(y)); }};
}

QByteArray pngBytes(const QImage& picture, double dpi, const Progress& progress) {
    return pngBytes(rowsOf(picture), PngAlpha::whereNeeded, dpi, progress);
}

QByteArray pngBytes(const PictureRows& picture, PngAlpha alpha, double dpi, const Progress& progress) {
    require(picture.width >= 1 && picture.height >= 1);
    const StraightRows rows(picture, alpha);
    const int64_t height = picture.height;
    const int64_t bandRows = std::clamp<int64_t>(kBandBytes / rows.rowBytes(), 1, height);
    std::vector<Band> bands(checkedSize((height + bandRows - 1) / bandRows));
    const auto pack = [&](int64_t i) {
        const int64_t top = i * bandRows;
        const Bytes raw = filtered(rows, top, std::min(bandRows, height - top));
        bands[checkedSize(i)] = compressed(raw, top + bandRows >= height);
    };
    concurrentPerform(static_cast<int64_t>(bands.size()), pack, progress);

    BEWriter out;
    addHeader(out, picture, rows.channels(), dpi);
    uLong sum = adler32(0, nullptr, 0);
    for (std::size_t i = 0; i < bands.size(); ++i) {
        Bytes& stream = bands[i].stream;
        sum = adler32_combine(sum, bands[i].sum, bands[i].rawBytes);
        if (i == 0) stream.insert(stream.begin(), {0x78, 0x01}); // zlib header: Deflate, 32 KB window
        if (i + 1 == bands.size()) {
            for (int shift = 24; shift >= 0; shift -= 8) stream.push_back(static_cast<uint8_t>(sum >> shift));
        }
        addChunk(out, "IDAT", stream);
        stream = {};
    }
    addChunk(out, "IEND", {});
    return out.take();
}

} // namespace qirn
