#include "formats/pictures/FrameRows.h"

#include "platform/CheckedMath.h"

#include <algorithm>
#include <cstring>

namespace qirn {

FrameRows::FrameRows(PictureBuilder& builder, int64_t canvasWidth, int64_t canvasHeight, const IRect& frame,
                     Pixel around)
    : builder_(builder),
      width_(canvasWidth),
      height_(canvasHeight),
      frame_(frame),
      around_(around) {}

void FrameRows::add(const uint8_t* rgba) {
    addBlank(frame_.y);
    if (isFull()) return;
    auto* row = static_cast<Pixel*>(builder_.row());
    const int64_t left = std::clamp<int64_t>(frame_.x, 0, width_);
    const int64_t right = std::clamp<int64_t>(frame_.maxX(), left, width_);
    std::fill(row, row + left, around_);
    std::memcpy(row + left, rgba + (left - frame_.x) * 4, checkedSize((right - left) * 4));
    std::fill(row + right, row + width_, around_);
    builder_.rowDone();
    ++given_;
}

void FrameRows::finish() {
    addBlank(height_);
}

void FrameRows::addBlank(int64_t end) {
    for (; given_ < std::min(end, height_); ++given_) {
        auto* row = static_cast<Pixel*>(builder_.row());
        std::fill(row, row + width_, around_);
        builder_.rowDone();
    }
}

} // namespace qirn
