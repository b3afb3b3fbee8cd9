#include "formats/pictures/JpegReader.h"

#include "formats/common/PictureBuilder.h"
#include "formats/common/PrintDensity.h"
#include "formats/pictures/ExifTags.h"
#include "formats/pictures/JpegErrors.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

#include <jpeglib.h>

namespace qirn {

namespace {

// A block of 8 x 8 pixels takes at least a bit, or, in the rare arithmetic coding, a small part of one.
constexpr double kPixelsAByte = 8 * 64;
constexpr double kPixelsAByteArithmetic = 16 * kPixelsAByte;
// A progressive picture is held as a whole: two bytes a sample, whose blocks of 64 take at least a bit as well.
constexpr long kBytesAByte = 8 * 2 * 64;
constexpr long kBytesAByteArithmetic = 16 * kBytesAByte;
constexpr long kSmallMemory = 32 << 20;
// Each pass over a progressive picture costs the time of a decode, and a few bytes can ask for another one: more are not
// looked at.
constexpr int kMostScans = 200;
constexpr double kScansRead = 0.7; // of the work for a picture that comes in several
constexpr int kExifMarker = JPEG_APP0 + 1;
constexpr int kProfileMarker = JPEG_APP0 + 2;

/// The state of the library and the result. It is kept outside of the functions that an error leaves by longjmp.
struct Decoder {
    Decoder() {
        jpeg.err = jpeg_std_error(&errors.base);
        errors.base.error_exit = stopAtError;
        errors.base.emit_message = ignoreMessage;
    }
    ~Decoder() {
        jpeg_destroy_decompress(&jpeg);
        std::free(profile);
    }

    jpeg_decompress_struct jpeg{};
    ErrorManager errors{};
    unsigned char* profile = nullptr;
    unsigned int profileBytes = 0;
    int scans = 0; // read as a whole, of a picture that comes in several
    std::optional<PictureBuilder> builder;
};

bool readHeader(Decoder& decoder, std::span<const uint8_t> file) {
    if (setjmp(decoder.errors.stop)) return false;
    jpeg_decompress_struct& jpeg = decoder.jpeg;
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, file.data(), file.size());
    jpeg_save_markers(&jpeg, kExifMarker, 0xFFFF);
    jpeg_save_markers(&jpeg, kProfileMarker, 0xFFFF);
    jpeg_read_header(&jpeg, TRUE);
    jpeg_read_icc_profile(&jpeg, &decoder.profile, &decoder.profileBytes);
    return true;
}

/// Stops quietly where the data makes no sense; what was read until then stays.
void readScans(Decoder& decoder, int64_t fileBytes, const Progress& progress) {
    if (setjmp(decoder.errors.stop)) return;
    decoder.jpeg.buffered_image = TRUE;
    jpeg_start_decompress(&decoder.jpeg);
    for (int step = JPEG_SUSPENDED; step != JPEG_REACHED_EOI && decoder.scans < kMostScans;) {
        step = jpeg_consume_input(&decoder.jpeg);
        if (step == JPEG_SCAN_COMPLETED) ++decoder.scans;
        progress.done(fileBytes - static_cast<int64_t>(decoder.jpeg.src->bytes_in_buffer), fileBytes);
    }
}

/// As `readScans`.
void readRows(Decoder& decoder) {
    if (setjmp(decoder.errors.stop)) return;
    jpeg_decompress_struct& jpeg = decoder.jpeg;
    if (jpeg.buffered_image) {
        // Smoothing would look ahead for a scan that did not come.
        jpeg.do_block_smoothing = jpeg_input_complete(&jpeg);
        jpeg_start_output(&jpeg, decoder.scans);
    } else {
        jpeg_start_decompress(&jpeg);
    }
    while (jpeg.output_scanline < jpeg.output_height) {
        auto row = static_cast<JSAMPROW>(decoder.builder->row());
        jpeg_read_scanlines(&jpeg, &row, 1);
        decoder.builder->rowDone();
    }
}

std::optional<ColorModel> modelOf(J_COLOR_SPACE space) {
    switch (space) {
    case JCS_GRAYSCALE:
        return ColorModel::gray;
    case JCS_RGB:
    case JCS_YCbCr:
        return ColorModel::rgb;
    case JCS_CMYK:
    case JCS_YCCK:
        return ColorModel::cmyk;
    default:
        return std::nullopt;
    }
}

ExifTags tagsOf(const jpeg_decompress_struct& jpeg) {
    for (auto marker = jpeg.marker_list; marker; marker = marker->next) {
        if (marker->marker == kExifMarker && marker->data_length > 6 &&
            std::memcmp(marker->data, "Exif\0", 6) == 0)
            return exifTags({marker->data, marker->data_length});
    }
    return {};
}

double dpiOf(const jpeg_decompress_struct& jpeg, const ExifTags& tags) {
    if (jpeg.saw_JFIF_marker && jpeg.X_density > 0) {
        if (jpeg.density_unit == 1) return dpiFromInches(jpeg.X_density);
        if (jpeg.density_unit == 2) return dpiFromCentimeters(jpeg.X_density);
    }
    return tags.dpi.value_or(kUnknownDpi);
}

} // namespace

bool isJpeg(std::span<const uint8_t> file) {
    return file.size() >= 3 && file[0] == 0xFF && file[1] == 0xD8 && file[2] == 0xFF;
}

std::optional<DecodedPicture> readJpeg(std::span<const uint8_t> file, const Progress& progress) {
    Decoder decoder;
    if (!readHeader(decoder, file)) return std::nullopt;
    jpeg_decompress_struct& jpeg = decoder.jpeg;
    const auto model = modelOf(jpeg.jpeg_color_space);
    const int64_t width = jpeg.image_width;
    const int64_t height = jpeg.image_height;
    if (!model || !isReadableSize(width, height)) return std::nullopt;
    if (!backs(file.size(), jpeg.arith_code ? kPixelsAByteArithmetic : kPixelsAByte, width, height))
        return std::nullopt;

    jpeg.out_color_space = *model == ColorModel::gray  ? JCS_GRAYSCALE
                           : *model == ColorModel::rgb ? JCS_RGB
                                                       : JCS_CMYK;
    const PixelLayout layout{*model, SampleType::u8, false,
                             *model == ColorModel::cmyk && jpeg.saw_Adobe_marker};
    auto profile = ColorProfile::embedded({decoder.profile, decoder.profileBytes}, layout);
    const ExifTags tags = tagsOf(jpeg);
    // Beyond it the library stops before it takes anything.
    jpeg.mem->max_memory_to_use = kSmallMemory + (jpeg.arith_code ? kBytesAByteArithmetic : kBytesAByte) *
                                                     static_cast<long>(file.size());
    const bool hasScans = jpeg_has_multiple_scans(&jpeg);
    decoder.builder.emplace(width, height, profile ? *std::move(profile) : ColorProfile::standard(layout),
                            tags.orientation, hasScans ? progress.part(kScansRead, 1) : progress);
    if (hasScans) readScans(decoder, std::ssize(file), progress.part(0, kScansRead));
    if (!hasScans || decoder.scans > 0) readRows(decoder);
    auto layer = decoder.builder->finish();
    if (!layer) return std::nullopt;
    return DecodedPicture{std::move(layer), dpiOf(jpeg, tags)};
}

} // namespace qirn
