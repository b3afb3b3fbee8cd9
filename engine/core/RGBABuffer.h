#pragma once
#include "core/IRect.h"
#include "core/PaintColor.h"
#include "platform/CheckedMath.h"

#include <cstdint>
#include <memory>
#include <span>

#include <QImage>

namespace qirn {

/// A plain working surface in the one pixel format (premultiplied RGBA, top row first, no row padding). It owns
/// its bytes; it is shared by reference, has a single writer and no lock.
class RGBABuffer {
public:
    RGBABuffer(int64_t width, int64_t height); ///< Each side raised to at least 1; fully transparent.
    RGBABuffer(const RGBABuffer&) = delete;
    RGBABuffer& operator=(const RGBABuffer&) = delete;

    /// The image drawn at its own size; null for an image without pixels.
    static std::shared_ptr<RGBABuffer> fromImage(const QImage& image);

    int64_t width() const { return width_; }
    int64_t height() const { return height_; }
    int64_t byteCount() const { return width_ * height_ * 4; }
    const uint8_t* data() const { return data_.get(); }
    uint8_t* data() { return data_.get(); }
    std::span<const uint8_t> bytes() const { return {data_.get(), checkedSize(byteCount())}; }
    const uint8_t* row(int64_t y) const { return data_.get() + y * width_ * 4; }
    uint8_t* row(int64_t y) { return data_.get() + y * width_ * 4; }
    const uint8_t* pixels(int64_t x, int64_t y) const {
        return row(y) + x * 4;
    } ///< From there to the row's end.
    uint8_t* pixels(int64_t x, int64_t y) { return row(y) + x * 4; }

    PixelBytes pixel(int64_t x, int64_t y) const; ///< As stored; four zeros outside.
    uint64_t fingerprint() const;                 ///< FNV-1a over all bytes.
    std::shared_ptr<RGBABuffer> copy() const;
    QImage makeImage() const; ///< An image with its own copy of the bytes.

    void fill(const PaintColor& color);
    /// An image over the buffer's own bytes, to be drawn on with QPainter; it must not outlive the buffer.
    QImage imageOverBytes();

private:
    int64_t width_;
    int64_t height_;
    std::unique_ptr<uint8_t[]> data_;
};

} // namespace qirn
