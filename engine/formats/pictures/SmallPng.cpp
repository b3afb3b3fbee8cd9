#include "formats/pictures/SmallPng.h"

#include "formats/common/StraightPixels.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <new>
#include <vector>

#include <png.h>

namespace qirn {

namespace {

/// What libpng takes along from call to call.
struct Image {
    Image() { png.version = PNG_IMAGE_VERSION; }
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;
    ~Image() { png_image_free(&png); }

    png_image png{};
};

/// Each color of each pixel made of itself and alpha.
void changeColors(std::span<uint8_t> pixels, uint8_t (*changed)(int color, int alpha)) {
    for (std::size_t at = 0; at < pixels.size(); at += 4)
        for (std::size_t c = at; c < at + 3; ++c) pixels[c] = changed(pixels[c], pixels[at + 3]);
}

} // namespace

std::shared_ptr<RGBABuffer> readSmallPng(std::span<const uint8_t> png, int64_t mostSide) {
    Image image;
    if (png_image_begin_read_from_memory(&image.png, png.data(), png.size()) == 0) return nullptr;
    if (std::max<int64_t>(image.png.width, image.png.height) > mostSide) return nullptr;
    image.png.format = PNG_FORMAT_RGBA;
    auto picture = std::make_shared<RGBABuffer>(image.png.width, image.png.height);
    if (png_image_finish_read(&image.png, nullptr, picture->data(), 0, nullptr) == 0) return nullptr;
    changeColors({picture->data(), checkedSize(picture->byteCount())}, premultiplied);
    return picture;
}

QByteArray smallPng(const RGBABuffer& picture) {
    std::vector<uint8_t> pixels(picture.bytes().begin(), picture.bytes().end());
    changeColors(pixels, straight);
    Image image;
    image.png.width = static_cast<png_uint_32>(picture.width());
    image.png.height = static_cast<png_uint_32>(picture.height());
    image.png.format = PNG_FORMAT_RGBA;
    image.png.flags = PNG_IMAGE_FLAG_FAST;
    png_alloc_size_t length = PNG_IMAGE_PNG_SIZE_MAX(image.png);
    QByteArray bytes(static_cast<qsizetype>(length), Qt::Uninitialized);
    if (png_image_write_to_memory(&image.png, bytes.data(), &length, 0, pixels.data(), 0, nullptr) == 0)
        throw std::bad_alloc(); // nothing else can fail
    bytes.truncate(static_cast<qsizetype>(length));
    return bytes;
}

} // namespace qirn
