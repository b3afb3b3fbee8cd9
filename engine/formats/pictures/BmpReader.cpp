#include "formats/pictures/BmpReader.h"

#include "core/PaintEngine.h"
#include "formats/common/PictureBuilder.h"
#include "formats/common/PrintDensity.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string_view>

#include <QBuffer>
#include <QImageReader>

namespace qirn {

namespace {

using Bytes = std::span<const uint8_t>;

constexpr double kRunPixelsAByte = 128;

bool holds(Bytes file, std::size_t at, std::string_view text) {
    return at <= file.size() && file.size() - at >= text.size() &&
           std::memcmp(file.data() + at, text.data(), text.size()) == 0;
}

/// Low byte first; 0 beyond the end.
uint32_t littleEndian(Bytes file, std::size_t at, std::size_t bytes) {
    if (at > file.size() || file.size() - at < bytes) return 0;
    uint32_t value = 0;
    for (std::size_t i = bytes; i-- > 0;) value = value << 8 | file[at + i];
    return value;
}

/// Part of a file from an offset on, clipped to the end of the file.
Bytes part(Bytes file, std::size_t at, std::size_t bytes) {
    if (at > file.size()) return {};
    return file.subspan(at, std::min(bytes, file.size() - at));
}

/// What is known before the decoder runs.
struct Header {
    int64_t width = 0;
    int64_t height = 0;
    double pixelsAByte = 1;
    double dpi = kUnknownDpi;
    Bytes icc;
};

bool isBacked(Bytes file, const Header& header) {
    return isReadableSize(header.width, header.height) &&
           backs(file.size(), header.pixelsAByte, header.width, header.height);
}

std::optional<DecodedPicture> decodedByQt(Bytes file, const Header& header, const Progress& progress) {
    if (!isBacked(file, header)) return std::nullopt;
    // Sizes are checked already, so Qt's own limit is set to let every picture through that may be opened.
    constexpr int64_t kSide = PaintEngine::maxCanvasSide;
    static const bool isRaised = (QImageReader::setAllocationLimit((kSide * kSide * 4 >> 20) + 1), true);
    static_cast<void>(isRaised);
    QBuffer buffer;
    buffer.setData(QByteArray::fromRawData(reinterpret_cast<const char*>(file.data()),
                                           static_cast<qsizetype>(file.size())));
    QImageReader reader(&buffer, "bmp");
    reader.setAutoTransform(false);
    const QImage image = reader.read();
    if (image.isNull() || image.width() != header.width || image.height() != header.height)
        return std::nullopt;

    const PixelLayout layout{ColorModel::rgb, SampleType::u8, true, false};
    const auto profile = ColorProfile::embedded(header.icc, layout);
    PictureBuilder builder(header.width, header.height, profile ? *profile : ColorProfile::standard(layout),
                           {}, progress);
    for (int y = 0; y < image.height(); ++y) {
        QImage line(image.constScanLine(y), image.width(), 1, image.bytesPerLine(), image.format());
        line.setColorTable(image.colorTable());
        const QImage rgba = line.convertToFormat(QImage::Format_RGBA8888);
        if (rgba.isNull()) return std::nullopt;
        std::memcpy(builder.row(), rgba.constBits(), checkedSize(image.width()) * 4);
        builder.rowDone();
    }
    return DecodedPicture{builder.finish(), header.dpi};
}

// BMP: a file header of 14 bytes, then one whose length says which kind it is.
constexpr std::size_t kInfoAt = 14;
constexpr uint32_t kOldInfoBytes = 12; // 16-bit sides
constexpr uint32_t kInfoBytes = 40;
constexpr uint32_t kInfo3Bytes = 56;  // has a mask for alpha
constexpr uint32_t kInfo5Bytes = 124; // may embed a profile

Header headerOf(Bytes file) {
    Header header;
    const uint32_t infoBytes = littleEndian(file, kInfoAt, 4);
    const bool isOld = infoBytes == kOldInfoBytes;
    const std::size_t side = isOld ? 2 : 4;
    header.width = static_cast<int32_t>(littleEndian(file, kInfoAt + 4, side));
    header.height = static_cast<int32_t>(littleEndian(file, kInfoAt + 4 + side, side));
    if (header.height < 0) header.height = -header.height; // rows from the top
    const uint32_t bits = littleEndian(file, kInfoAt + (isOld ? 10 : 14), 2);
    const uint32_t compression = infoBytes >= kInfoBytes ? littleEndian(file, kInfoAt + 16, 4) : 0;
    const bool isRuns = compression == 1 || compression == 2;
    header.pixelsAByte = isRuns ? kRunPixelsAByte : 8.0 / std::max(bits, 1u);
    if (infoBytes >= kInfoBytes)
        header.dpi = dpiFromMeters(static_cast<int32_t>(littleEndian(file, kInfoAt + 24, 4)));
    if (infoBytes >= kInfo5Bytes && holds(file, kInfoAt + 56, "DEBM"))
        header.icc =
            part(file, kInfoAt + littleEndian(file, kInfoAt + 112, 4), littleEndian(file, kInfoAt + 116, 4));
    return header;
}

/// The bits that a mask selects, scaled to a byte so that the largest value becomes 255.
uint8_t maskedByte(uint32_t pixel, uint32_t mask) {
    if (mask == 0) return 255;
    const int shift = std::countr_zero(mask);
    const uint32_t most = mask >> shift;
    return static_cast<uint8_t>((((pixel & mask) >> shift) * 255 + most / 2) / most);
}

/// Two bytes a pixel, by masks or 5 bits a channel. Qt is not used here, because it turns white, 31, into 248.
std::optional<DecodedPicture> readWords(Bytes file, const Header& header, const Progress& progress) {
    constexpr uint32_t kMasksAt = kInfoAt + 40, kFifteenBits[] = {0x7C00, 0x03E0, 0x001F, 0};
    const uint32_t infoBytes = littleEndian(file, kInfoAt, 4);
    std::array<uint32_t, 4> masks{};
    for (std::size_t c = 0; c < masks.size(); ++c) {
        masks[c] = kFifteenBits[c];
        const bool isStored = c < 3 || infoBytes >= kInfo3Bytes;
        if (littleEndian(file, kInfoAt + 16, 4) != 0)
            masks[c] = isStored ? littleEndian(file, kMasksAt + 4 * c, 4) : 0;
    }
    const int64_t rowBytes = (header.width * 2 + 3) / 4 * 4;
    const Bytes rows = part(file, littleEndian(file, 10, 4), file.size());
    const PixelLayout layout{ColorModel::rgb, SampleType::u8, true, false};
    const auto profile = ColorProfile::embedded(header.icc, layout);
    const bool isFromTop = static_cast<int32_t>(littleEndian(file, kInfoAt + 8, 4)) < 0;
    constexpr int kUpsideDown = 4;
    PictureBuilder builder(header.width, header.height, profile ? *profile : ColorProfile::standard(layout),
                           Orientation(isFromTop ? 1 : kUpsideDown), progress);
    for (int64_t y = 0; y < header.height && (y + 1) * rowBytes <= std::ssize(rows); ++y) {
        auto* out = static_cast<uint8_t*>(builder.row());
        for (int64_t x = 0; x < header.width; ++x) {
            const uint32_t pixel = littleEndian(rows, checkedSize(y * rowBytes + 2 * x), 2);
            for (const uint32_t mask : masks) *out++ = maskedByte(pixel, mask);
        }
        builder.rowDone();
    }
    auto layer = builder.finish();
    if (!layer) return std::nullopt;
    return DecodedPicture{std::move(layer), header.dpi};
}

} // namespace

bool isBmp(Bytes file) {
    return holds(file, 0, "BM");
}

std::optional<DecodedPicture> readBmp(Bytes file, const Progress& progress) {
    const Header header = headerOf(file);
    const uint32_t infoBytes = littleEndian(file, kInfoAt, 4),
                   compression = littleEndian(file, kInfoAt + 16, 4);
    const bool isOfWords = infoBytes >= kInfoBytes && littleEndian(file, kInfoAt + 14, 2) == 16 &&
                           (compression == 0 || compression == 3);
    if (!isOfWords) return decodedByQt(file, header, progress);
    return isBacked(file, header) ? readWords(file, header, progress) : std::nullopt;
}

} // namespace qirn
