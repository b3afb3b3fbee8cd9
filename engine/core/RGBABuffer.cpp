#include "core/RGBABuffer.h"

#include "core/PaintEngine.h"
#include "platform/CheckedMath.h"
#include "platform/QtImages.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace qirn {

RGBABuffer::RGBABuffer(int64_t width, int64_t height)
    : width_(std::max<int64_t>(width, 1)),
      height_(std::max<int64_t>(height, 1)),
      data_(std::make_unique<uint8_t[]>(checkedSize(checkedMultiply(checkedMultiply(width_, height_), 4)))) {}

std::shared_ptr<RGBABuffer> RGBABuffer::fromImage(const QImage& image) {
    if (image.width() < 1 || image.height() < 1) return nullptr;
    const QImage converted = inPixelFormat(image);
    if (converted.isNull()) return nullptr;
    auto buffer = std::make_shared<RGBABuffer>(image.width(), image.height());
    for (int y = 0; y < converted.height(); ++y) {
        std::memcpy(buffer->row(y), converted.constScanLine(y), checkedSize(buffer->width_) * 4);
    }
    return buffer;
}

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

QImage RGBABuffer::makeImage() const {
    QImage image = imageOver(data(), static_cast<int>(width_), static_cast<int>(height_)).copy();
    if (image.isNull()) throw std::bad_alloc();
    return image;
}

void RGBABuffer::fill(const PaintColor& color) {
    const PixelBytes pixel = color.premultiplied();
    for (int64_t i = 0; i < width_ * height_; ++i) std::memcpy(data() + i * 4, pixel.data(), 4);
}

QImage RGBABuffer::imageOverBytes() {
    return {data(), static_cast<int>(width_), static_cast<int>(height_), width_ * 4,
            PaintEngine::imageFormat};
}

} // namespace qirn
