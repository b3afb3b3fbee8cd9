#include "platform/QtImages.h"

#include <QColorSpace>

namespace qirn {

QImage imageOver(const uint8_t* pixels, int width, int height) {
    return {pixels, width, height, static_cast<qsizetype>(width) * 4, QImage::Format_RGBA8888_Premultiplied};
}

QImage inPixelFormat(const QImage& image) {
    QImage result = image;
    const QColorSpace space = image.colorSpace();
    if (space.isValid() && space != QColorSpace(QColorSpace::SRgb))
        result.convertToColorSpace(QColorSpace::SRgb);
    result.convertTo(QImage::Format_RGBA8888_Premultiplied);
    return result;
}

} // namespace qirn
