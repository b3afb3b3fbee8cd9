#pragma once
#include "core/IRect.h"
#include "formats/common/PictureBuilder.h"

#include <array>
#include <cstdint>

namespace qirn {

/// Puts the rows of a frame, which lies anywhere on the canvas of an animation, into the picture of that canvas. Pixels are
/// four bytes, straight RGBA, as is the builder's layout.
class FrameRows {
public:
    using Pixel = std::array<uint8_t, 4>;

    /// `around` is what the canvas shows beside the frame. The builder is borrowed; it has been given no row.
    FrameRows(PictureBuilder& builder, int64_t canvasWidth, int64_t canvasHeight, const IRect& frame,
              Pixel around);

    /// The frame's next row, of its whole width; what lies beside the canvas is cut off.
    void add(const uint8_t* rgba);
    /// The frame is complete: fills in the rows below it.
    void finish();
    /// Whether all rows of the canvas have been given.
    bool isFull() const { return given_ == height_; }

private:
    void addBlank(int64_t end);

    PictureBuilder& builder_;
    int64_t width_;
    int64_t height_;
    IRect frame_;
    Pixel around_;
    int64_t given_ = 0; // rows of the canvas
};

} // namespace qirn
