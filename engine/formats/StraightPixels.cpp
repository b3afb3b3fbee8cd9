#include "formats/StraightPixels.h"

#include <algorithm>
#include <cstring>

namespace qirn {

namespace {

void splitRow(const uint8_t* pixels, int64_t count, const PlaneRows& rows) {
    for (int64_t i = 0; i < count; ++i) {
        rows[0][i] = pixels[4 * i];
        rows[1][i] = pixels[4 * i + 1];
        rows[2][i] = pixels[4 * i + 2];
        rows[3][i] = pixels[4 * i + 3];
    }
}

/// The whole division n / a as (n + 0.5) * (1 / a): the product of floats is at most 0.0001 off and the true quotient
/// with its half at least 0.5 / 255 from the whole numbers on either side, so that cutting gives the same.
void divideRow(const uint8_t* pixels, int64_t count, const PlaneRows& rows) {
    uint8_t *r = rows[0], *g = rows[1], *b = rows[2], *alpha = rows[3];
    for (int64_t i = 0; i < count; ++i) {
        const int a = pixels[4 * i + 3];
        const float scale = a == 0 ? 0.0f : 1.0f / static_cast<float>(a);
        const auto divided = [&](int c) {
            const float value = (static_cast<float>(255 * c + a / 2) + 0.5f) * scale;
            return static_cast<uint8_t>(static_cast<int>(value < 255.0f ? value : 255.0f));
        };
        r[i] = divided(pixels[4 * i]);
        g[i] = divided(pixels[4 * i + 1]);
        b[i] = divided(pixels[4 * i + 2]);
        alpha[i] = static_cast<uint8_t>(a);
    }
}

} // namespace

void straightRow(const uint8_t* pixels, int64_t count, const PlaneRows& rows) {
    uint32_t all = ~uint32_t{0}, any = 0;
    for (int64_t i = 0; i < count; ++i) {
        uint32_t pixel = 0;
        std::memcpy(&pixel, pixels + 4 * i, 4);
        all &= pixel;
        any |= pixel;
    }
    uint8_t alphaOfAll[4], alphaOfAny[4];
    std::memcpy(alphaOfAll, &all, 4);
    std::memcpy(alphaOfAny, &any, 4);
    if (alphaOfAny[3] == 0) {
        for (uint8_t* row : rows) std::memset(row, 0, static_cast<std::size_t>(count));
    } else if (alphaOfAll[3] == 255) {
        splitRow(pixels, count, rows);
    } else {
        divideRow(pixels, count, rows);
    }
}

void premultiplyRow(const ConstPlaneRows& rows, int64_t count, uint8_t* pixels) {
    const uint8_t *r = rows[0], *g = rows[1], *b = rows[2], *alpha = rows[3];
    for (int64_t i = 0; i < count; ++i) {
        const uint32_t a = alpha[i];
        // x / 255 in whole numbers for every x below 65,535.
        const auto times = [a](uint32_t c) {
            const uint32_t x = a * c + 127;
            return (x + 1 + (x >> 8)) >> 8;
        };
        const uint8_t pixel[4] = {static_cast<uint8_t>(times(r[i])), static_cast<uint8_t>(times(g[i])),
                                  static_cast<uint8_t>(times(b[i])), static_cast<uint8_t>(a)};
        std::memcpy(pixels + 4 * i, pixel, 4);
    }
}

} // namespace qirn
