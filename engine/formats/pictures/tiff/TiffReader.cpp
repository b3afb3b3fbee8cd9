#include "formats/pictures/tiff/TiffReader.h"

#include "formats/common/PictureBuilder.h"
#include "formats/common/PrintDensity.h"
#include "formats/pictures/ExifTags.h"
#include "formats/pictures/tiff/TiffMemory.h"
#include "formats/pictures/tiff/TiffRows.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <tiffio.h>

namespace qirn {

namespace {

/// How many bytes one byte of the file can stand for at most.
double largestInflation(uint16_t compression) {
    switch (compression) {
    case COMPRESSION_NONE:
        return 8; // generous, so that a file cut short still opens
    case COMPRESSION_PACKBITS:
        return 64;
    case COMPRESSION_LZW:
        return 2800;
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE:
        return 1040;
    case COMPRESSION_JPEG:
    case COMPRESSION_OJPEG:
        return 3 * 8 * 64;
    default:
        return 1 << 15; // fax lines, ZSTD, LZMA, WebP
    }
}

double dpiOf(TIFF* tiff) {
    float dots = 0;
    uint16_t unit = RESUNIT_INCH;
    if (TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &dots) != 1) return kUnknownDpi;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
    if (unit == RESUNIT_INCH) return dpiFromInches(static_cast<double>(dots));
    return unit == RESUNIT_CENTIMETER ? dpiFromCentimeters(static_cast<double>(dots)) : kUnknownDpi;
}

Orientation orientationOf(TIFF* tiff) {
    uint16_t orientation = ORIENTATION_TOPLEFT;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_ORIENTATION, &orientation);
    return Orientation(orientation);
}

ColorProfile profileOf(TIFF* tiff, const PixelLayout& layout) {
    uint32_t bytes = 0;
    const void* icc = nullptr;
    if (TIFFGetField(tiff, TIFFTAG_ICCPROFILE, &bytes, &icc) == 1 && icc) {
        if (auto profile = ColorProfile::embedded({static_cast<const uint8_t*>(icc), bytes}, layout))
            return *std::move(profile);
    }
    return ColorProfile::standard(layout);
}

} // namespace

bool isTiff(std::span<const uint8_t> file) {
    if (file.size() < 8) return false;
    const auto startsWith = [&](const char* mark) { return std::memcmp(file.data(), mark, 4) == 0; };
    return startsWith("II*\0") || startsWith("MM\0*") || startsWith("II+\0") || startsWith("MM\0+");
}

std::optional<DecodedPicture> readTiff(std::span<const uint8_t> file, const Progress& progress) {
    const TiffHandle tiff = openTiff(file, tiffWorkingMemory(file.size()));
    if (!tiff) return std::nullopt;
    const TiffShape shape = shapeOf(tiff.get());
    if (!isReadableSize(shape.width, shape.height) || shape.bitsAPixel < 1) return std::nullopt;
    const double inflation = largestInflation(shape.compression);
    if (!backs(file.size(), inflation * 8 / static_cast<double>(shape.bitsAPixel), shape.width, shape.height))
        return std::nullopt;
    const Orientation orientation = orientationOf(tiff.get()); // read before the rows, which may reset it
    PictureBuilder builder(shape.width, shape.height, profileOf(tiff.get(), shape.layout), orientation,
                           progress);
    readTiffRows(file, tiff.get(), shape, builder);
    auto layer = builder.finish();
    if (!layer) return std::nullopt;
    return DecodedPicture{std::move(layer), dpiOf(tiff.get())};
}

} // namespace qirn
