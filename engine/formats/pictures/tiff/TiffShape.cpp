#include "formats/pictures/tiff/TiffShape.h"

#include <optional>

#include <tiffio.h>

namespace qirn {

namespace {

std::optional<ColorModel> modelOf(TIFF* tiff, uint16_t photometric) {
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
        return ColorModel::gray;
    case PHOTOMETRIC_RGB:
        return ColorModel::rgb;
    case PHOTOMETRIC_SEPARATED: {
        uint16_t inks = INKSET_CMYK;
        TIFFGetFieldDefaulted(tiff, TIFFTAG_INKSET, &inks);
        return inks == INKSET_CMYK ? std::optional(ColorModel::cmyk) : std::nullopt;
    }
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
        return ColorModel::lab;
    default:
        return std::nullopt;
    }
}

std::optional<SampleType> sampleOf(TIFF* tiff, int bits, ColorModel model) {
    uint16_t format = SAMPLEFORMAT_UINT;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &format);
    if (format == SAMPLEFORMAT_IEEEFP) {
        const bool canFloat = bits == 32 && (model == ColorModel::gray || model == ColorModel::rgb);
        return canFloat ? std::optional(SampleType::f32) : std::nullopt;
    }
    // Lab's a and b have signs, which some files say here.
    if (format == SAMPLEFORMAT_INT && model != ColorModel::lab) return std::nullopt;
    if (bits == 8) return SampleType::u8;
    return bits == 16 ? std::optional(SampleType::u16) : std::nullopt;
}

/// The first sample behind the color that says it is alpha. One that says nothing is a mask or a spare ink.
void findAlpha(TIFF* tiff, int colors, TiffShape& shape) {
    uint16_t count = 0;
    const uint16_t* kinds = nullptr;
    if (TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds) != 1) return;
    for (int i = 0; i < count && colors + i < shape.samples; ++i) {
        if (kinds[i] == EXTRASAMPLE_UNSPECIFIED) continue;
        shape.alpha =
            kinds[i] == EXTRASAMPLE_ASSOCALPHA ? TiffShape::Alpha::premultiplied : TiffShape::Alpha::straight;
        shape.alphaSample = colors + i;
        return;
    }
}

/// Gray of 1, 2 or 4 bits, or up to 8 bits that choose from a map.
bool isIndexed(TIFF* tiff, const TiffShape& shape) {
    const bool isFew = shape.bits == 1 || shape.bits == 2 || shape.bits == 4;
    if (shape.samples != 1) return false;
    if (shape.photometric == PHOTOMETRIC_MINISWHITE || shape.photometric == PHOTOMETRIC_MINISBLACK)
        return isFew;
    uint16_t *reds = nullptr, *greens = nullptr, *blues = nullptr;
    return shape.photometric == PHOTOMETRIC_PALETTE && (isFew || shape.bits == 8) &&
           TIFFGetField(tiff, TIFFTAG_COLORMAP, &reds, &greens, &blues) == 1;
}

} // namespace

TiffShape shapeOf(tiff* file) {
    TiffShape shape;
    uint32_t width = 0;
    uint32_t height = 0;
    uint16_t bits = 0;
    uint16_t samples = 0;
    uint16_t planes = PLANARCONFIG_CONTIG;
    TIFFGetField(file, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(file, TIFFTAG_IMAGELENGTH, &height);
    TIFFGetFieldDefaulted(file, TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetFieldDefaulted(file, TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetFieldDefaulted(file, TIFFTAG_PLANARCONFIG, &planes);
    TIFFGetFieldDefaulted(file, TIFFTAG_COMPRESSION, &shape.compression);
    if (TIFFGetField(file, TIFFTAG_PHOTOMETRIC, &shape.photometric) != 1)
        shape.photometric = samples >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
    shape.width = width;
    shape.height = height;
    shape.bits = bits;
    shape.samples = samples;
    shape.bitsAPixel = int64_t{bits} * samples;
    shape.isPlanar = planes == PLANARCONFIG_SEPARATE && samples > 1;
    if (shape.compression == COMPRESSION_JPEG && shape.photometric == PHOTOMETRIC_YCBCR && !shape.isPlanar) {
        TIFFSetField(file, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB); // by the decoder of its lines
        shape.photometric = PHOTOMETRIC_RGB;
    }

    shape.layout = {ColorModel::rgb, SampleType::u8, true, false};
    shape.isIndexed = isIndexed(file, shape);
    if (shape.isIndexed) {
        shape.isAsStored = true;
        const bool isMapped = shape.photometric == PHOTOMETRIC_PALETTE;
        shape.layout = {isMapped ? ColorModel::rgb : ColorModel::gray, SampleType::u8, false, false};
        return shape;
    }
    const auto model = modelOf(file, shape.photometric);
    if (!model) return shape;
    const auto sample = sampleOf(file, bits, *model);
    const PixelLayout stored{*model, sample.value_or(SampleType::u8), false, false};
    if (!sample || samples < stored.colorChannels()) return shape;
    shape.isAsStored = true;
    shape.layout = stored;
    findAlpha(file, stored.colorChannels(), shape);
    shape.layout.hasAlpha = shape.alpha != TiffShape::Alpha::none;
    return shape;
}

} // namespace qirn
