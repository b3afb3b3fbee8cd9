#pragma once
#include "core/Layer.h"
#include "formats/common/ColorProfile.h"
#include "platform/Progress.h"
#include "platform/resample/PixelMap.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace qirn {

/// Whether a picture of this size may be opened: neither side below 1 or above 30,000 pixels.
bool isReadableSize(int64_t width, int64_t height);
/// Whether `file` bytes can hold so many pixels when each holds at most `pixelsAByte`, or when the picture is so
/// small that nobody is harmed. Checked before a decoder is given a size that may be false.
bool backs(std::size_t file, double pixelsAByte, int64_t width, int64_t height);

/// How a picture as it is stored has to be turned to stand upright: EXIF's numbers 1 to 8.
class Orientation {
public:
    Orientation() = default;
    explicit Orientation(int64_t number)
        : number_(number >= 1 && number <= 8 ? static_cast<int>(number) : 1) {}

    bool swapsSides() const { return number_ >= 5; }
    /// Which stored pixel each pixel of the upright picture shows.
    PixelMap toStored(int64_t storedWidth, int64_t storedHeight) const;

private:
    int number_ = 1;
};

/// Where a picture's corner lies on a canvas, anywhere; what lies outside of it is cut off.
struct OnCanvas {
    TileGrid canvas;
    int64_t x = 0;
    int64_t y = 0;
};

/// Builds a layer from the rows of a file, which a decoder delivers from the top: converts colors, premultiplies, and
/// rotates the picture upright. Of the file's own pixels it keeps a few rows at a time, which several processors
/// convert.
///
/// Rows are written straight to tiles. A tile is allocated when a second color is found in it; tiles of one color are
/// shared, so that a blank picture takes next to no memory, whatever its size. The progress counts the rows.
class PictureBuilder {
public:
    PictureBuilder(int64_t width, int64_t height, ColorProfile profile, Orientation orientation = {},
                   const Progress& progress = {});
    /// The same as it is stored, for a layer of a canvas.
    PictureBuilder(const OnCanvas& place, int64_t width, int64_t height, ColorProfile profile,
                   const Progress& progress);

    /// Memory for the next stored row in the profile's layout; it counts once `rowDone` is called. Not to be asked for
    /// after the last row.
    void* row();
    void rowDone() { progress_.done(++rowsGiven_, height_); } ///< Throws Cancelled.
    /// The picture as a layer "Background"; rows that were not given are transparent. Null when there was none at all.
    LayerRef finish();

private:
    /// A tile under construction; null as long as all its pixels so far are of one color.
    struct Growing {
        std::optional<PixelBytes> pixel;
        TileRef tile;
    };
    PictureBuilder(int64_t width, int64_t height, ColorProfile profile, const PixelMap& toStored,
                   const TileGrid& grid, const Progress& progress);
    void convertRows();
    void addPart(int64_t slot, const IRect& stored);
    const uint8_t* storedPixel(int64_t x, int64_t y) const;
    std::optional<PixelBytes> flatPixel(const IRect& stored) const;
    void convert(const IRect& stored, uint8_t* rgba) const;
    IRect partOfTile(int64_t slot, const IRect& stored) const;

    int64_t width_;
    int64_t height_;
    ColorProfile profile_;
    PixelMap toStored_;
    PixelMap toUpright_;
    TileGrid grid_; // of the upright picture, or the canvas
    std::vector<Growing> growing_;
    int64_t rowBytes_;
    int64_t rowsAtOnce_;
    std::vector<uint64_t> block_; // rows not converted yet, each aligned for every type of sample
    Progress progress_;
    int64_t rowsGiven_ = 0;
    int64_t rowsDone_ = 0;
};

} // namespace qirn
