#include "formats/pictures/tiff/TiffRows.h"

#include "formats/common/PictureBuilder.h"
#include "formats/pictures/tiff/TiffMemory.h"
#include "formats/pictures/tiff/TiffSamples.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <tiffio.h>

namespace qirn {

namespace {

/// Whether a strip is unpacked line by line, so that its length does not matter.
bool isUnpackedByLines(uint16_t compression) {
    switch (compression) {
    case COMPRESSION_NONE:
    case COMPRESSION_CCITTRLE:
    case COMPRESSION_CCITTRLEW:
    case COMPRESSION_CCITTFAX3:
    case COMPRESSION_CCITTFAX4:
    case COMPRESSION_LZW:
    case COMPRESSION_JPEG:
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE:
    case COMPRESSION_PACKBITS:
    case COMPRESSION_NEXT:
    case COMPRESSION_THUNDERSCAN:
    case COMPRESSION_LZMA:
    case COMPRESSION_ZSTD:
        return true;
    default:
        return false;
    }
}

/// The rows of one plane, or of all samples side by side, one after the other: lines of strips, or rows of tiles.
class PlaneReader {
public:
    /// Borrows the handle, which nobody else reads lines of. `sample` is which one the plane holds.
    PlaneReader(TIFF* tiff, const TiffShape& shape, int sample)
        : tiff_(tiff),
          shape_(shape),
          sample_(static_cast<uint16_t>(sample)) {
        const int64_t bits = int64_t{shape.bits} * (shape.isPlanar ? 1 : shape.samples);
        rowBytes_ = (shape.width * bits + 7) / 8;
        if (!TIFFIsTiled(tiff)) {
            isSound_ = TIFFScanlineSize64(tiff) == static_cast<uint64_t>(rowBytes_);
            if (!isUnpackedByLines(shape.compression)) stripBytes_ = TIFFStripSize64(tiff);
            return;
        }
        TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &tileWidth_);
        TIFFGetField(tiff, TIFFTAG_TILELENGTH, &tileHeight_);
        tileRowBytes_ = (tileWidth_ * bits + 7) / 8;
        // Whole bytes, so that the tiles of a row can be put side by side.
        isSound_ = tileWidth_ > 0 && tileHeight_ > 0 && tileWidth_ * bits % 8 == 0 &&
                   TIFFTileSize64(tiff) == static_cast<uint64_t>(tileRowBytes_) * tileHeight_;
    }

    bool isSound() const { return isSound_; } ///< Or the file contradicts itself.
    /// Bytes that must be held at once.
    uint64_t workingBytes() const {
        const uint64_t band = static_cast<uint64_t>(std::min<int64_t>(tileHeight_, shape_.height)) *
                              static_cast<uint64_t>(rowBytes_);
        return 3 * stripBytes_ + (tileHeight_ > 0 ? band + uint64_t{tileHeight_} * tileRowBytes_ : 0);
    }

    /// Rows are asked for from the first on; null where the data ends. Good until the next call.
    const uint8_t* row(int64_t y) {
        if (tileHeight_ == 0) {
            band_.resize(checkedSize(rowBytes_));
            const bool isRead = TIFFReadScanline(tiff_, band_.data(), static_cast<uint32_t>(y), sample_) == 1;
            return isRead ? band_.data() : nullptr;
        }
        if (y % tileHeight_ == 0 && !readTiles(y)) return nullptr;
        return band_.data() + y % tileHeight_ * rowBytes_;
    }

private:
    bool readTiles(int64_t top) {
        const int64_t rows = std::min<int64_t>(tileHeight_, shape_.height - top);
        band_.resize(checkedSize(std::min<int64_t>(tileHeight_, shape_.height) * rowBytes_));
        tile_.resize(checkedSize(tileHeight_ * tileRowBytes_));
        for (int64_t x = 0, at = 0; x < shape_.width; x += tileWidth_, at += tileRowBytes_) {
            if (TIFFReadTile(tiff_, tile_.data(), static_cast<uint32_t>(x), static_cast<uint32_t>(top), 0,
                             sample_) < 0)
                return false;
            const auto bytes = checkedSize(std::min(tileRowBytes_, rowBytes_ - at));
            for (int64_t row = 0; row < rows; ++row)
                std::memcpy(band_.data() + row * rowBytes_ + at, tile_.data() + row * tileRowBytes_, bytes);
        }
        return true;
    }

    TIFF* tiff_;
    const TiffShape& shape_;
    uint16_t sample_;
    bool isSound_ = false;
    int64_t rowBytes_ = 0;
    uint64_t stripBytes_ = 0; // where a strip is unpacked as a whole
    uint32_t tileWidth_ = 0, tileHeight_ = 0;
    int64_t tileRowBytes_ = 0;
    std::vector<uint8_t> tile_;
    std::vector<uint8_t> band_; // a line, or a row of tiles
};

void readSamples(std::span<const uint8_t> file, TIFF* opened, const TiffShape& shape,
                 PictureBuilder& builder) {
    // Lines of several planes side by side need a handle each: the library unpacks a strip from its beginning.
    std::vector<TiffHandle> handles;
    std::vector<PlaneReader> planes;
    const int colors = shape.layout.colorChannels();
    for (int c = 0; c < colors + (shape.layout.hasAlpha ? 1 : 0); ++c) {
        if (c > 0 && !shape.isPlanar) break;
        TIFF* tiff = opened;
        if (c > 0 && !TIFFIsTiled(opened)) {
            handles.push_back(openTiff(file, tiffWorkingMemory(file.size())));
            tiff = handles.back().get();
            if (!tiff) return;
        }
        planes.emplace_back(tiff, shape, shape.isPlanar && c == colors ? shape.alphaSample : c);
    }
    uint64_t workingBytes = 0;
    for (const PlaneReader& plane : planes) {
        if (!plane.isSound()) return;
        workingBytes += plane.workingBytes();
    }
    if (workingBytes > static_cast<uint64_t>(tiffWorkingMemory(file.size()))) return;
    const TiffSamples samples(opened, shape);
    std::vector<const uint8_t*> rows(planes.size());
    for (int64_t y = 0; y < shape.height; ++y) {
        for (std::size_t p = 0; p < planes.size(); ++p) {
            rows[p] = planes[p].row(y);
            if (!rows[p]) return;
        }
        samples.putRow(rows, builder.row());
        builder.rowDone();
    }
}

/// Pixels of the library: premultiplied, four bytes packed into a number, red lowest.
void putPacked(const uint32_t* pixels, int64_t width, PictureBuilder& builder) {
    auto* out = static_cast<uint8_t*>(builder.row());
    for (int64_t x = 0; x < width; ++x, out += 4) {
        const uint32_t alpha = TIFFGetA(pixels[x]);
        const auto straight = [alpha](uint32_t value) {
            return static_cast<uint8_t>(alpha == 0 ? 0 : std::min((value * 255 + alpha / 2) / alpha, 255u));
        };
        out[0] = straight(TIFFGetR(pixels[x]));
        out[1] = straight(TIFFGetG(pixels[x]));
        out[2] = straight(TIFFGetB(pixels[x]));
        out[3] = static_cast<uint8_t>(alpha);
    }
    builder.rowDone();
}

/// Through the library's conversion, a strip or a row of tiles at a time; the library's rows run from the bottom.
void readPacked(std::span<const uint8_t> file, TIFF* tiff, const TiffShape& shape, PictureBuilder& builder) {
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
    const std::size_t blockPixels = std::size_t{across} * down;
    const std::size_t bandPixels = isTiled ? checkedSize(shape.width) * down : 0;
    // The library holds the block as it is stored, and what some decoders make on the way.
    const uint64_t stored = isTiled ? TIFFTileSize64(tiff) : TIFFStripSize64(tiff);
    if (3 * stored + 4 * (blockPixels + bandPixels) > static_cast<uint64_t>(tiffWorkingMemory(file.size())))
        return;
    std::vector<uint32_t> block(blockPixels);
    std::vector<uint32_t> band(bandPixels);
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

int64_t tiffWorkingMemory(std::size_t fileBytes) {
    return (int64_t{24} << 20) + 96 * static_cast<int64_t>(fileBytes);
}

void readTiffRows(std::span<const uint8_t> file, tiff* opened, const TiffShape& shape,
                  PictureBuilder& builder) {
    if (shape.isAsStored) return readSamples(file, opened, shape, builder);
    char reason[1024];
    // The rows are turned by whoever takes them; the library would do half of it.
    TIFFSetField(opened, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    if (TIFFRGBAImageOK(opened, reason) != 0) readPacked(file, opened, shape, builder);
}

} // namespace qirn
