#include "formats/pictures/tiff/TiffWriter.h"

#include "formats/common/SrgbIccProfile.h"
#include "formats/pictures/tiff/TiffMemory.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <vector>

#include <tiffio.h>

namespace qirn {

namespace {

constexpr int64_t kStripBytes = 1 << 18;
// LZW makes noise larger, by less than a half; beyond this a file could pass the 4 GB of plain TIFF.
constexpr int64_t kLargestPlainPicture = 2'800'000'000;

bool setTags(TIFF* tiff, const RGBABuffer& picture, double dpi) {
    const auto rows = static_cast<uint32_t>(std::max<int64_t>(1, kStripBytes / (picture.width() * 4)));
    const uint16_t alpha = EXTRASAMPLE_ASSOCALPHA; // premultiplied, as the pixels are
    const auto profile = srgbIccProfile();
    return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(picture.width())) &&
           TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(picture.height())) &&
           TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8) && TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 4) &&
           TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha) &&
           TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) &&
           TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
           TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW) &&
           TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) &&
           TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, rows) &&
           TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<uint32_t>(profile.size()), profile.data()) &&
           TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH) &&
           TIFFSetField(tiff, TIFFTAG_XRESOLUTION, dpi) && TIFFSetField(tiff, TIFFTAG_YRESOLUTION, dpi);
}

} // namespace

std::optional<QByteArray> tiffBytes(const RGBABuffer& picture, double dpi, const Progress& progress) {
    QByteArray file;
    const TiffHandle tiff =
        createTiff(file, picture.byteCount() > kLargestPlainPicture ? IsLarge::yes : IsLarge::no);
    if (!tiff || !setTags(tiff.get(), picture, std::min(std::max(1.0, dpi), 1e6))) return std::nullopt;
    // The predictor works in place.
    std::vector<uint8_t> row(checkedSize(picture.width() * 4));
    for (int64_t y = 0; y < picture.height(); ++y) {
        std::copy_n(picture.row(y), row.size(), row.data());
        if (TIFFWriteScanline(tiff.get(), row.data(), static_cast<uint32_t>(y)) != 1) return std::nullopt;
        progress.done(y + 1, picture.height());
    }
    if (!TIFFFlush(tiff.get())) return std::nullopt;
    return file;
}

} // namespace qirn
