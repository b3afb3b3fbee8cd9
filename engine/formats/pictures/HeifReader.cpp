#include "formats/pictures/HeifReader.h"

#include "core/PaintEngine.h"
#include "formats/common/PictureBuilder.h"
#include "formats/common/PrintDensity.h"
#include "formats/pictures/ExifTags.h"
#include "formats/pictures/HevcSize.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include <libheif/heif.h>

namespace qirn {

namespace {

// A flat block of 64 x 64 pixels takes about a byte in files that were measured; hostile ones get some more.
constexpr double kPixelsAByte = 1 << 15;
// Pixels on a side of the largest block that pictures are coded in.
constexpr int64_t kCodedBlock = 64;
constexpr double kDecoded = 0.8; // of the work, at which the library cannot be stopped

template <auto release> struct Releaser {
    template <class T> void operator()(T* object) const { release(object); }
};
using Context = std::unique_ptr<heif_context, Releaser<heif_context_free>>;
using Handle = std::unique_ptr<heif_image_handle, Releaser<heif_image_handle_release>>;
using Image = std::unique_ptr<heif_image, Releaser<heif_image_release>>;
using CodedProfile = std::unique_ptr<heif_color_profile_nclx, Releaser<heif_nclx_color_profile_free>>;

bool isFine(const heif_error& error) {
    return error.code == heif_error_Ok;
}

/// From an embedded profile, or from numbers that name a standard color space. HDR pictures are shown as they are
/// coded.
ColorProfile profileOf(const heif_image_handle* handle, const PixelLayout& layout) {
    std::vector<uint8_t> icc(heif_image_handle_get_raw_color_profile_size(handle));
    if (!icc.empty() && isFine(heif_image_handle_get_raw_color_profile(handle, icc.data()))) {
        if (auto profile = ColorProfile::embedded(icc, layout)) return *std::move(profile);
    }
    heif_color_profile_nclx* found = nullptr;
    const bool isCoded = isFine(heif_image_handle_get_nclx_color_profile(handle, &found));
    const CodedProfile coded(found);
    const bool hasOtherPrimaries = isCoded && coded && coded->version >= 1 &&
                                   coded->color_primaries != heif_color_primaries_unspecified &&
                                   coded->color_primaries != heif_color_primaries_ITU_R_BT_709_5 &&
                                   coded->color_primary_white_y > 0;
    if (!hasOtherPrimaries) return ColorProfile::standard(layout);
    const ColorProfile::Chromaticities places{coded->color_primary_white_x, coded->color_primary_white_y,
                                              coded->color_primary_red_x,   coded->color_primary_red_y,
                                              coded->color_primary_green_x, coded->color_primary_green_y,
                                              coded->color_primary_blue_x,  coded->color_primary_blue_y};
    return ColorProfile::calibrated(places, std::nullopt, layout).value_or(ColorProfile::standard(layout));
}

double dpiOf(const heif_image_handle* handle) {
    heif_item_id id = 0;
    if (heif_image_handle_get_list_of_metadata_block_IDs(handle, "Exif", &id, 1) < 1) return kUnknownDpi;
    std::vector<uint8_t> block(heif_image_handle_get_metadata_size(handle, id));
    if (block.size() < 4 || !isFine(heif_image_handle_get_metadata(handle, id, block.data())))
        return kUnknownDpi;
    // Four bytes say where behind them the TIFF begins.
    const std::size_t start = 4 + (std::size_t{block[0]} << 24 | std::size_t{block[1]} << 16 |
                                   std::size_t{block[2]} << 8 | block[3]);
    if (start > block.size()) return kUnknownDpi;
    return exifTags(std::span<const uint8_t>(block).subspan(start)).dpi.value_or(kUnknownDpi);
}

/// Ten or twelve bits as sixteen.
void widen(uint16_t* samples, int64_t count, int bits) {
    const uint32_t largest = (1u << bits) - 1;
    for (int64_t i = 0; i < count; ++i)
        samples[i] =
            static_cast<uint16_t>((std::min<uint32_t>(samples[i], largest) * 65535u + largest / 2) / largest);
}

LayerRef converted(const heif_image* image, const heif_image_handle* handle, SampleType sample,
                   const Progress& progress) {
    const int64_t width = heif_image_get_width(image, heif_channel_interleaved);
    const int64_t height = heif_image_get_height(image, heif_channel_interleaved);
    int stride = 0;
    const uint8_t* plane = heif_image_get_plane_readonly(image, heif_channel_interleaved, &stride);
    const PixelLayout layout{ColorModel::rgb, sample, true, false};
    if (!isReadableSize(width, height) || !plane || stride < width * layout.pixelBytes()) return nullptr;
    const int bits = heif_image_get_bits_per_pixel_range(image, heif_channel_interleaved);
    PictureBuilder builder(width, height, profileOf(handle, layout), {}, // the decoder has already rotated it
                           progress);
    for (int64_t y = 0; y < height; ++y) {
        void* row = builder.row();
        std::memcpy(row, plane + y * stride, checkedSize(width * layout.pixelBytes()));
        if (sample == SampleType::u16 && bits < 16) widen(static_cast<uint16_t*>(row), width * 4, bits);
        builder.rowDone();
    }
    return builder.finish();
}

} // namespace

bool isHeif(std::span<const uint8_t> file) {
    return file.size() >= 12 && std::memcmp(file.data() + 4, "ftyp", 4) == 0;
}

std::optional<DecodedPicture> readHeif(std::span<const uint8_t> file, const Progress& progress) {
    const Context context(heif_context_alloc());
    if (!context) return std::nullopt;
    // One more, because the library refuses a side equal to its limit.
    heif_context_set_maximum_image_size_limit(context.get(), PaintEngine::maxCanvasSide + 1);
    if (!isFine(heif_context_read_from_memory_without_copy(context.get(), file.data(), file.size(), nullptr)))
        return std::nullopt;
    heif_image_handle* found = nullptr;
    const bool hasPicture = isFine(heif_context_get_primary_image_handle(context.get(), &found));
    const Handle handle(found);
    if (!hasPicture) return std::nullopt;
    const int64_t codedWidth = heif_image_handle_get_ispe_width(handle.get());
    const int64_t codedHeight = heif_image_handle_get_ispe_height(handle.get());
    if (!isReadableSize(codedWidth, codedHeight) ||
        !backs(file.size(), kPixelsAByte, codedWidth, codedHeight))
        return std::nullopt;
    const HevcSize toDecode = largestHevcSize(file);
    if (!backs(file.size(), kPixelsAByte, toDecode.width, toDecode.height)) return std::nullopt;
    // A grid of tiles has a size of its own. Newer libraries hold the limit against whole coded blocks.
    const int64_t side = std::max(codedWidth, codedHeight);
    heif_context_set_maximum_image_size_limit(
        context.get(), static_cast<int>((side + kCodedBlock - 1) / kCodedBlock * kCodedBlock + 1));

    const bool isDeep = heif_image_handle_get_luma_bits_per_pixel(handle.get()) > 8;
    heif_image* decoded = nullptr;
    const bool isDecoded = isFine(heif_decode_image(
        handle.get(), &decoded, heif_colorspace_RGB,
        isDeep ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RGBA, nullptr));
    const Image image(decoded);
    if (!isDecoded) return std::nullopt;
    auto layer = converted(image.get(), handle.get(), isDeep ? SampleType::u16 : SampleType::u8,
                           progress.part(kDecoded, 1));
    if (!layer) return std::nullopt;
    return DecodedPicture{std::move(layer), dpiOf(handle.get())};
}

} // namespace qirn
