#include "formats/pictures/SmallPng.h"

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

void premultiply(uint8_t* pixel) {
    for (int c = 0; c < 3; ++c) pixel[c] = static_cast<uint8_t>((pixel[3] * pixel[c] + 127) / 255);
}

void straighten(uint8_t* pixel) {
    const int alpha = pixel[3];
    for (int c = 0; c < 3; ++c)
        pixel[c] = static_cast<uint8_t>(alpha == 0 ? 0 : std::min(255, (pixel[c] * 255 + alpha / 2) / alpha));
}

} // namespace

std::shared_ptr<RGBABuffer> readSmallPng(std::span<const uint8_t> png, int64_t mostSide) {
    Image image;
    if (png_image_begin_read_from_memory(&image.png, png.data(), png.size()) == 0) return nullptr;
    if (std::max<int64_t>(image.png.width, image.png.height) > mostSide) return nullptr;
    image.png.format = PNG_FORMAT_RGBA;
    auto picture = std::make_shared<RGBABuffer>(image.png.width, image.png.height);
    if (png_image_finish_read(&image.png, nullptr, picture->data(), 0, nullptr) == 0) return nullptr;
    for (int64_t at = 0; at < picture->byteCount(); at += 4) premultiply(picture->data() + at);
    return picture;
}

QByteArray smallPng(const RGBABuffer& picture) {
    std::vector<uint8_t> straight(picture.bytes().begin(), picture.bytes().end());
    for (std::size_t at = 0; at < straight.size(); at += 4) straighten(straight.data() + at);
    Image image;
    image.png.width = static_cast<png_uint_32>(picture.width());
    image.png.height = static_cast<png_uint_32>(picture.height());
    image.png.format = PNG_FORMAT_RGBA;
    image.png.flags = PNG_IMAGE_FLAG_FAST;
    png_alloc_size_t length = PNG_IMAGE_PNG_SIZE_MAX(image.png);
    QByteArray bytes(static_cast<qsizetype>(length), Qt::Uninitialized);
    if (png_image_write_to_memory(&image.png, bytes.data(), &length, 0, straight.data(), 0, nullptr) == 0)
        throw std::bad_alloc(); // nothing else can fail
    bytes.truncate(static_cast<qsizetype>(length));
    return bytes;
}

} // namespace qirn
