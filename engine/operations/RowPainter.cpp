#include "operations/RowPainter.h"

#include <algorithm>

namespace qirn {

namespace {

float unitOf(uint8_t byte) {
    return static_cast<float>(byte) / 255;
}

uint8_t byteOf(float unit) {
    return static_cast<uint8_t>(static_cast<int>(std::min(std::max(0.0f, unit * 255 + 0.5f), 255.0f)));
}

void paintOver(const float* color, float coverage, uint8_t* pixel) {
    const float kept = 1 - coverage;
    for (int c = 0; c < 4; ++c) pixel[c] = byteOf(coverage * color[c] + kept * unitOf(pixel[c]));
}

void paintWithinAlpha(const float* color, float coverage, uint8_t* pixel) {
    if (pixel[3] == 0) return;
    const float alpha = unitOf(pixel[3]);
    for (int c = 0; c < 3; ++c) {
        const float old = unitOf(pixel[c]);
        pixel[c] = byteOf(old + coverage * (alpha * color[c] - old));
    }
}

template <auto kPaint>
void paintAll(const float* colors, const float* coverage, uint8_t* pixels, int64_t count) {
    for (int64_t i = 0; i < count; ++i) kPaint(colors + i * 4, coverage[i], pixels + i * 4);
}

} // namespace

void paintRow(AlphaLock lock, const float* colors, const float* coverage, uint8_t* pixels, int64_t count) {
    const auto paint = lock == AlphaLock::yes ? paintAll<paintWithinAlpha> : paintAll<paintOver>;
    paint(colors, coverage, pixels, count);
}

} // namespace qirn
