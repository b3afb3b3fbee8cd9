#include "formats/pictures/JpegWriter.h"

#include "formats/common/SrgbIccProfile.h"
#include "formats/pictures/JpegErrors.h"

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <jpeglib.h>

namespace qirn {

namespace {

// Chroma is stored at half resolution only below this quality: it makes flat colors and thin lines bleed, which there
// is less visible than the blocks, and small files are wanted.
constexpr int kWorstWithFullColor = 80;
// Huffman tables of the picture's own make a file smaller by a tenth, but need all coefficients in memory.
constexpr int64_t kMostPixelsToOptimize = 100'000'000;

/// Hears of every few rows of every pass, of which one lies behind the last row that is given.
struct Monitor {
    jpeg_progress_mgr base;
    const Progress* progress;
    bool isCancelled;
};

/// Leaves the library as its errors do: no exception may pass it.
void tellProgress(j_common_ptr info) {
    auto* const monitor = reinterpret_cast<Monitor*>(info->progress);
    const int64_t pass = std::max(1l, monitor->base.pass_limit);
    try {
        monitor->progress->done(monitor->base.completed_passes * pass + monitor->base.pass_counter,
                                monitor->base.total_passes * pass);
    } catch (const Cancelled&) {
        monitor->isCancelled = true;
    }
    if (monitor->isCancelled) stopAtError(info);
}

/// Has no destructor, because an error leaves by longjmp.
struct Encoder {
    jpeg_compress_struct jpeg;
    ErrorManager errors;
    Monitor monitor;
    unsigned char* file = nullptr; // grown by the library with malloc
    unsigned long fileBytes = 0;
};

bool encode(Encoder& encoder, const RGBABuffer& picture, int quality, int dpi) {
    jpeg_compress_struct& jpeg = encoder.jpeg;
    jpeg.err = jpeg_std_error(&encoder.errors.base);
    encoder.errors.base.error_exit = stopAtError;
    encoder.errors.base.emit_message = ignoreMessage;
    if (setjmp(encoder.errors.stop)) return false;
    jpeg_create_compress(&jpeg);
    jpeg_mem_dest(&jpeg, &encoder.file, &encoder.fileBytes);
    jpeg.image_width = static_cast<JDIMENSION>(picture.width());
    jpeg.image_height = static_cast<JDIMENSION>(picture.height());
    jpeg.input_components = 4;
    jpeg.in_color_space = JCS_EXT_RGBX;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, quality, TRUE);
    jpeg.optimize_coding = picture.width() * picture.height() <= kMostPixelsToOptimize;
    if (quality >= kWorstWithFullColor) {
        for (int c = 0; c < jpeg.num_components; ++c)
            jpeg.comp_info[c].h_samp_factor = jpeg.comp_info[c].v_samp_factor = 1;
    }
    jpeg.density_unit = 1; // dots per inch
    jpeg.X_density = jpeg.Y_density = static_cast<UINT16>(dpi);
    encoder.monitor.base.progress_monitor = tellProgress;
    jpeg.progress = &encoder.monitor.base;
    jpeg_start_compress(&jpeg, TRUE);
    const auto profile = srgbIccProfile();
    jpeg_write_icc_profile(&jpeg, profile.data(), static_cast<unsigned>(profile.size()));
    while (jpeg.next_scanline < jpeg.image_height) {
        // The library does not write to the rows that it is given.
        JSAMPROW row = const_cast<JSAMPROW>(picture.row(jpeg.next_scanline));
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    return true;
}

} // namespace

std::optional<QByteArray> jpegBytes(const RGBABuffer& picture, double quality, double dpi,
                                    const Progress& progress) {
    const double unit =
        std::min(std::max(0.05, quality), 1.0); // in this order, so that NaN becomes the lowest
    const double density = std::min(std::max(1.0, std::round(dpi)), 65535.0);
    Encoder encoder{};
    encoder.monitor.progress = &progress;
    const bool done =
        encode(encoder, picture, static_cast<int>(std::lround(unit * 100)), static_cast<int>(density));
    // The library tells of a buffer that it has taken in place of another only here.
    if (!done && encoder.jpeg.dest) encoder.jpeg.dest->term_destination(&encoder.jpeg);
    std::optional<QByteArray> file;
    if (done)
        file = QByteArray(reinterpret_cast<const char*>(encoder.file),
                          static_cast<qsizetype>(encoder.fileBytes));
    jpeg_destroy_compress(&encoder.jpeg);
    std::free(encoder.file);
    if (encoder.monitor.isCancelled) throw Cancelled();
    return file;
}

} // namespace qirn
