// A buffer's ways from and to images, apart from the rest of it: a program that needs none does without Qt Gui.
#include "core/PaintEngine.h"
#include "core/RGBABuffer.h"
#include "platform/QtImages.h"

#include <cstring>
#include <new>

namespace qirn {

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

QImage RGBABuffer::makeImage() const {
    QImage image = imageOver(data(), static_cast<int>(width_), static_cast<int>(height_)).copy();
    if (image.isNull()) throw std::bad_alloc();
    return image;
}

QImage RGBABuffer::imageOverBytes() {
    return {data(), static_cast<int>(width_), static_cast<int>(height_), width_ * 4,
            PaintEngine::imageFormat};
}

} // namespace qirn
