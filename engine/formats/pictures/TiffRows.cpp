#include "formats/pictures/TiffRows.h"

#include "formats/pictures/PictureBuilder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <vector>

#include <tiffio.h>

namespace qirn {

namespace {

using Bytes = std::vector<uint8_t>;

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

/// The first sample behind the colour that says it is alpha. One that says nothing is a mask or a spare ink.
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

template <class T> T largest() {
    if constexpr (sizeof(T) == 4)
        return 1;
    else
        return static_cast<T>(-1);
}

template <class T> T straight(T premultiplied, T alpha) {
    if (!(alpha > 0)) return 0;
    if constexpr (sizeof(T) == 4) {
        return premultiplied / alpha;
    } else {
        const uint64_t value = (uint64_t{premultiplied} * largest<T>() + alpha / 2u) / alpha;
        return static_cast<T>(std::min<uint64_t>(value, largest<T>()));
    }
}

/// Lab as profiles code it. `channel` 0 is L; TIFF's own a and b have signs.
uint8_t profileLab(uint8_t value, uint16_t photometric, int channel) {
    return photometric == PHOTOMETRIC_CIELAB && channel > 0 ? static_cast<uint8_t>(value ^ 0x80) : value;
}
uint16_t profileLab(uint16_t value, uint16_t photometric, int channel) {
    if (photometric == PHOTOMETRIC_CIELAB) {
        if (channel == 0) return value;
        value ^= 0x8000;
    }
    // 256 steps for one of a or b, of which profiles make 257; L of 65,280 is 100.
    return static_cast<uint16_t>(std::min(value * 257u / 256u, 65535u));
}
float profileLab(float value, uint16_t, int) {
    return value;
}

/// One row's samples: those of channel c begin at `channels[c]`, `step` samples apart.
template <class T>
void putSamples(const TiffShape& shape, const std::array<const T*, 5>& channels, int step, T* out) {
    const int colors = shape.layout.colorChannels();
    for (int64_t x = 0; x < shape.width; ++x) {
        const auto at = static_cast<std::size_t>(x * step);
        const T alpha = shape.layout.hasAlpha ? channels[static_cast<std::size_t>(colors)][at] : largest<T>();
        for (int c = 0; c < colors; ++c) {
            T value = channels[static_cast<std::size_t>(c)][at];
            if (shape.alpha == TiffShape::Alpha::premultiplied) value = straight(value, alpha);
            if (shape.photometric == PHOTOMETRIC_MINISWHITE) value = static_cast<T>(largest<T>() - value);
            if (shape.layout.model == ColorModel::lab) value = profileLab(value, shape.photometric, c);
            *out++ = value;
        }
        if (shape.layout.hasAlpha) *out++ = alpha;
    }
}

template <class T>
void putRow(const TiffShape& shape, const std::vector<Bytes>& planes, int64_t row, int64_t rowBytes,
            PictureBuilder& builder) {
    std::array<const T*, 5> channels{};
    const int colors = shape.layout.colorChannels();
    for (int c = 0; c < colors + (shape.layout.hasAlpha ? 1 : 0); ++c) {
        const int sample = c < colors ? c : shape.alphaSample;
        const Bytes& plane = planes[shape.isPlanar ? static_cast<std::size_t>(c) : 0];
        // Vectors begin where any sample may lie, and a row is a whole number of samples.
        channels[static_cast<std::size_t>(c)] =
            reinterpret_cast<const T*>(plane.data() + row * rowBytes) + (shape.isPlanar ? 0 : sample);
    }
    putSamples(shape, channels, shape.isPlanar ? 1 : shape.samples, static_cast<T*>(builder.row()));
    builder.rowDone();
}

/// Reads rows in bands as the file holds them: lines, strips of one plane each, or rows of tiles.
class BandReader {
public:
    BandReader(TIFF* tiff, const TiffShape& shape) : tiff_(tiff), shape_(shape) {
        const int colors = shape.layout.colorChannels();
        if (shape.isPlanar) {
            for (int c = 0; c < colors; ++c) planeSamples_.push_back(c);
            if (shape.layout.hasAlpha) planeSamples_.push_back(shape.alphaSample);
        } else {
            planeSamples_.push_back(0);
        }
        pixelBytes_ = shape.bits / 8 * (shape.isPlanar ? 1 : shape.samples);
        rowBytes_ = shape.width * pixelBytes_;
        bandRows_ = rowsOfABand();
    }

    void readAll(PictureBuilder& builder) {
        if (bandRows_ < 1) return;
        planes_.resize(planeSamples_.size());
        for (Bytes& plane : planes_) plane.resize(static_cast<std::size_t>(bandRows_ * rowBytes_));
        for (int64_t top = 0; top < shape_.height; top += bandRows_) {
            const int64_t rows = std::min(bandRows_, shape_.height - top);
            for (std::size_t p = 0; p < planes_.size(); ++p) {
                if (!readBand(top, rows, planeSamples_[p], planes_[p])) return;
            }
            for (int64_t row = 0; row < rows; ++row) {
                switch (shape_.layout.sample) {
                case SampleType::u8:
                    putRow<uint8_t>(shape_, planes_, row, rowBytes_, builder);
                    break;
                case SampleType::u16:
                    putRow<uint16_t>(shape_, planes_, row, rowBytes_, builder);
                    break;
                case SampleType::f32:
                    putRow<float>(shape_, planes_, row, rowBytes_, builder);
                    break;
                }
            }
        }
    }

private:
    /// 0 when the file contradicts itself.
    int64_t rowsOfABand() {
        if (TIFFIsTiled(tiff_)) {
            uint32_t width = 0;
            uint32_t height = 0;
            TIFFGetField(tiff_, TIFFTAG_TILEWIDTH, &width);
            TIFFGetField(tiff_, TIFFTAG_TILELENGTH, &height);
            tileWidth_ = width;
            const uint64_t bytes = TIFFTileSize64(tiff_);
            // A tile may reach beyond the picture, but not without measure.
            const auto most = static_cast<uint64_t>(shape_.height * rowBytes_ + kSpareTileBytes);
            if (bytes == 0 || bytes > most ||
                bytes != uint64_t{width} * height * static_cast<uint64_t>(pixelBytes_))
                return 0;
            tile_.resize(static_cast<std::size_t>(bytes));
            return std::min<int64_t>(height, shape_.height);
        }
        if (TIFFScanlineSize64(tiff_) != static_cast<uint64_t>(rowBytes_)) return 0;
        if (!shape_.isPlanar) return 1;
        uint32_t rows = 0;
        TIFFGetFieldDefaulted(tiff_, TIFFTAG_ROWSPERSTRIP, &rows);
        return std::min<int64_t>(rows, shape_.height);
    }

    bool readBand(int64_t top, int64_t rows, int sample, Bytes& plane) {
        const auto y = static_cast<uint32_t>(top);
        const auto plane16 = static_cast<uint16_t>(sample);
        if (TIFFIsTiled(tiff_)) return readTiles(y, rows, plane16, plane);
        if (!shape_.isPlanar) return TIFFReadScanline(tiff_, plane.data(), y) == 1;
        return TIFFReadEncodedStrip(tiff_, TIFFComputeStrip(tiff_, y, plane16), plane.data(),
                                    rows * rowBytes_) >= 0;
    }

    bool readTiles(uint32_t top, int64_t rows, uint16_t sample, Bytes& plane) {
        for (int64_t left = 0; left < shape_.width; left += tileWidth_) {
            if (TIFFReadTile(tiff_, tile_.data(), static_cast<uint32_t>(left), top, 0, sample) < 0)
                return false;
            const int64_t bytes = std::min(tileWidth_, shape_.width - left) * pixelBytes_;
            for (int64_t row = 0; row < rows; ++row) {
                std::memcpy(plane.data() + row * rowBytes_ + left * pixelBytes_,
                            tile_.data() + row * tileWidth_ * pixelBytes_, static_cast<std::size_t>(bytes));
            }
        }
        return true;
    }

    static constexpr int64_t kSpareTileBytes = 16 << 20;

    TIFF* tiff_;
    const TiffShape& shape_;
    std::vector<int> planeSamples_; // which sample each plane holds that is read
    std::vector<Bytes> planes_;
    Bytes tile_;
    int64_t tileWidth_ = 0;
    int64_t pixelBytes_ = 0; // in one plane
    int64_t rowBytes_ = 0;
    int64_t bandRows_ = 0;
};

/// What the library gives is premultiplied, four bytes packed in a number, red lowest.
void putPacked(const uint32_t* pixels, int64_t width, PictureBuilder& builder) {
    auto* out = static_cast<uint8_t*>(builder.row());
    for (int64_t x = 0; x < width; ++x, out += 4) {
        const auto alpha = static_cast<uint8_t>(TIFFGetA(pixels[x]));
        out[0] = straight(static_cast<uint8_t>(TIFFGetR(pixels[x])), alpha);
        out[1] = straight(static_cast<uint8_t>(TIFFGetG(pixels[x])), alpha);
        out[2] = straight(static_cast<uint8_t>(TIFFGetB(pixels[x])), alpha);
        out[3] = alpha;
    }
    builder.rowDone();
}

/// Through the library's conversion, a strip or a row of tiles at a time; the library's rows run from the bottom.
void readPacked(TIFF* tiff, const TiffShape& shape, PictureBuilder& builder) {
    const bool isTiled = TIFFIsTiled(tiff) != 0;
    uint32_t across = static_cast<uint32_t>(shape.width);
    uint32_t down = 0;
    if (isTiled) {
        TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &across);
        TIFFGetField(tiff, TIFFTAG_TILELENGTH, &down);
    } else {
        TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &down);
        down = std::min(down, static_cast<uint32_t>(shape.height));
    }
    // A side of a tile is a multiple of 16, so it may be larger than the picture, but by that only.
    const auto tooLarge = [](uint32_t side, int64_t picture) {
        return side > std::max<int64_t>(picture + 15, 1024);
    };
    if (across == 0 || down == 0 || tooLarge(across, shape.width) || tooLarge(down, shape.height)) return;
    std::vector<uint32_t> block(std::size_t{across} * down);
    std::vector<uint32_t> band(isTiled ? static_cast<std::size_t>(shape.width) * down : 0);
    for (int64_t top = 0; top < shape.height; top += down) {
        const int64_t rows = std::min<int64_t>(down, shape.height - top);
        const auto y = static_cast<uint32_t>(top);
        if (!isTiled && TIFFReadRGBAStripExt(tiff, y, block.data(), 1) == 0) return;
        for (int64_t left = 0; isTiled && left < shape.width; left += across) {
            if (TIFFReadRGBATileExt(tiff, static_cast<uint32_t>(left), y, block.data(), 1) == 0) return;
            const int64_t width = std::min<int64_t>(across, shape.width - left);
            for (int64_t row = 0; row < rows; ++row)
                std::copy_n(block.data() + (down - 1 - row) * across, width,
                            band.data() + row * shape.width + left);
        }
        for (int64_t row = 0; row < rows; ++row)
            putPacked(isTiled ? band.data() + row * shape.width : block.data() + (rows - 1 - row) * across,
                      shape.width, builder);
    }
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

    shape.layout = {ColorModel::rgb, SampleType::u8, true, false};
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

void readTiffRows(tiff* file, const TiffShape& shape, PictureBuilder& builder) {
    if (shape.isAsStored) {
        BandReader(file, shape).readAll(builder);
        return;
    }
    char reason[1024];
    // The rows are turned by whoever takes them; the library would do half of it.
    TIFFSetField(file, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    if (TIFFRGBAImageOK(file, reason) != 0) readPacked(file, shape, builder);
}

} // namespace qirn
