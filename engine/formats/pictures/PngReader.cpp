#include "formats/pictures/PngReader.h"

#include "formats/common/PictureBuilder.h"
#include "formats/common/PrintDensity.h"
#include "formats/pictures/ExifTags.h"
#include "formats/pictures/PngChunks.h"
#include "platform/CheckedMath.h"

#include <array>
#include <bit>
#include <cmath>
#include <csetjmp>
#include <cstring>
#include <memory>
#include <vector>

#include <QCryptographicHash>
#include <png.h>

namespace qirn {

namespace {

constexpr double kLargestInflation = 1040;             // Deflate turns one byte into at most 1,032.
constexpr png_alloc_size_t kLargestProfile = 16 << 20; // unpacked
constexpr png_alloc_size_t kLargestKept = 4 << 20;     // large printer profiles have 3 MB
constexpr png_alloc_size_t kNoProfile = 0;
constexpr char kProfileChunk[] = "iCCP";
constexpr double kSrgbGamma = 0.45455;
constexpr double kPasses = PNG_INTERLACE_ADAM7_PASSES;
constexpr double kPassesBegun = 0.6; // of the work for an interlaced picture

[[noreturn]] void stopAtError(png_structp png, png_const_charp) {
    png_longjmp(png, 1);
}
void ignoreWarning(png_structp, png_const_charp) {}

/// The state of the library. It is kept outside of the functions that an error leaves by longjmp.
struct Decoder {
    explicit Decoder(const PngChunks& chunks)
        : head(chunks.head),
          rest(chunks.rest),
          png(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, stopAtError, ignoreWarning)),
          info(png ? png_create_info_struct(png) : nullptr) {}
    ~Decoder() { png_destroy_read_struct(&png, &info, nullptr); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    std::span<const uint8_t> head, rest; // what is still to be read
    png_structp png;
    png_infop info;
};

void readBytes(png_structp png, png_bytep target, std::size_t count) {
    auto& decoder = *static_cast<Decoder*>(png_get_io_ptr(png));
    auto& from = decoder.head.empty() ? decoder.rest : decoder.head; // no chunk lies across both
    if (count > from.size()) png_error(png, "the file ends");
    std::memcpy(target, from.data(), count);
    from = from.subspan(count);
}

/// A larger profile is passed over.
bool readHeader(Decoder& decoder, png_alloc_size_t mostProfile = kLargestProfile) {
    png_structp png = decoder.png;
    if (!decoder.info || setjmp(png_jmpbuf(png))) return false;
    if (mostProfile == 0)
        png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER,
                                    reinterpret_cast<png_const_bytep>(kProfileChunk), 1);
    png_set_read_fn(png, &decoder, readBytes);
    png_set_user_limits(png, 0x7FFFFFFF,
                        0x7FFFFFFF); // sizes are checked by this reader, against the length of the file
    png_set_chunk_malloc_max(png, mostProfile == 0 ? kLargestProfile : mostProfile);
    png_set_crc_action(png, PNG_CRC_DEFAULT, PNG_CRC_WARN_DISCARD);
    png_read_info(png, decoder.info);
    return true;
}

/// Gray or RGB of 8 or 16 bits, with alpha where there is any.
bool chooseFormat(Decoder& decoder) {
    png_structp png = decoder.png;
    if (setjmp(png_jmpbuf(png))) return false;
    png_set_expand(png); // palettes, few bits, a transparent color
    if (std::endian::native == std::endian::little) png_set_swap(png);
    png_read_update_info(png, decoder.info);
    return true;
}

/// The next row of the picture, or of a pass of an interlaced one. False where the data ends or makes no sense.
bool readRow(Decoder& decoder, void* row) {
    if (setjmp(png_jmpbuf(decoder.png))) return false;
    png_read_row(decoder.png, static_cast<png_bytep>(row), nullptr);
    return true;
}

/// The rows of an interlaced picture from the top: its seven passes are read in parallel, each by a decoder of its
/// own that has skipped the passes before it, so that only one row of each is held.
class Passes {
public:
    Passes(const PngChunks& chunks, int64_t width, int64_t height, int64_t pixelBytes,
           const Progress& progress)
        : width_(width),
          pixelBytes_(checkedSize(pixelBytes)),
          line_(checkedSize(width * pixelBytes)) {
        int64_t rowsBefore = 0;
        for (int pass = 0; pass < PNG_INTERLACE_ADAM7_PASSES; ++pass) {
            const int64_t rows = PNG_PASS_ROWS(height, pass);
            if (PNG_PASS_COLS(width, pass) == 0 || rows == 0) continue;
            auto decoder = std::make_unique<Decoder>(chunks);
            bool isThere = readHeader(*decoder, kNoProfile) && chooseFormat(*decoder);
            for (int64_t row = 0; isThere && row < rowsBefore; ++row) {
                isThere = readRow(*decoder, line_.data());
                progress.part(pass / kPasses, (pass + 1) / kPasses).done(row, rowsBefore);
            }
            if (isThere) decoders_[checkedSize(pass)] = std::move(decoder);
            rowsBefore += rows;
        }
    }

    /// Pixels that the file lacks are zeros.
    void read(int64_t y, uint8_t* row) {
        std::memset(row, 0, line_.size());
        for (int pass = 0; pass < PNG_INTERLACE_ADAM7_PASSES; ++pass) {
            auto& decoder = decoders_[checkedSize(pass)];
            if (!decoder || !PNG_ROW_IN_INTERLACE_PASS(y, pass)) continue;
            if (!readRow(*decoder, line_.data())) {
                decoder.reset();
                continue;
            }
            const uint8_t* pixel = line_.data();
            for (int64_t x = PNG_PASS_START_COL(pass); x < width_; x += PNG_PASS_COL_OFFSET(pass)) {
                std::memcpy(row + checkedSize(x) * pixelBytes_, pixel, pixelBytes_);
                pixel += pixelBytes_;
            }
        }
    }

private:
    int64_t width_;
    std::size_t pixelBytes_;
    std::vector<uint8_t> line_;
    // null where nothing is left to read
    std::array<std::unique_ptr<Decoder>, PNG_INTERLACE_ADAM7_PASSES> decoders_;
};

PixelLayout layoutOf(const Decoder& decoder) {
    const int type = png_get_color_type(decoder.png, decoder.info);
    return {type & PNG_COLOR_MASK_COLOR ? ColorModel::rgb : ColorModel::gray,
            png_get_bit_depth(decoder.png, decoder.info) == 16 ? SampleType::u16 : SampleType::u8,
            (type & PNG_COLOR_MASK_ALPHA) != 0, false};
}

bool isNear(double a, double b, double distance) {
    return std::abs(a - b) <= distance;
}

ColorProfile profileOf(const Decoder& decoder, const PixelLayout& layout) {
    png_charp name = nullptr;
    png_bytep icc = nullptr;
    png_uint_32 iccBytes = 0;
    int method = 0;
    if (png_get_iCCP(decoder.png, decoder.info, &name, &method, &icc, &iccBytes) != 0) {
        if (auto profile = ColorProfile::embedded({icc, iccBytes}, layout)) return *std::move(profile);
        return ColorProfile::standard(layout);
    }
    // The gamma of sRGB together with its primaries means sRGB in most files.
    double gamma = 0;
    if (png_get_valid(decoder.png, decoder.info, PNG_INFO_sRGB) != 0 ||
        png_get_gAMA(decoder.png, decoder.info, &gamma) == 0 || !(gamma > 0)) {
        return ColorProfile::standard(layout);
    }
    constexpr auto& srgb = ColorProfile::srgbChromaticities;
    ColorProfile::Chromaticities c = srgb;
    png_get_cHRM(decoder.png, decoder.info, &c.whiteX, &c.whiteY, &c.redX, &c.redY, &c.greenX, &c.greenY,
                 &c.blueX, &c.blueY);
    constexpr double kNear = 0.005;
    const bool isSrgb = isNear(c.whiteX, srgb.whiteX, kNear) && isNear(c.whiteY, srgb.whiteY, kNear) &&
                        isNear(c.redX, srgb.redX, kNear) && isNear(c.redY, srgb.redY, kNear) &&
                        isNear(c.greenX, srgb.greenX, kNear) && isNear(c.greenY, srgb.greenY, kNear) &&
                        isNear(c.blueX, srgb.blueX, kNear) && isNear(c.blueY, srgb.blueY, kNear);
    const bool hasSrgbGamma = isNear(gamma, kSrgbGamma, 0.02);
    if (hasSrgbGamma && (isSrgb || layout.model == ColorModel::gray)) return ColorProfile::standard(layout);
    const auto power = hasSrgbGamma ? std::nullopt : std::optional(1 / gamma);
    return ColorProfile::calibrated(c, power, layout).value_or(ColorProfile::standard(layout));
}

Orientation orientationOf(const Decoder& decoder) {
    png_uint_32 bytes = 0;
    png_bytep exif = nullptr;
    if (png_get_eXIf_1(decoder.png, decoder.info, &bytes, &exif) == 0) return {};
    return exifTags({exif, bytes}).orientation;
}

double dpiOf(const Decoder& decoder) {
    png_uint_32 x = 0;
    png_uint_32 y = 0;
    int unit = 0;
    if (png_get_pHYs(decoder.png, decoder.info, &x, &y, &unit) != 0 && unit == PNG_RESOLUTION_METER)
        return dpiFromMeters(x);
    return kUnknownDpi;
}

/// Where no place is given, upright. Colors that are given go before the file's own.
std::optional<DecodedPicture> decoded(std::span<const uint8_t> file, const OnCanvas* place,
                                      const ColorProfile* colors, const Progress& progress) {
    const auto chunks = pngChunks(file);
    if (!chunks) return std::nullopt;
    Decoder decoder(*chunks);
    if (!readHeader(decoder, colors ? kNoProfile : kLargestProfile)) return std::nullopt;
    const int64_t width = png_get_image_width(decoder.png, decoder.info);
    const int64_t height = png_get_image_height(decoder.png, decoder.info);
    const int bits =
        png_get_bit_depth(decoder.png, decoder.info) * png_get_channels(decoder.png, decoder.info);
    if (!isReadableSize(width, height) || !backs(file.size(), kLargestInflation * 8 / bits, width, height))
        return std::nullopt;
    const double dpi = dpiOf(decoder);
    const Orientation orientation = orientationOf(decoder);
    if (!chooseFormat(decoder)) return std::nullopt;
    const PixelLayout layout = layoutOf(decoder);
    const std::size_t rowBytes = png_get_rowbytes(decoder.png, decoder.info);
    if (rowBytes != checkedSize(width * layout.pixelBytes())) return std::nullopt;
    const bool isInterlaced = png_get_interlace_type(decoder.png, decoder.info) != PNG_INTERLACE_NONE;
    const Progress building = isInterlaced ? progress.part(kPassesBegun, 1) : progress;
    if (colors && colors->layout() != layout) return std::nullopt;
    const ColorProfile profile = colors ? *colors : profileOf(decoder, layout);
    PictureBuilder builder = place ? PictureBuilder(*place, width, height, profile, building)
                                   : PictureBuilder(width, height, profile, orientation, building);
    if (!isInterlaced) {
        for (int64_t y = 0; y < height && readRow(decoder, builder.row()); ++y) builder.rowDone();
    } else {
        Passes passes(*chunks, width, height, layout.pixelBytes(), progress.part(0, kPassesBegun));
        for (int64_t y = 0; y < height; ++y) {
            passes.read(y, static_cast<uint8_t*>(builder.row()));
            builder.rowDone();
        }
    }
    auto layer = builder.finish();
    if (!layer) return std::nullopt;
    return DecodedPicture{std::move(layer), dpi};
}

} // namespace

bool isPng(std::span<const uint8_t> file) {
    return file.size() >= 8 && png_sig_cmp(file.data(), 0, 8) == 0;
}

std::optional<DecodedPicture> readPng(std::span<const uint8_t> file, const Progress& progress) {
    return decoded(file, nullptr, nullptr, progress);
}

LayerRef readPngOnto(const OnCanvas& place, std::span<const uint8_t> file, const ColorProfile* colors,
                     const Progress& progress) {
    auto picture = decoded(file, &place, colors, progress);
    return picture ? std::move(picture->layer) : nullptr;
}

std::shared_ptr<const ColorProfile> PngProfiles::of(std::span<const uint8_t> file) {
    const auto chunks = pngChunks(file);
    if (!chunks || chunks->colors.empty()) return nullptr;
    const auto plain = [](const PixelLayout& layout) {
        return std::make_shared<const ColorProfile>(ColorProfile::standard(layout));
    };
    Decoder head(*chunks);
    if (!readHeader(head, kNoProfile) || !chooseFormat(head))
        return plain({}); // its pixels cannot be read either
    const PixelLayout layout = layoutOf(head);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const auto& chunk : chunks->colors) hash.addData({chunk.data(), std::ssize(chunk)});
    const Key key{hash.result(), layout.model, layout.sample, layout.hasAlpha};
    if (const auto known = made_.find(key); known != made_.end()) return known->second;
    Decoder decoder(*chunks);
    if (made_.size() == most_ || !readHeader(decoder, kLargestKept) || !chooseFormat(decoder))
        return plain(layout);
    return made_[key] = std::make_shared<const ColorProfile>(profileOf(decoder, layout));
}

} // namespace qirn
