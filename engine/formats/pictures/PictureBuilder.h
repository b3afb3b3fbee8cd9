#pragma once
#include "core/RGBABuffer.h"
#include "formats/pictures/ColorProfile.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace qirn {

/// Whether a picture of this size may be opened: neither side below 1 or above 30,000 pixels.
bool isReadableSize(int64_t width, int64_t height);
/// Whether `file` bytes can hold so many pixels when each holds at most `pixelsAByte`, or when the picture is so small
/// that nobody is harmed. Asked before a decoder sees a size that may be a lie.
bool backs(std::size_t file, double pixelsAByte, int64_t width, int64_t height);

/// How a picture as it is stored has to be turned to stand upright: EXIF's numbers 1 to 8.
class Orientation {
public:
    Orientation() = default;
    explicit Orientation(int64_t number)
        : number_(number >= 1 && number <= 8 ? static_cast<int>(number) : 1) {}

    bool swapsSides() const { return number_ >= 5; }
    /// Where a stored row lies in the upright picture: its first pixel, and the way from each to the next, in pixels.
    struct Track {
        int64_t first, step;
    };
    Track trackOf(int64_t row, int64_t storedWidth, int64_t storedHeight) const;

private:
    int number_ = 1;
};

/// Makes a picture of a file's rows, as a decoder gives them from the top: converts the colours, multiplies by alpha,
/// turns it upright. It keeps a few rows of the file's own pixels at a time, so that several processors convert.
class PictureBuilder {
public:
    PictureBuilder(int64_t width, int64_t height, ColorProfile profile, Orientation orientation = {});

    /// Memory for the next stored row in the profile's layout; it counts once `rowDone` is called. Not to be asked for
    /// after the last row.
    void* row();
    void rowDone() { ++rowsGiven_; }
    /// The picture; rows that were not given are transparent. Null when there was none at all.
    std::shared_ptr<RGBABuffer> finish();

private:
    void convertRows();

    int64_t width_;
    int64_t height_;
    ColorProfile profile_;
    Orientation orientation_;
    std::shared_ptr<RGBABuffer> picture_;
    int64_t rowBytes_;
    int64_t rowsAtOnce_;
    std::vector<uint64_t> block_; // rows in wait, each beginning where every kind of sample may lie
    int64_t rowsGiven_ = 0;
    int64_t rowsDone_ = 0;
};

} // namespace qirn
