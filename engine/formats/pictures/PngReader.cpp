#include "formats/pictures/PngReader.h"

#include "formats/pictures/ExifTags.h"
#include "formats/pictures/PictureBuilder.h"
#include "formats/pictures/PrintDensity.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <csetjmp>
#include <cstring>
#include <optional>
#include <vector>

#include <png.h>

namespace qirn {

namespace {

constexpr double kLargestInflation = 1040; // Deflate turns one byte into at most 1,032.
constexpr png_alloc_size_t kLargestChunk = 16 << 20;
constexpr double kSrgbGamma = 0.45455;

[[noreturn]] void stopAtError(png_structp png, png_const_charp) {
    png_longjmp(png, 1);
}
void ignoreWarning(png_structp, png_const_charp) {}

/// The library's state and what is made of the file. It lives outside of every function that an error jumps out of.
struct Decoder {
    explicit Decoder(std::span<const uint8_t> bytes)
        : file(bytes),
          png(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, stopAtError, ignoreWarning)),
          info(png ? png_create_info_struct(png) : nullptr) {}
    ~Decoder() { png_destroy_read_struct(&png, &info, nullptr); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    std::span<const uint8_t> file;
    png_structp png;
    png_infop info;
    std::optional<PictureBuilder> builder;
    std::vector<uint8_t> pixels; // of an interlaced picture, all of them
    std::vector<png_bytep> rows; // of the above
};

void readBytes(png_structp png, png_bytep target, std::size_t count) {
    auto& decoder = *static_cast<Decoder*>(png_get_io_ptr(png));
    if (count > decoder.file.size()) png_error(png, "the file ends");
    std::memcpy(target, decoder.file.data(), count);
    decoder.file = decoder.file.subspan(count);
}

bool readHeader(Decoder& decoder) {
    png_structp png = decoder.png;
    if (setjmp(png_jmpbuf(png))) return false;
    png_set_read_fn(png, &decoder, readBytes);
    png_set_user_limits(png, 0x7FFFFFFF, 0x7FFFFFFF); // the sizes are judged here, together with the file's
    png_set_chunk_malloc_max(png, kLargestChunk);
    png_set_crc_action(png, PNG_CRC_DEFAULT, PNG_CRC_WARN_DISCARD);
    png_read_info(png, decoder.info);
    return true;
}

/// Grey or RGB of 8 or 16 bits, with alpha where there is any.
bool chooseFormat(Decoder& decoder) {
    png_structp png = decoder.png;
    if (setjmp(png_jmpbuf(png))) return false;
    png_set_expand(png); // palettes, few bits, a transparent colour
    if (std::endian::native == std::endian::little) png_set_swap(png);
    png_set_interlace_handling(png);
    png_read_update_info(png, decoder.info);
    return true;
}

void readRows(Decoder& decoder, int64_t height) {
    if (setjmp(png_jmpbuf(decoder.png))) return;
    for (int64_t y = 0; y < height; ++y) {
        png_read_row(decoder.png, static_cast<png_bytep>(decoder.builder->row()), nullptr);
        decoder.builder->rowDone();
    }
}

void readInterlaced(Decoder& decoder) {
    if (setjmp(png_jmpbuf(decoder.png))) return;
    png_read_image(decoder.png, decoder.rows.data());
}

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
    // A gamma that is that of sRGB stands beside its primaries in countless files which mean sRGB.
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

} // namespace

bool isPng(std::span<const uint8_t> file) {
    return file.size() >= 8 && png_sig_cmp(file.data(), 0, 8) == 0;
}

std::optional<DecodedPicture> readPng(std::span<const uint8_t> file) {
    Decoder decoder(file);
    if (!decoder.info || !readHeader(decoder)) return std::nullopt;
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
    if (rowBytes != static_cast<std::size_t>(width * layout.pixelBytes())) return std::nullopt;
    decoder.builder.emplace(width, height, profileOf(decoder, layout), orientation);
    if (png_get_interlace_type(decoder.png, decoder.info) == PNG_INTERLACE_NONE) {
        readRows(decoder, height);
    } else {
        decoder.pixels.resize(rowBytes * static_cast<std::size_t>(height));
        for (int64_t y = 0; y < height; ++y)
            decoder.rows.push_back(decoder.pixels.data() + static_cast<std::size_t>(y) * rowBytes);
        readInterlaced(decoder);
        for (const png_bytep row : decoder.rows) {
            std::memcpy(decoder.builder->row(), row, rowBytes);
            decoder.builder->rowDone();
        }
    }
    auto pixels = decoder.builder->finish();
    if (!pixels) return std::nullopt;
    return DecodedPicture{std::move(pixels), dpi};
}

} // namespace qirn
