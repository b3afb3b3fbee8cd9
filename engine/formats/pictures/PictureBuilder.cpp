#include "formats/pictures/PictureBuilder.h"

#include "core/PaintEngine.h"
#include "platform/Parallel.h"
#include "platform/Require.h"

#include <algorithm>
#include <cstring>

namespace qirn {

namespace {

constexpr int64_t kBlockBytes = 4 << 20;
constexpr int64_t kMostRowsAtOnce = 64;
constexpr int64_t kHarmlessPixels = 1 << 20;

void premultiply(uint8_t* rgba, int64_t count) {
    for (int64_t i = 0; i < count; ++i, rgba += 4) {
        if (rgba[3] == 255) continue;
        for (int c = 0; c < 3; ++c) rgba[c] = static_cast<uint8_t>((rgba[c] * rgba[3] + 127) / 255);
    }
}

} // namespace

bool isReadableSize(int64_t width, int64_t height) {
    return std::min(width, height) >= 1 && std::max(width, height) <= PaintEngine::maxCanvasSide;
}

bool backs(std::size_t file, double pixelsAByte, int64_t width, int64_t height) {
    const auto pixels = static_cast<double>(width) * static_cast<double>(height);
    return pixels <= kHarmlessPixels || pixels <= static_cast<double>(file) * pixelsAByte;
}

Orientation::Track Orientation::trackOf(int64_t row, int64_t w, int64_t h) const {
    switch (number_) {
    case 2: // mirrored left to right
        return {row * w + w - 1, -1};
    case 3: // half a turn
        return {(h - 1 - row) * w + w - 1, -1};
    case 4: // upside down
        return {(h - 1 - row) * w, 1};
    case 5: // rows as columns
        return {row, h};
    case 6: // a quarter turn clockwise makes it upright
        return {h - 1 - row, h};
    case 7: // rows as columns, half a turn
        return {(w - 1) * h + h - 1 - row, -h};
    case 8: // a quarter turn counterclockwise
        return {(w - 1) * h + row, -h};
    default:
        return {row * w, 1};
    }
}

PictureBuilder::PictureBuilder(int64_t width, int64_t height, ColorProfile profile, Orientation orientation)
    : width_(width),
      height_(height),
      profile_(std::move(profile)),
      orientation_(orientation) {
    require(isReadableSize(width, height));
    rowBytes_ = (width * profile_.layout().pixelBytes() + 7) / 8 * 8;
    rowsAtOnce_ = std::min(std::clamp<int64_t>(kBlockBytes / rowBytes_, 1, kMostRowsAtOnce), height);
    block_.resize(static_cast<std::size_t>(rowsAtOnce_ * rowBytes_ / 8));
    picture_ = orientation.swapsSides() ? std::make_shared<RGBABuffer>(height, width)
                                        : std::make_shared<RGBABuffer>(width, height);
}

void* PictureBuilder::row() {
    require(rowsGiven_ < height_);
    if (rowsGiven_ - rowsDone_ == rowsAtOnce_) convertRows();
    return block_.data() + (rowsGiven_ - rowsDone_) * rowBytes_ / 8;
}

std::shared_ptr<RGBABuffer> PictureBuilder::finish() {
    if (rowsGiven_ == 0) return nullptr;
    convertRows();
    return std::move(picture_);
}

void PictureBuilder::convertRows() {
    concurrentPerform(rowsGiven_ - rowsDone_, [this](int64_t i) {
        const uint64_t* stored = block_.data() + i * rowBytes_ / 8;
        const Orientation::Track track = orientation_.trackOf(rowsDone_ + i, width_, height_);
        uint8_t* const target = picture_->data() + track.first * 4;
        if (track.step == 1) {
            profile_.convert(stored, target, width_);
            premultiply(target, width_);
            return;
        }
        std::vector<uint8_t> row(static_cast<std::size_t>(width_ * 4));
        profile_.convert(stored, row.data(), width_);
        premultiply(row.data(), width_);
        for (int64_t x = 0; x < width_; ++x) std::memcpy(target + x * track.step * 4, row.data() + x * 4, 4);
    });
    rowsDone_ = rowsGiven_;
}

} // namespace qirn
