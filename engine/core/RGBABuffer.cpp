#include "core/RGBABuffer.h"

#include "core/PaintEngine.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <cstring>

namespace qirn {

RGBABuffer::RGBABuffer(int64_t width, int64_t height)
    : width_(std::max<int64_t>(width, 1)),
      height_(std::max<int64_t>(height, 1)),
      data_(std::make_unique<uint8_t[]>(checkedSize(checkedMultiply(checkedMultiply(width_, height_), 4)))) {}

PixelBytes RGBABuffer::pixel(int64_t x, int64_t y) const {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) return {};
    PixelBytes out;
    std::memcpy(out.data(), pixels(x, y), 4);
    return out;
}

uint64_t RGBABuffer::fingerprint() const {
    return PaintEngine::fnv(bytes());
}

std::shared_ptr<RGBABuffer> RGBABuffer::copy() const {
    auto twin = std::make_shared<RGBABuffer>(width_, height_);
    std::memcpy(twin->data(), data(), checkedSize(byteCount()));
    return twin;
}

void RGBABuffer::fill(const PaintColor& color) {
    const PixelBytes pixel = color.premultiplied();
    for (int64_t i = 0; i < width_ * height_; ++i) std::memcpy(data() + i * 4, pixel.data(), 4);
}

} // namespace qirn
